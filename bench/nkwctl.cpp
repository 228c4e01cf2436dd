// Wall time of one nkwctl run against the simulated modem, process start to
// exit: what a script calling the tool pays per query.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <vector>

extern char **environ;

namespace {

// Runs nkwctl with `args`, its output discarded; false when it failed.
bool run_once(const std::vector<const char *> &args) {
    std::vector<char *> argv;
    argv.push_back(const_cast<char *>(NKW_PAL_NKWCTL));
    for (const char *arg : args) argv.push_back(const_cast<char *>(arg));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) return false;
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status);
}

void Run(benchmark::State &state, std::vector<const char *> args) {
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        if (!run_once(args)) state.SkipWithError("nkwctl could not be run");
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
}

BENCHMARK_CAPTURE(Run, sim_status_json, std::vector<const char *>{"sim", "status", "-J"})
    ->UseManualTime()
    ->Iterations(1)
    ->Repetitions(20)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, device_json, std::vector<const char *>{"device", "-J"})
    ->UseManualTime()
    ->Iterations(1)
    ->Repetitions(20)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
