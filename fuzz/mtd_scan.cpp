// Arbitrary "/proc/mtd" contents through the partition scan and the lookups,
// then a geometry query and a block read of every partition found, on the
// simulated flash devices of the sandbox build. Checks the table's
// invariants: slot = device number, names of at most 63 characters, lookups
// that agree with each other, and a count that matches the slots in use.
#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "host/flash_model.h"
#include "nkw_pal.h"

namespace {

std::string g_proc_mtd;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    const char *root = std::getenv("NKW_PAL_SANDBOX_ROOT");
    if (root == nullptr) std::abort();
    mkdir((std::string(root) + "/proc").c_str(), 0755);
    g_proc_mtd = std::string(root) + "/proc/mtd";
    // A few devices exist; the list may name others.
    for (int device = 0; device < 4; ++device) {
        nkw_pal_sim_flash_create(device, 0x8000, 0x1000 << device, 1);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t n) {
    if (n > 4096) return 0;
    std::FILE *out = std::fopen(g_proc_mtd.c_str(), "wb");
    if (out == nullptr) std::abort();
    std::fwrite(data, 1, n, out);
    std::fclose(out);

    nkw_pal_sim_flash_forget_partitions();
    const int count = nkw_mtd_scan_partitions();
    if (count < -1 || count > NKW_MTD_MAX_PARTITIONS) __builtin_trap();

    int found = 0;
    for (int device = 0; device < NKW_MTD_MAX_PARTITIONS; ++device) {
        char block_device[32];
        std::snprintf(block_device, sizeof block_device, "/dev/mtdblock%d", device);
        const nkw_mtd_partition *p = nkw_mtd_find_partition_by_device_name(block_device);
        if (p == nullptr) continue;
        ++found;
        if (p->device_index != device || std::strlen(p->name) > NKW_MTD_NAME_MAX) {
            __builtin_trap();
        }
        const nkw_mtd_partition *by_name = nkw_mtd_find_partition_by_name(p->name);
        if (by_name == nullptr || std::strcmp(by_name->name, p->name) != 0 ||
            by_name->device_index > device) {
            __builtin_trap();
        }
        size_t total = 0;
        nkw_mtd_partition_info(p, &total, nullptr, nullptr);
        if (p->erase_size != 0 && p->erase_size <= 0x10000) {
            std::vector<char> block(p->erase_size);
            nkw_tolv_mtd_read_one_block(p, 0, block.data());
        }
    }
    if (found != (count < 0 ? 0 : count)) __builtin_trap();
    if (nkw_pal_sim_flash_open_count() != 0) __builtin_trap();
    return 0;
}
