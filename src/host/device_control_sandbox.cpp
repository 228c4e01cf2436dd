// Test-build module-control access. Every node is a file under the sandbox
// root (tests create, truncate or omit it). "/dev/pcie_dipc", when its file
// exists, answers the status ioctl with what the test set. The next read or
// write of any node can be made to fail.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>

#include "host/device_control.h"
#include "host/host.h"
#include "nkw_pal/common.h"

namespace {

constexpr unsigned long kPcieStatusRequest = 0xC0044B03;

struct Model {
    int pcie_fd = -1;
    int pcie_status = 0;
    int pcie_ioctl_errno = 0;
    int fail_read_errno = 0;
    int fail_write_errno = 0;
};

std::mutex &lock() {
    static std::mutex instance;
    return instance;
}

Model &model() {
    static Model instance;
    return instance;
}

// Takes a queued failure: -1 with errno set, else 0.
int take(int *err) {
    if (*err == 0) return 0;
    errno = *err;
    *err = 0;
    return -1;
}

}  // namespace

namespace nkw::host::device_control {

int open(const char *path, int flags) {
    Path relocated(path);
    int fd = ::open(relocated.c_str(), flags);
    if (fd >= 0 && std::strcmp(path, kPcieDipc) == 0) {
        std::lock_guard<std::mutex> guard(lock());
        model().pcie_fd = fd;
    }
    return fd;
}

int ioctl(int fd, unsigned long request, int *arg) {
    std::lock_guard<std::mutex> guard(lock());
    if (fd != model().pcie_fd || request != kPcieStatusRequest) {
        errno = ENOTTY;
        return -1;
    }
    if (take(&model().pcie_ioctl_errno) != 0) return -1;
    *arg = model().pcie_status;
    return 0;
}

ssize_t read(int fd, void *buf, size_t count) {
    {
        std::lock_guard<std::mutex> guard(lock());
        if (take(&model().fail_read_errno) != 0) return -1;
    }
    return ::read(fd, buf, count);
}

ssize_t write(int fd, const void *buf, size_t count) {
    {
        std::lock_guard<std::mutex> guard(lock());
        if (take(&model().fail_write_errno) != 0) return -1;
    }
    return ::write(fd, buf, count);
}

int close(int fd) {
    {
        std::lock_guard<std::mutex> guard(lock());
        if (fd == model().pcie_fd) model().pcie_fd = -1;
    }
    return ::close(fd);
}

FILE *fopen(const char *path, const char *mode) {
    Path relocated(path);
    return std::fopen(relocated.c_str(), mode);
}

int run_command(const char *command_line) {
    if (command_line[0] != '/') return run_shell(command_line);
    Path relocated(command_line);
    return run_shell(relocated.c_str());
}

}  // namespace nkw::host::device_control

// Test-only controls, exported by the sandbox build.
extern "C" {

// What the status ioctl of "/dev/pcie_dipc" reports; a non-zero `ioctl_errno`
// makes the next status ioctl fail with it instead.
NKW_PAL_API void nkw_pal_sandbox_pcie_dipc_set(int status, int ioctl_errno) {
    std::lock_guard<std::mutex> guard(lock());
    model().pcie_status = status;
    model().pcie_ioctl_errno = ioctl_errno;
}

// The next read (0) or write (1) of a module-control node fails with `err`.
NKW_PAL_API void nkw_pal_sandbox_node_fail_next(int which, int err) {
    std::lock_guard<std::mutex> guard(lock());
    (which == 0 ? model().fail_read_errno : model().fail_write_errno) = err;
}

}  // extern "C"
