// Device geometry of a partition from MEMGETINFO.
#include <fcntl.h>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

extern "C" NKW_PAL_API int nkw_mtd_partition_info(const nkw_mtd_partition *partition,
                                                  size_t *total_size, size_t *erase_size,
                                                  size_t *write_size) {
    namespace sys = nkw::host::flash;
    if (!nkw::storage::mtd::partition_usable(__func__, partition)) return -1;
    int fd = nkw::storage::mtd::open_device(partition, O_RDONLY);
    if (fd < 0) return -1;
    mtd_info_user info{};
    int queried = sys::ioctl(fd, MEMGETINFO, &info);
    int closed = sys::close(fd);
    if (queried < 0 || closed < 0) return -1;
    if (total_size != nullptr) *total_size = info.size;
    if (erase_size != nullptr) *erase_size = info.erasesize;
    if (write_size != nullptr) *write_size = info.writesize;
    return 0;
}
