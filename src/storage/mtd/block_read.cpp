// Direct reads of a block or a byte range, without bad-block or ECC checks.
#include <errno.h>
#include <fcntl.h>

#include <cstdio>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace sys = nkw::host::flash;
namespace mtd = nkw::storage::mtd;

namespace {

enum : int {
    kOpenFailed = -1,
    kEccStatsFailed = -2,
    kSeekFailed = -3,
    kShortRead = -4,
    kBeyondPartition = -5
};

int read_open(const nkw_mtd_partition *partition, int fd, char *buf, int64_t len, int64_t offset) {
    mtd_ecc_stats stats;
    if (sys::ioctl(fd, ECCGETSTATS, &stats) != 0) {
        std::fprintf(stderr, "mtd: ECCGETSTATS error (%s)\n", std::strerror(errno));
        return kEccStatsFailed;
    }
    // A failed seek returns -1, which a negative offset would match.
    off_t pos = sys::lseek(fd, static_cast<off_t>(offset), SEEK_SET);
    if (pos < 0 || pos != offset) return kSeekFailed;
    if (len < 0 || offset + len > static_cast<int64_t>(partition->size)) return kBeyondPartition;
    if (sys::read(fd, buf, static_cast<size_t>(len)) != len) return kShortRead;
    return 0;
}

}  // namespace

namespace nkw::storage::mtd {

int read_range(const nkw_mtd_partition *partition, char *buf, int64_t len, int64_t offset) {
    int fd = open_device(partition, O_RDONLY);
    if (fd < 0) return kOpenFailed;
    int result = read_open(partition, fd, buf, len, offset);
    sys::close(fd);
    return result;
}

}  // namespace nkw::storage::mtd

extern "C" {

NKW_PAL_API int nkw_tolv_mtd_read_one_block(const nkw_mtd_partition *partition, int index,
                                            char *buf) {
    if (!mtd::partition_usable(__func__, partition) || !mtd::arguments_present(__func__, buf)) {
        return kOpenFailed;
    }
    uint32_t offset = static_cast<uint32_t>(index) * partition->erase_size;
    return mtd::read_range(partition, buf, partition->erase_size, offset);
}

NKW_PAL_API int nkw_mtd_read_block(const nkw_mtd_partition *partition, char *buf, int len,
                                   int offset) {
    if (!mtd::partition_usable(__func__, partition) || !mtd::arguments_present(__func__, buf)) {
        return kOpenFailed;
    }
    return mtd::read_range(partition, buf, len, offset);
}

}  // extern "C"
