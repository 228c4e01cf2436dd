// The I2C bus device and the port id of the interrupt mail socket. The test
// build routes the device to a simulated bus and gives every test process a
// port id of its own, so tests running side by side never share a mailbox.
#pragma once

#include <cstdint>

namespace nkw::host::i2c {

inline constexpr const char kDevice[] = "/dev/i2c-0";
// The kernel driver posts interrupt messages to this netlink port id.
inline constexpr uint32_t kMailPortId = 0xFFFF0010;

int open(const char *path, int flags);
int ioctl(int fd, unsigned long request, unsigned long arg);
int close(int fd);
uint32_t mail_port_id();

}  // namespace nkw::host::i2c
