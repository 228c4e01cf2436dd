// Test-build flash access: "/dev/mtd<N>" opens the simulated flash device,
// every other path is relocated under the sandbox root, ioctls reach only the
// simulated device, and mounts are recorded in "mounts.log" under the root,
// never performed.
#include <errno.h>
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/flash.h"
#include "host/flash_model.h"
#include "host/host.h"

namespace {

namespace model = nkw::host::flash_model;

// The device number of a node named exactly as `format` (which ends in
// "%d") gives it, or -1.
int device_number(const char *path, const char *format) {
    size_t prefix = std::strlen(format) - 2;
    if (std::strncmp(path, format, prefix) != 0) return -1;
    const char *digits = path + prefix;
    if (*digits < '0' || *digits > '9') return -1;
    char *end = nullptr;
    long number = std::strtol(digits, &end, 10);
    if (*end != '\0' || number > 0xFFFF) return -1;
    return static_cast<int>(number);
}

void record_mount(const char *source, const char *target, const char *filesystem,
                  unsigned long flags) {
    nkw::host::Path log("/mounts.log");
    std::FILE *out = std::fopen(log.c_str(), "a");
    if (out == nullptr) return;
    std::fprintf(out, "%s %s %s 0x%lx\n", source, target, filesystem ? filesystem : "(null)",
                 flags);
    std::fclose(out);
}

}  // namespace

namespace nkw::host::flash {

int open(const char *path, int flags) {
    int number = device_number(path, kCharDeviceFormat);
    if (number >= 0) return model::open(number, flags);
    Path relocated(path);
    return ::open(relocated.c_str(), flags);
}

ssize_t read(int fd, void *buf, size_t count) {
    return model::owns(fd) ? model::read(fd, buf, count) : ::read(fd, buf, count);
}

ssize_t write(int fd, const void *buf, size_t count) {
    return model::owns(fd) ? model::write(fd, buf, count) : ::write(fd, buf, count);
}

off_t lseek(int fd, off_t offset, int whence) {
    return model::owns(fd) ? model::lseek(fd, offset, whence) : ::lseek(fd, offset, whence);
}

int ioctl(int fd, unsigned long request, void *arg) {
    if (model::owns(fd)) return model::ioctl(fd, request, arg);
    errno = ENOTTY;
    return -1;
}

int close(int fd) {
    return model::owns(fd) ? model::close(fd) : ::close(fd);
}

int mount(const char *source, const char *target, const char *filesystem, unsigned long flags) {
    int number = device_number(source, kBlockDeviceFormat);
    if (number < 0 || !model::exists(number)) {
        errno = ENOENT;
        return -1;
    }
    record_mount(source, target, filesystem, flags);
    int error = model::mount_error((flags & MS_RDONLY) != 0);
    if (error != 0) {
        errno = error;
        return -1;
    }
    return 0;
}

int stat(const char *path, struct stat *info) {
    Path relocated(path);
    return ::stat(relocated.c_str(), info);
}

int chmod(const char *path, mode_t mode) {
    Path relocated(path);
    return ::chmod(relocated.c_str(), mode);
}

}  // namespace nkw::host::flash
