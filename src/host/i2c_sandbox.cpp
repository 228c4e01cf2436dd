// Test-build I2C: "/dev/i2c-0" opens onto a simulated bus. Slaves sit at
// 7- or 10-bit addresses, each a 256-byte register file with an address
// pointer: a write's first byte sets the pointer and the rest are stored from
// there, a read returns bytes from the pointer on (both wrap). The ioctls
// check what the kernel's I2C device checks; a message to an address nobody
// answers fails with ENXIO. Tests can fail the next ioctl of a kind, remove
// the device, and close the library's descriptors behind its back.
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>

#include "host/i2c.h"
#include "nkw_pal/common.h"

namespace {

constexpr int kMaxSlaves = 8;
constexpr int kMaxOpen = 8;
constexpr size_t kRegisters = 256;
constexpr uint32_t kMaxMessages = 42;  // I2C_RDWR_IOCTL_MAX_MSGS
constexpr uint16_t kMaxMessageLen = 8192;
constexpr unsigned long kMax7Bit = 0x7F;
constexpr unsigned long kMax10Bit = 0x3FF;

struct Slave {
    bool used = false;
    uint16_t address = 0;
    bool ten_bit = false;
    uint8_t pointer = 0;
    uint8_t registers[kRegisters] = {};
};

struct OpenDevice {
    int fd = -1;
    unsigned long address = 0;
    bool ten_bit = false;
    bool yanked = false;  // closed behind the library's back
};

enum Kind { kSlave = 0, kTenBit = 1, kTransfer = 2, kKinds = 3 };

struct Bus {
    bool absent = false;
    Slave slaves[kMaxSlaves];
    OpenDevice open[kMaxOpen];
    int fail_errno[kKinds] = {};
    int transfers = 0;
    int last_tenbit = -1;
};

std::mutex &lock() {
    static std::mutex instance;
    return instance;
}

Bus &bus() {
    static Bus instance;
    return instance;
}

int fail(int err) {
    errno = err;
    return -1;
}

OpenDevice *open_device(int fd) {
    for (OpenDevice &d : bus().open) {
        if (d.fd == fd && fd >= 0) return &d;
    }
    return nullptr;
}

Slave *slave_at(uint16_t address, bool ten_bit) {
    for (Slave &s : bus().slaves) {
        if (s.used && s.address == address && s.ten_bit == ten_bit) return &s;
    }
    return nullptr;
}

int take(Kind kind) {
    int &err = bus().fail_errno[kind];
    if (err == 0) return 0;
    int taken = err;
    err = 0;
    return fail(taken);
}

void move(Slave &slave, i2c_msg &msg) {
    size_t at = 0;
    if ((msg.flags & I2C_M_RD) == 0 && msg.len > 0) slave.pointer = msg.buf[at++];
    for (; at < msg.len; ++at) {
        uint8_t &cell = slave.registers[slave.pointer++];
        if (msg.flags & I2C_M_RD) {
            msg.buf[at] = cell;
        } else {
            cell = msg.buf[at];
        }
    }
}

int transfer(const i2c_rdwr_ioctl_data *data) {
    if (data->nmsgs == 0 || data->nmsgs > kMaxMessages) return fail(EINVAL);
    for (uint32_t i = 0; i < data->nmsgs; ++i) {
        if (data->msgs[i].len > kMaxMessageLen) return fail(EINVAL);
    }
    if (take(kTransfer) != 0) return -1;
    for (uint32_t i = 0; i < data->nmsgs; ++i) {
        i2c_msg &msg = data->msgs[i];
        Slave *slave = slave_at(msg.addr, (msg.flags & I2C_M_TEN) != 0);
        if (slave == nullptr) return fail(ENXIO);
        move(*slave, msg);
    }
    ++bus().transfers;
    return static_cast<int>(data->nmsgs);
}

}  // namespace

