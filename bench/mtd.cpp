// Streaming write (erase, write, read-back, compare per erase block) and
// streaming read of a 16 MiB partition on the sandbox build's in-memory
// simulated flash device, next to plain block-sized pwrite/pread of the same
// data on an in-memory file in the same run. Compare bytes_per_second.
#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/flash_model.h"
#include "nkw_pal.h"

namespace {

constexpr uint32_t kSize = 16u << 20;
constexpr uint32_t kBlock = 128u << 10;

struct Setup {
    const nkw_mtd_partition *partition = nullptr;
    std::vector<char> data = std::vector<char>(kSize);
    std::string root;
    int file = -1;

    Setup() {
        char root_template[] = "/tmp/nkw_pal_bench.XXXXXX";
        if (mkdtemp(root_template) == nullptr) std::abort();
        root = root_template;
        setenv("NKW_PAL_SANDBOX_ROOT", root.c_str(), 1);
        mkdir((root + "/proc").c_str(), 0755);
        std::FILE *list = std::fopen((root + "/proc/mtd").c_str(), "w");
        std::fprintf(list, "mtd0: %08x %08x \"bench\"\n", kSize, kBlock);
        std::fclose(list);
        nkw_pal_sim_flash_create(0, kSize, kBlock, 1);
        nkw_mtd_scan_partitions();
        partition = nkw_mtd_find_partition_by_name("bench");
        uint32_t x = 1;
        for (char &c : data) c = static_cast<char>((x = x * 1103515245u + 12345u) >> 16);
        file = memfd_create("bench", 0);
        if (partition == nullptr || file < 0 || ftruncate(file, kSize) != 0) std::abort();
    }
    ~Setup() {
        close(file);
        std::remove((root + "/proc/mtd").c_str());
        rmdir((root + "/proc").c_str());
        rmdir(root.c_str());
    }
};

Setup &setup() {
    static Setup instance;
    return instance;
}

void MtdStreamWrite(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        nkw_mtd_write_context *w = nkw_mtd_write_partition(s.partition);
        if (nkw_mtd_write_data(w, s.data.data(), kSize) != kSize) state.SkipWithError("write");
        if (nkw_mtd_write_close(w) != 0) state.SkipWithError("close");
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void MtdStreamRead(benchmark::State &state) {
    Setup &s = setup();
    std::vector<char> out(kSize);
    for (auto _ : state) {
        nkw_mtd_read_context *r = nkw_mtd_read_partition(s.partition);
        if (nkw_mtd_read_data(r, out.data(), kSize) != kSize) state.SkipWithError("read");
        nkw_mtd_read_close(r);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void PlainPwrite(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state) {
        for (uint32_t at = 0; at < kSize; at += kBlock) {
            if (pwrite(s.file, s.data.data() + at, kBlock, at) != kBlock) {
                state.SkipWithError("pwrite");
            }
        }
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

void PlainPread(benchmark::State &state) {
    Setup &s = setup();
    std::vector<char> out(kSize);
    for (auto _ : state) {
        for (uint32_t at = 0; at < kSize; at += kBlock) {
            if (pread(s.file, out.data() + at, kBlock, at) != kBlock) state.SkipWithError("pread");
        }
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(int64_t{kSize} * state.iterations());
}

BENCHMARK(MtdStreamWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainPwrite)->Unit(benchmark::kMillisecond);
BENCHMARK(MtdStreamRead)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainPread)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
