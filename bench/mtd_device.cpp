// The streaming calls on real kernel MTD devices next to the flash tools
// doing the same job, in the storage test VM (tools/vm-storage.sh): an
// 8 MiB image onto the mtdram device (argument 0) and a simulated NAND
// partition (argument 1), written with nkw_mtd_write_data + close and with
// flashcp; read back with nkw_mtd_read_data, dd and (NAND only: on a device
// with 1-byte pages it reads byte by byte) nanddump. Refuses to run anywhere
// without those devices, so it never writes a real host's flash. Compare
// bytes_per_second.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "nkw_pal.h"

extern char **environ;

namespace {

constexpr uint32_t kSize = 8u << 20;
constexpr const char *kDevices[] = {"mtdram test device", "NAND simulator partition 2"};
constexpr char kImage[] = "/tmp/image";

struct Setup {
    const nkw_mtd_partition *partitions[2] = {};
    std::string nodes[2];
    std::vector<char> data = std::vector<char>(kSize);

    Setup() {
        nkw_mtd_scan_partitions();
        for (int i = 0; i < 2; ++i) {
            partitions[i] = nkw_mtd_find_partition_by_name(kDevices[i]);
            if (partitions[i] == nullptr) {
                std::fprintf(stderr, "no \"%s\": run in the storage test VM\n", kDevices[i]);
                std::exit(1);
            }
            nodes[i] = "/dev/mtd" + std::to_string(partitions[i]->device_index);
        }
        uint32_t x = 1;
        for (char &c : data) c = static_cast<char>((x = x * 1103515245u + 12345u) >> 16);
        std::FILE *image = std::fopen(kImage, "w");
        if (image == nullptr || std::fwrite(data.data(), 1, kSize, image) != kSize) std::exit(1);
        std::fclose(image);
    }
};

Setup &setup() {
    static Setup instance;
    return instance;
}

// Runs a tool with its output discarded; true when it exits with 0.
bool run(std::vector<std::string> argv) {
    std::vector<char *> args;
    for (std::string &a : argv) args.push_back(a.data());
    args.push_back(nullptr);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&quiet, 1, 2);
    pid_t pid;
    int spawned = posix_spawnp(&pid, args[0], &quiet, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&quiet);
    int status = 0;
    return spawned == 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

void LibraryWrite(benchmark::State &state) {
    Setup &s = setup();
    const nkw_mtd_partition *p = s.partitions[state.range(0)];
    for (auto _ : state) {
        nkw_mtd_write_context *w = nkw_mtd_write_partition(p);
        if (nkw_mtd_write_data(w, s.data.data(), kSize) != kSize) state.SkipWithError("write");
        if (nkw_mtd_write_close(w) != 0) state.SkipWithError("close");
    }
    state.SetLabel(p->name);
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void Flashcp(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        if (!run({"flashcp", kImage, s.nodes[state.range(0)]})) state.SkipWithError("flashcp");
    }
    state.SetLabel(kDevices[state.range(0)]);
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void LibraryRead(benchmark::State &state) {
    Setup &s = setup();
    const nkw_mtd_partition *p = s.partitions[state.range(0)];
    std::vector<char> out(kSize);
    for (auto _ : state) {
        nkw_mtd_read_context *r = nkw_mtd_read_partition(p);
        if (nkw_mtd_read_data(r, out.data(), kSize) != kSize) state.SkipWithError("read");
        nkw_mtd_read_close(r);
        benchmark::DoNotOptimize(out.data());
    }
    if (out != s.data) state.SkipWithError("read back differs");
    state.SetLabel(p->name);
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void Nanddump(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        if (!run({"nanddump", "-q", "-l", std::to_string(kSize), "-f", "/dev/null",
                  s.nodes[state.range(0)]})) {
            state.SkipWithError("nanddump");
        }
    }
    state.SetLabel(kDevices[state.range(0)]);
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void Dd(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        if (!run({"dd", "if=" + s.nodes[state.range(0)], "of=/dev/null", "bs=128k", "count=64"})) {
            state.SkipWithError("dd");
        }
    }
    state.SetLabel(kDevices[state.range(0)]);
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

BENCHMARK(LibraryWrite)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Flashcp)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LibraryRead)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Dd)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Nanddump)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
