// The partition table: read once from "/proc/mtd", then looked up by name
// or by block-device path.
#include <errno.h>
#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace {

namespace sys = nkw::host::flash;

constexpr int kCapacity = NKW_MTD_MAX_PARTITIONS;
constexpr size_t kProcMtdMax = 2047;  // read in one go

// Names the boot partitions are known by.
struct Rename {
    const char *listed;
    const char *known_as;
};
constexpr Rename kRenames[] = {{"appsbl", "aboot"}, {"apps", "boot"}};

nkw_mtd_partition *g_table;  // kCapacity slots, slot N = device N; kept for the process
int g_count;                 // partitions found; -1 after a failed scan

void clear_table() {
    for (int slot = 0; slot < kCapacity; ++slot) {
        std::free(g_table[slot].name);
        g_table[slot] = nkw_mtd_partition{-1, 0, 0, nullptr};
    }
    g_count = 0;
}

const char *known_name(const char *listed) {
    for (const Rename &rename : kRenames) {
        if (std::strcmp(listed, rename.listed) == 0) return rename.known_as;
    }
    return listed;
}

// Reads the whole list into `text`; its length, or -1.
ssize_t read_proc_mtd(char (&text)[kProcMtdMax + 1]) {
    int fd = sys::open(sys::kProcMtd, O_RDONLY);
    if (fd < 0) return -1;
    ssize_t length = sys::read(fd, text, kProcMtdMax);
    sys::close(fd);
    if (length < 0) return -1;
    text[length] = '\0';
    return length;
}

// Stores one "mtd<N>: <size> <erasesize> "<name>"" line; false when the name
// cannot be copied. Other lines (the header, garbage) are skipped.
bool take_line(const char *line) {
    int device = -1;
    unsigned int size = 0;
    unsigned int erase_size = 0;
    char name[NKW_MTD_NAME_MAX + 1];
    if (std::sscanf(line, "mtd%d: %x %x \"%63[^\"]", &device, &size, &erase_size, name) != 4) {
        return true;
    }
    if (device < 0 || device >= kCapacity) {
        std::fprintf(stderr, "mtd: ignoring mtd%d: outside the %d table slots\n", device,
                     kCapacity);
        return true;
    }
    nkw_mtd_partition &slot = g_table[device];
    // A device listed twice keeps its last line and counts once.
    bool counted = slot.device_index >= 0;
    std::free(slot.name);
    slot = nkw_mtd_partition{device, size, erase_size, strdup(known_name(name))};
    if (slot.name == nullptr) {
        slot.device_index = -1;
        errno = ENOMEM;
        return false;
    }
    if (!counted) ++g_count;
    return true;
}

}  // namespace

namespace nkw::storage::mtd {

void forget_table() {
    if (g_table == nullptr) return;
    clear_table();
    std::free(g_table);
    g_table = nullptr;
}

}  // namespace nkw::storage::mtd

extern "C" {

NKW_PAL_API int nkw_mtd_scan_partitions(void) {
    if (g_table != nullptr && g_count > 0) return g_count;
    if (g_table == nullptr) {
        g_table = static_cast<nkw_mtd_partition *>(std::calloc(kCapacity, sizeof *g_table));
        if (g_table == nullptr) {
            errno = ENOMEM;
            return -1;
        }
    }
    clear_table();

    char text[kProcMtdMax + 1];
    if (read_proc_mtd(text) < 0) {
        g_count = -1;
        return -1;
    }
    for (char *line = text; line != nullptr && *line != '\0';) {
        char *next = std::strchr(line, '\n');
        if (next != nullptr) *next++ = '\0';
        if (!take_line(line)) {
            g_count = -1;
            return -1;
        }
        line = next;
    }
    return g_count;
}

NKW_PAL_API const nkw_mtd_partition *nkw_mtd_find_partition_by_name(const char *name) {
    if (g_table == nullptr || name == nullptr) return nullptr;
    for (int slot = 0; slot < kCapacity; ++slot) {
        const nkw_mtd_partition &p = g_table[slot];
        if (p.device_index >= 0 && p.name != nullptr && std::strcmp(p.name, name) == 0) return &p;
    }
    return nullptr;
}

NKW_PAL_API const nkw_mtd_partition *nkw_mtd_find_partition_by_device_name(
    const char *device_name) {
    if (g_table == nullptr || device_name == nullptr) return nullptr;
    for (int slot = 0; slot < kCapacity; ++slot) {
        const nkw_mtd_partition &p = g_table[slot];
        if (p.device_index < 0 || p.name == nullptr) continue;
        char block_device[32];
        std::snprintf(block_device, sizeof block_device, sys::kBlockDeviceFormat, p.device_index);
        if (std::strcmp(block_device, device_name) == 0) return &p;
    }
    return nullptr;
}

}  // extern "C"
