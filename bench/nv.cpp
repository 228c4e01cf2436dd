// AP NV item read and write against the raw open/read/write/close they wrap,
// in one run. The library's paths are relocated under a fresh temporary
// root (the sandbox flavour), so nothing under the host's /data is touched;
// NKW_PAL_BENCH_ROOT picks the file system to measure on. Log level 1:
// success lines are filtered.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "nkw_pal.h"

namespace {

constexpr unsigned int kWorkMode = 11;
constexpr unsigned int kItemSize = 64;

std::string g_file;  // the item's file as the library sees it

void prepare_root() {
    const char *base = std::getenv("NKW_PAL_BENCH_ROOT");
    std::string pattern = std::string(base != nullptr ? base : "/var/tmp") + "/nkw_bench_nv.XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    setenv("NKW_PAL_SANDBOX_ROOT", pattern.c_str(), 1);
    mkdir((pattern + "/data").c_str(), 0700);
    g_file = pattern + "/data/quarn/quarn_work_mode_nv.txt";
    unsigned char item[kItemSize] = {1};
    nkw_pal_log_set_level(NKW_PAL_LOG_ERROR);
    if (nkw_pal_nvm_write(kWorkMode, item, kItemSize) != 0) std::abort();
}

void remove_root() {
    std::string dir = g_file.substr(0, g_file.rfind('/'));
    unlink(g_file.c_str());
    rmdir(dir.c_str());
    std::string data = dir.substr(0, dir.rfind('/'));
    rmdir(data.c_str());
    rmdir(data.substr(0, data.rfind('/')).c_str());
}

void Read_Raw(benchmark::State &state) {
    unsigned char buffer[kItemSize];
    for (auto _ : state) {
        int fd = open(g_file.c_str(), O_RDONLY);
        benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
        close(fd);
    }
}
BENCHMARK(Read_Raw);

void Read_NvItem(benchmark::State &state) {
    unsigned char buffer[kItemSize];
    for (auto _ : state) benchmark::DoNotOptimize(nkw_pal_nvm_read(kWorkMode, buffer, kItemSize));
}
BENCHMARK(Read_NvItem);

void write_raw(benchmark::State &state, int flags) {
    unsigned char item[kItemSize] = {2};
    for (auto _ : state) {
        int fd = open(g_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | flags, 0600);
        benchmark::DoNotOptimize(write(fd, item, sizeof item));
        close(fd);
    }
}

void Write_RawNoSync(benchmark::State &state) {
    write_raw(state, 0);
}
BENCHMARK(Write_RawNoSync);

void Write_RawSync(benchmark::State &state) {
    write_raw(state, O_SYNC);
}
BENCHMARK(Write_RawSync);

// Includes the directory probe and O_SYNC, as every item write does.
void Write_NvItem(benchmark::State &state) {
    unsigned char item[kItemSize] = {3};
    for (auto _ : state) benchmark::DoNotOptimize(nkw_pal_nvm_write(kWorkMode, item, kItemSize));
}
BENCHMARK(Write_NvItem);

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    prepare_root();
    benchmark::RunSpecifiedBenchmarks();
    remove_root();
    benchmark::Shutdown();
    return 0;
}
