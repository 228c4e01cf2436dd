// Wall time of one data call activation against the simulated modem, with
// the host side in a throwaway sandbox (recording fakes of ip and route, a
// relocated resolver file), split into its parts: the readiness wait, the
// shell commands it runs, and the rest. Log level 0, so no line is written
// (each written line would add its 2 ms pause).
#include <benchmark/benchmark.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "mipc_sim.h"
#include "nkw_pal.h"

namespace {

std::string &root() {
    static std::string path;
    return path;
}

void answer(const char *key, const std::string &text) {
    std::ofstream(root() + "/fake_output/" + key) << text;
}

// The interface as the fakes describe it: `ready` prints what the check
// looks for, so the wait runs all its rounds.
void describe_interface(bool ready) {
    answer("ip_link_show", ready ? "3: ccmni0: <UP,LOWER_UP> state UP mode DEFAULT RUNNING\n" : "");
    answer("ip_addr_show", ready ? "    inet 10.0.0.2/24 scope global ccmni0\n" : "");
}

void make_sandbox() {
    const char *tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp != nullptr ? tmp : "/tmp") + "/nkw_pal_bench.XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    root() = pattern;
    for (const char *dir : {"/bin", "/etc", "/fake_output"}) {
        if (mkdir((root() + dir).c_str(), 0755) != 0) std::abort();
    }
    for (const char *name : {"ip", "route"}) {
        if (symlink(NKW_PAL_FAKE_COMMAND, (root() + "/bin/" + name).c_str()) != 0) std::abort();
    }
    setenv("NKW_PAL_SANDBOX_ROOT", root().c_str(), 1);
    setenv("PATH", (root() + "/bin:" + std::getenv("PATH")).c_str(), 1);
}

void activate_and_release(benchmark::State &state) {
    nkw_pal_data_conn_req_t req = {};
    std::strcpy(req.apn, "internet");
    req.pdp_type = 3;
    for (auto _ : state) {
        nkw_pal_data_conn_info_t info = {};
        if (nkw_pal_data_conn_sync(&req, &info) != 0) state.SkipWithError("activation failed");
        state.PauseTiming();
        nkw_pal_data_conn_release(&info.data_call_id);
        state.ResumeTiming();
    }
}

// The interface as iproute2 really prints it: the check finds nothing, the
// wait ends after one round. 2 readiness pipelines + route + MTU + 4 DNS
// lines = 8 shell invocations, no pause.
void BM_Activation(benchmark::State &state) {
    describe_interface(false);
    activate_and_release(state);
}
BENCHMARK(BM_Activation)->Unit(benchmark::kMillisecond)->UseRealTime();

// An interface the check calls ready: 30 rounds, 29 pauses of 100 ms, and
// 31 checks of 2 pipelines each, then the same 6 commands.
void BM_ActivationFullWait(benchmark::State &state) {
    describe_interface(true);
    activate_and_release(state);
}
BENCHMARK(BM_ActivationFullWait)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

// The route or MTU command, answered by the recording fake.
void BM_RouteCommand(benchmark::State &state) {
    for (auto _ : state) benchmark::DoNotOptimize(std::system("route add default dev ccmni0"));
}
BENCHMARK(BM_RouteCommand)->Unit(benchmark::kMillisecond)->UseRealTime();

// One DNS line.
void BM_ShellCommand(benchmark::State &state) {
    std::string command = "echo 'nameserver 192.0.2.53' >> " + root() + "/etc/resolv.conf";
    for (auto _ : state) benchmark::DoNotOptimize(std::system(command.c_str()));
}
BENCHMARK(BM_ShellCommand)->Unit(benchmark::kMillisecond)->UseRealTime();

// One readiness pipeline that prints nothing.
void BM_ReadinessPipeline(benchmark::State &state) {
    describe_interface(false);
    for (auto _ : state) {
        FILE *pipe = popen("ip link show ccmni0 | grep 'state UP.*RUNNING'", "r");
        char line[256];
        benchmark::DoNotOptimize(std::fgets(line, sizeof line, pipe));
        pclose(pipe);
    }
}
BENCHMARK(BM_ReadinessPipeline)->Unit(benchmark::kMillisecond)->UseRealTime();

// The modem's share: activation and release in the simulated modem alone.
void BM_ModemCall(benchmark::State &state) {
    for (auto _ : state) {
        mipc_data_call_act_struct call;
        std::memset(&call, 0, sizeof call);
        mipc_data_call_act_sync(MIPC_PS_ALL, &call, "internet", 0, 3, 3, 0, "", "", 0, 0xFFFFFFFF);
        mipc_data_call_deact_struct deact;
        mipc_data_call_deact_sync(MIPC_PS_ALL, &deact, call.id);
    }
}
BENCHMARK(BM_ModemCall)->UseRealTime();

}  // namespace

int main(int argc, char **argv) {
    make_sandbox();
    nkw_pal_log_set_level(NKW_PAL_LOG_FATAL);
    nkw_pal_modem_msg_init("bench_data_call");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    nkw_pal_modem_msg_deinit();
    if (std::system(("rm -rf '" + root() + "'").c_str()) != 0) std::perror("rm");
    return 0;
}