namespace nkw::host::i2c {

int open(const char *path, int flags) {
    std::lock_guard<std::mutex> guard(lock());
    if (std::strcmp(path, kDevice) != 0 || bus().absent) return fail(ENOENT);
    OpenDevice *slot = nullptr;
    for (OpenDevice &d : bus().open) {
        if (d.fd < 0) {
            slot = &d;
            break;
        }
    }
    if (slot == nullptr) return fail(EMFILE);
    int fd = memfd_create("i2c-0", (flags & O_CLOEXEC) ? MFD_CLOEXEC : 0);
    if (fd < 0) return -1;
    *slot = OpenDevice{};
    slot->fd = fd;
    return fd;
}

int ioctl(int fd, unsigned long request, unsigned long arg) {
    std::lock_guard<std::mutex> guard(lock());
    OpenDevice *device = open_device(fd);
    if (device == nullptr || device->yanked) return fail(EBADF);
    switch (request) {
        case I2C_SLAVE:
            if (take(kSlave) != 0) return -1;
            if (arg > (device->ten_bit ? kMax10Bit : kMax7Bit)) return fail(EINVAL);
            device->address = arg;
            return 0;
        case I2C_TENBIT:
            if (take(kTenBit) != 0) return -1;
            device->ten_bit = arg != 0;
            bus().last_tenbit = device->ten_bit ? 1 : 0;
            return 0;
        case I2C_RDWR:
            return transfer(reinterpret_cast<const i2c_rdwr_ioctl_data *>(arg));
        default:
            return fail(ENOTTY);
    }
}

int close(int fd) {
    std::lock_guard<std::mutex> guard(lock());
    OpenDevice *device = open_device(fd);
    if (device == nullptr) return ::close(fd);
    if (device->yanked) return fail(EBADF);
    *device = OpenDevice{};
    return ::close(fd);
}

uint32_t mail_port_id() {
    // Above the pid range and below the ids the kernel picks for sockets
    // bound without one.
    return 0x40000000u | static_cast<uint32_t>(getpid());
}

}  // namespace nkw::host::i2c

// Test-only controls, exported by the sandbox build.
extern "C" {

// Empties the bus, forgets faults and counters; "/dev/i2c-0" present again.
NKW_PAL_API void nkw_pal_sandbox_i2c_reset(void) {
    std::lock_guard<std::mutex> guard(lock());
    for (OpenDevice &d : bus().open) {
        if (d.fd >= 0 && !d.yanked) ::close(d.fd);
    }
    bus() = Bus{};
}

// Whether "/dev/i2c-0" exists.
NKW_PAL_API void nkw_pal_sandbox_i2c_set_present(int present) {
    std::lock_guard<std::mutex> guard(lock());
    bus().absent = present == 0;
}

// Adds a slave; 0, or -1 when the bus is full.
NKW_PAL_API int nkw_pal_sandbox_i2c_add_slave(uint16_t address, int ten_bit) {
    std::lock_guard<std::mutex> guard(lock());
    for (Slave &s : bus().slaves) {
        if (!s.used) {
            s = Slave{};
            s.used = true;
            s.address = address;
            s.ten_bit = ten_bit != 0;
            return 0;
        }
    }
    return -1;
}

// The register file of a slave, for tests to preload and inspect; NULL if absent.
NKW_PAL_API uint8_t *nkw_pal_sandbox_i2c_registers(uint16_t address, int ten_bit) {
    std::lock_guard<std::mutex> guard(lock());
    Slave *slave = slave_at(address, ten_bit != 0);
    return slave != nullptr ? slave->registers : nullptr;
}

// The next I2C_SLAVE (0), I2C_TENBIT (1) or I2C_RDWR (2) fails with `err`.
NKW_PAL_API void nkw_pal_sandbox_i2c_fail_next(int kind, int err) {
    std::lock_guard<std::mutex> guard(lock());
    if (kind >= kSlave && kind < kKinds) bus().fail_errno[kind] = err;
}

// Closes every open descriptor of the device behind the library's back
// (restore: 0) or reopens them under their old numbers (restore: 1).
NKW_PAL_API void nkw_pal_sandbox_i2c_yank(int restore) {
    std::lock_guard<std::mutex> guard(lock());
    for (OpenDevice &d : bus().open) {
        if (d.fd < 0) continue;
        if (restore == 0 && !d.yanked) {
            ::close(d.fd);
            d.yanked = true;
        } else if (restore != 0 && d.yanked) {
            int fresh = memfd_create("i2c-0", 0);
            if (fresh >= 0 && fresh != d.fd) {
                dup2(fresh, d.fd);
                ::close(fresh);
            }
            d.yanked = false;
        }
    }
}

// Completed transfers; the last I2C_TENBIT value (-1 before any).
NKW_PAL_API int nkw_pal_sandbox_i2c_transfers(void) {
    std::lock_guard<std::mutex> guard(lock());
    return bus().transfers;
}
NKW_PAL_API int nkw_pal_sandbox_i2c_last_tenbit(void) {
    std::lock_guard<std::mutex> guard(lock());
    return bus().last_tenbit;
}

// The port id the library binds its mail socket to in this process.
NKW_PAL_API uint32_t nkw_pal_sandbox_i2c_mail_port(void) {
    return nkw::host::i2c::mail_port_id();
}

}  // extern "C"
