// Mounting a partition's block device, read-only when asked or when a
// read-write mount is refused.
#include <errno.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace {

namespace sys = nkw::host::flash;

constexpr unsigned long kMountFlags = MS_NOATIME | MS_NODEV | MS_NODIRATIME;
constexpr mode_t kExecuteBits = 0111;

// Directories on some file systems come up without search permission.
int fix_execute_bits(const char *mount_point) {
    struct stat info;
    int result = sys::stat(mount_point, &info);
    if (result != 0 || (info.st_mode & kExecuteBits) == kExecuteBits) return result;
    std::printf("Fixing execute permissions for %s\n", mount_point);
    result = sys::chmod(mount_point, (info.st_mode & 07777) | kExecuteBits);
    if (result == -1) {
        std::printf("Couldn't fix permissions for %s: %s\n", mount_point, std::strerror(errno));
    }
    return result;
}

}  // namespace

extern "C" NKW_PAL_API int nkw_mtd_mount_partition(const nkw_mtd_partition *partition,
                                                   const char *mount_point, const char *filesystem,
                                                   int read_only) {
    namespace mtd = nkw::storage::mtd;
    if (!mtd::partition_usable(__func__, partition) ||
        !mtd::arguments_present(__func__, mount_point)) {
        return -1;
    }
    char device[32];
    std::snprintf(device, sizeof device, sys::kBlockDeviceFormat, partition->device_index);

    int result = -1;
    if (!read_only) result = sys::mount(device, mount_point, filesystem, kMountFlags);
    if (read_only || result < 0) {
        result = sys::mount(device, mount_point, filesystem, kMountFlags | MS_RDONLY);
        if (result < 0) {
            std::printf("Failed to mount %s on %s: %s\n", device, mount_point,
                        std::strerror(errno));
            return result;
        }
        std::printf("Mount %s on %s read-only\n", device, mount_point);
    }
    return fix_execute_bits(mount_point);
}
