// Device helpers shared by the streaming and the direct block operations.
#include <errno.h>
#include <sys/ioctl.h>

#include <cstdio>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace nkw::storage::mtd {

namespace sys = nkw::host::flash;

int open_device(const nkw_mtd_partition *partition, int flags) {
    char path[32];
    std::snprintf(path, sizeof path, sys::kCharDeviceFormat, partition->device_index);
    return sys::open(path, flags);
}

int bad_block_query(int fd, off_t pos) {
    loff_t offset = pos;
    return sys::ioctl(fd, MEMGETBADBLOCK, &offset);
}

int erase_with_retry(int fd, uint32_t start, uint32_t length, const char *failure_format) {
    for (int retry = 0; retry < 2; ++retry) {
        erase_info_user range{start, length};
        if (sys::ioctl(fd, MEMERASE, &range) == 0) return retry;
        if (retry == 0) {
            std::fprintf(stderr, failure_format, static_cast<unsigned long>(start),
                         std::strerror(errno));
        }
    }
    return -1;
}

bool partition_usable(const char *caller, const nkw_mtd_partition *partition) {
    if (partition != nullptr && partition->erase_size != 0) return true;
    std::fprintf(stderr, "mtd: %s: no partition or no erase size\n", caller);
    errno = EINVAL;
    return false;
}

bool arguments_present(const char *caller, const void *first, const void *second) {
    if (first != nullptr && second != nullptr) return true;
    std::fprintf(stderr, "mtd: %s: missing partition, context or buffer\n", caller);
    errno = EINVAL;
    return false;
}

}  // namespace nkw::storage::mtd
