// Direct write of one whole erase block, without read-back.
#include <errno.h>
#include <fcntl.h>

#include <cstdio>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace sys = nkw::host::flash;
namespace mtd = nkw::storage::mtd;

namespace {

enum : int { kOpenFailed = -1, kSeekFailed = -2, kShortWrite = -3, kEraseOrRange = -4 };

int write_open(const nkw_mtd_partition *partition, int fd, int index, const char *buf) {
    const uint32_t block = partition->erase_size;
    const uint32_t offset = static_cast<uint32_t>(index) * block;
    if (sys::lseek(fd, offset, SEEK_SET) != offset) return kSeekFailed;
    if (uint64_t{offset} + block > partition->size) return kEraseOrRange;
    int retries = mtd::erase_with_retry(fd, offset, block, "mtd: erase failure at 0x%08lx (%s)\n");
    if (retries < 0) return kEraseOrRange;
    if (sys::lseek(fd, offset, SEEK_SET) != offset ||
        sys::write(fd, buf, block) != static_cast<ssize_t>(block)) {
        return kShortWrite;
    }
    if (retries > 0) std::fprintf(stderr, "mtd: wrote block after %d retries\n", retries);
    return 0;
}

}  // namespace

extern "C" {

NKW_PAL_API int nkw_mtd_write_one_block(const nkw_mtd_partition *partition, int index,
                                        const char *buf) {
    if (!mtd::partition_usable(__func__, partition) || !mtd::arguments_present(__func__, buf)) {
        return kOpenFailed;
    }
    int fd = mtd::open_device(partition, O_RDWR);
    if (fd < 0) return kOpenFailed;
    int result = write_open(partition, fd, index, buf);
    sys::close(fd);
    return result;
}

NKW_PAL_API uint32_t nkw_mtd_malloc_all_size(const nkw_mtd_partition *partition, uint32_t offset,
                                             uint32_t len) {
    if (!mtd::partition_usable(__func__, partition)) return 0;
    const uint32_t block = partition->erase_size;
    const uint32_t end = offset + len;
    return end / block * block + (end % block != 0 ? block : 0);
}

}  // extern "C"
