// Production I2C access: the kernel's device and the driver's port id.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "host/i2c.h"

namespace nkw::host::i2c {

int open(const char *path, int flags) {
    return ::open(path, flags);
}

int ioctl(int fd, unsigned long request, unsigned long arg) {
    return ::ioctl(fd, request, arg);
}

int close(int fd) {
    return ::close(fd);
}

uint32_t mail_port_id() {
    return kMailPortId;
}

}  // namespace nkw::host::i2c
