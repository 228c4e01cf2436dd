// Production flash access: the plain system calls.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include "host/flash.h"

namespace nkw::host::flash {

int open(const char *path, int flags) {
    return ::open(path, flags);
}

ssize_t read(int fd, void *buf, size_t count) {
    return ::read(fd, buf, count);
}

ssize_t write(int fd, const void *buf, size_t count) {
    return ::write(fd, buf, count);
}

off_t lseek(int fd, off_t offset, int whence) {
    return ::lseek(fd, offset, whence);
}

int ioctl(int fd, unsigned long request, void *arg) {
    return ::ioctl(fd, request, arg);
}

int close(int fd) {
    return ::close(fd);
}

int mount(const char *source, const char *target, const char *filesystem, unsigned long flags) {
    return ::mount(source, target, filesystem, flags, nullptr);
}

int stat(const char *path, struct stat *info) {
    return ::stat(path, info);
}

int chmod(const char *path, mode_t mode) {
    return ::chmod(path, mode);
}

}  // namespace nkw::host::flash
