// The streaming calls on a real kernel MTD device next to the flash tools
// doing the same job, in the storage test VM (tools/vm-storage.sh): an
// 8 MiB image onto the mtdram device, written with nkw_mtd_write_data + close
// and with flashcp; read back with nkw_mtd_read_data, nanddump and dd.
// Refuses to run anywhere without that device, so it never writes a real
// host's flash. Compare bytes_per_second.
#include <benchmark/benchmark.h>
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
constexpr char kDevice[] = "mtdram test device";
constexpr char kImage[] = "/tmp/image";

struct Setup {
    const nkw_mtd_partition *partition = nullptr;
    std::vector<char> data = std::vector<char>(kSize);
    std::string node;

    Setup() {
        nkw_mtd_scan_partitions();
        partition = nkw_mtd_find_partition_by_name(kDevice);
        if (partition == nullptr) {
            std::fprintf(stderr, "no \"%s\": run in the storage test VM\n", kDevice);
            std::exit(1);
        }
        node = "/dev/mtd" + std::to_string(partition->device_index);
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

bool run(std::vector<std::string> argv) {
    std::vector<char *> args;
    for (std::string &a : argv) args.push_back(a.data());
    args.push_back(nullptr);
    pid_t pid;
    if (posix_spawnp(&pid, args[0], nullptr, nullptr, args.data(), environ) != 0) return false;
    int status = 0;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void LibraryWrite(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        nkw_mtd_write_context *w = nkw_mtd_write_partition(s.partition);
        if (nkw_mtd_write_data(w, s.data.data(), kSize) != kSize) state.SkipWithError("write");
        if (nkw_mtd_write_close(w) != 0) state.SkipWithError("close");
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void Flashcp(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        if (!run({"flashcp", kImage, s.node})) state.SkipWithError("flashcp");
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void LibraryRead(benchmark::State &state) {
    Setup &s = setup();
    std::vector<char> out(kSize);
    for (auto _ : state) {
        nkw_mtd_read_context *r = nkw_mtd_read_partition(s.partition);
        if (nkw_mtd_read_data(r, out.data(), kSize) != kSize) state.SkipWithError("read");
        nkw_mtd_read_close(r);
        benchmark::DoNotOptimize(out.data());
    }
    if (out != s.data) state.SkipWithError("read back differs");
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void Nanddump(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        if (!run({"nanddump", "-q", "-l", std::to_string(kSize), "-f", "/dev/null", s.node})) {
            state.SkipWithError("nanddump");
        }
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void Dd(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        if (!run({"dd", "if=" + s.node, "of=/dev/null", "bs=128k", "count=64"})) {
            state.SkipWithError("dd");
        }
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

BENCHMARK(LibraryWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Flashcp)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LibraryRead)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Nanddump)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Dd)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
