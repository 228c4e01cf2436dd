// Test-build image files of flash devices (host/flash_image.h).
#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "host/flash.h"
#include "host/flash_image.h"
#include "host/flash_model.h"
#include "host/host.h"
#include "nkw_pal/storage.h"

namespace {

constexpr uint32_t kWriteSize = 1;  // geometry from "/proc/mtd" knows no page size: NOR-like

bool g_from_image[NKW_MTD_MAX_PARTITIONS];

bool in_range(int device) {
    return device >= 0 && device < NKW_MTD_MAX_PARTITIONS;
}

struct ImagePath {
    explicit ImagePath(int device) {
        std::snprintf(fixed, sizeof fixed, nkw::host::flash::kCharDeviceFormat, device);
    }
    char fixed[32];
};

}  // namespace

namespace nkw::host::flash_image {

bool load(int device) {
    if (!in_range(device)) return false;
    char block[32];
    std::snprintf(block, sizeof block, flash::kBlockDeviceFormat, device);
    const nkw_mtd_partition *partition = nkw_mtd_find_partition_by_device_name(block);
    const ImagePath name(device);
    const Path path(name.fixed);
    struct stat info {};
    if (partition == nullptr || ::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode) ||
        static_cast<uint64_t>(info.st_size) > partition->size)
        return false;
    if (nkw_pal_sim_flash_create(device, partition->size, partition->erase_size, kWriteSize) != 0)
        return false;
    std::FILE *in = std::fopen(path.c_str(), "rb");
    if (in == nullptr) return false;
    const size_t got =
        std::fread(nkw_pal_sim_flash_image(device), 1, static_cast<size_t>(info.st_size), in);
    std::fclose(in);
    g_from_image[device] = got == static_cast<size_t>(info.st_size);
    return g_from_image[device];
}

void save(int device) {
    if (!in_range(device) || !g_from_image[device]) return;
    char block[32];
    std::snprintf(block, sizeof block, flash::kBlockDeviceFormat, device);
    const nkw_mtd_partition *partition = nkw_mtd_find_partition_by_device_name(block);
    const ImagePath name(device);
    const Path path(name.fixed);
    std::FILE *out = std::fopen(path.c_str(), "wb");
    if (partition == nullptr || out == nullptr) {
        if (out != nullptr) std::fclose(out);
        return;
    }
    std::fwrite(nkw_pal_sim_flash_image(device), 1, partition->size, out);
    std::fclose(out);
}

}  // namespace nkw::host::flash_image
