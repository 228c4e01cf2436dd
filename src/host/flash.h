// The raw flash devices: the MTD partition list, the device nodes, and the
// system calls made on them. The partition code calls these with host paths
// as written; the test build relocates them under the sandbox root and
// routes the device nodes to a simulated flash device.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

namespace nkw::host::flash {

inline constexpr const char kProcMtd[] = "/proc/mtd";
inline constexpr const char kCharDeviceFormat[] = "/dev/mtd%d";
inline constexpr const char kBlockDeviceFormat[] = "/dev/mtdblock%d";

int open(const char *path, int flags);
ssize_t read(int fd, void *buf, size_t count);
ssize_t write(int fd, const void *buf, size_t count);
off_t lseek(int fd, off_t offset, int whence);
int ioctl(int fd, unsigned long request, void *arg);
int close(int fd);
int mount(const char *source, const char *target, const char *filesystem, unsigned long flags);
int stat(const char *path, struct stat *info);
int chmod(const char *path, mode_t mode);

}  // namespace nkw::host::flash
