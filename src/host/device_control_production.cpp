// Production module-control access: the nodes and commands as written.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "host/device_control.h"
#include "host/host.h"

namespace nkw::host::device_control {

int open(const char *path, int flags) {
    return ::open(path, flags);
}

int ioctl(int fd, unsigned long request, int *arg) {
    return ::ioctl(fd, request, arg);
}

ssize_t read(int fd, void *buf, size_t count) {
    return ::read(fd, buf, count);
}

ssize_t write(int fd, const void *buf, size_t count) {
    return ::write(fd, buf, count);
}

int close(int fd) {
    return ::close(fd);
}

FILE *fopen(const char *path, const char *mode) {
    return std::fopen(path, mode);
}

int run_command(const char *command_line) {
    return run_shell(command_line);
}

}  // namespace nkw::host::device_control
