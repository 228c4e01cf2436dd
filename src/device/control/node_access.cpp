// Writing a command into, and reading a status back from, a device or
// sysfs node.
#include <fcntl.h>

#include <cstring>

#include "device/control/control.h"
#include "diag/log.h"
#include "host/device_control.h"

namespace host = nkw::host::device_control;
using nkw::device::kTag;

namespace {
constexpr size_t kReadMax = 100;
}  // namespace

int32_t nkw_pal_open_write_func(const char *node_name, const char *command) {
    if (node_name == nullptr) {
        NKW_LOGE(kTag, "node_name is null \n");
        return -1;
    }
    if (command == nullptr) {
        NKW_LOGE(kTag, "command is null \n");
        return -1;
    }
    const int fd = host::open(node_name, O_RDWR);
    if (fd < 0) {
        NKW_LOGE(kTag, "failed to open %s \n", node_name);
        return -1;
    }
    if (host::write(fd, command, std::strlen(command)) == -1) {
        NKW_LOGE(kTag, "failed to write %s to %s\n \n", command, node_name);
        // Closed here as well: nothing needs the descriptor after a failure.
        if (fd != 0) host::close(fd);
        return -1;
    }
    if (fd != 0) host::close(fd);
    return 0;
}

int32_t nkw_pal_open_read_func(const char *node_name) {
    if (node_name == nullptr) {
        NKW_LOGE(kTag, "node_name is null \n");
        return -1;
    }
    const int fd = host::open(node_name, O_RDWR);
    if (fd < 0) {
        NKW_LOGE(kTag, "failed to open %s\n \n", node_name);
        return -1;
    }
    // Error level, as the existing log readers expect.
    NKW_LOGE(kTag, "success to open %s\n \n", node_name);
    // One byte more than is read keeps the logged text terminated.
    char status[kReadMax + 1] = {};
    const ssize_t got = host::read(fd, status, kReadMax);
    if (got == -1) {
        NKW_LOGE(kTag, "failed to read %s \n \n", node_name);
        if (fd != 0) host::close(fd);
        return -1;
    }
    NKW_LOGE(kTag, "read success is %s, status is %d,fd is %d\n \n", status, static_cast<int>(got),
             fd);
    if (fd != 0) host::close(fd);
    return 0;
}
