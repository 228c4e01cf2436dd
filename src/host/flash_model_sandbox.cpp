// The simulated raw flash device behind "/dev/mtd<N>" in the test build.
// Each open descriptor is a real eventfd (so its number never collides with
// a file the library opens for real) mapped to a device and a position.
#include <errno.h>
#include <fcntl.h>
#include <mtd/mtd-user.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "host/flash_image.h"
#include "host/flash_model.h"
#include "nkw_pal/common.h"
#include "storage/mtd/mtd.h"

namespace {

constexpr int kDevices = 64;
constexpr int kOpenFiles = 32;
constexpr int kFaultKinds = 8;
constexpr int kAlways = -1;

struct Block {
    bool bad;
    bool wears;
    uint32_t wear_left;  // good erases before it turns bad
    uint32_t erases;
    int pending[kFaultKinds];  // remaining firings of each fault; kAlways for ever
};

struct Device {
    uint32_t size;
    uint32_t erase_size;
    uint32_t write_size;
    bool bad_block_support;
    uint8_t *bytes;
    Block *blocks;
    mtd_ecc_stats ecc;
    int ecc_stats_failures;
};

struct OpenFile {
    int fd;  // -1: free
    int device;
    int access;
    off_t pos;
};

Device *g_devices[kDevices];
OpenFile g_files[kOpenFiles] = {};
bool g_files_ready = false;
int g_mount_errors[2];  // read-write, read-only

void prepare_files() {
    if (g_files_ready) return;
    for (OpenFile &file : g_files) file.fd = -1;
    g_files_ready = true;
}

Device *device_of(int number) {
    return number >= 0 && number < kDevices ? g_devices[number] : nullptr;
}

OpenFile *file_of(int fd) {
    prepare_files();
    for (OpenFile &file : g_files) {
        if (file.fd >= 0 && file.fd == fd) return &file;
    }
    return nullptr;
}

void destroy(Device *device) {
    if (device == nullptr) return;
    std::free(device->bytes);
    std::free(device->blocks);
    std::free(device);
}

// Uses up one firing of a fault; true when it fires.
bool fires(int &pending) {
    if (pending == 0) return false;
    if (pending != kAlways) --pending;
    return true;
}

int fail(int error) {
    errno = error;
    return -1;
}

void note_read(Device &device, off_t pos, size_t count) {
    uint32_t first = static_cast<uint32_t>(pos / device.erase_size);
    uint32_t last = static_cast<uint32_t>((pos + count - 1) / device.erase_size);
    for (uint32_t b = first; b <= last; ++b) {
        if (fires(device.blocks[b].pending[NKW_SIM_FLASH_ECC_CORRECTED])) ++device.ecc.corrected;
        if (fires(device.blocks[b].pending[NKW_SIM_FLASH_ECC_FAILED])) ++device.ecc.failed;
    }
}

int erase(Device &device, const erase_info_user &range) {
    if (range.start % device.erase_size != 0 || range.length % device.erase_size != 0 ||
        range.start >= device.size || range.length > device.size - range.start) {
        return fail(EINVAL);
    }
    for (uint32_t at = range.start; at < range.start + range.length; at += device.erase_size) {
        Block &block = device.blocks[at / device.erase_size];
        if (block.bad || fires(block.pending[NKW_SIM_FLASH_ERASE_FAILURE])) return fail(EIO);
        if (block.wears && block.wear_left == 0) {
            block.bad = true;
            return fail(EIO);
        }
        if (block.wears) --block.wear_left;
        std::memset(device.bytes + at, 0xFF, device.erase_size);
        ++block.erases;
    }
    return 0;
}

int bad_block_state(const Device &device, const loff_t *offset) {
    if (!device.bad_block_support) return fail(EOPNOTSUPP);
    if (*offset < 0 || static_cast<uint64_t>(*offset) >= device.size) return fail(EINVAL);
    return device.blocks[*offset / device.erase_size].bad ? 1 : 0;
}

}  // namespace

namespace nkw::host::flash_model {

int open(int number, int flags) {
    prepare_files();
    if (device_of(number) == nullptr && !nkw::host::flash_image::load(number)) return fail(ENOENT);
    for (OpenFile &file : g_files) {
        if (file.fd >= 0) continue;
        int fd = ::eventfd(0, EFD_CLOEXEC);
        if (fd < 0) return -1;
        file = OpenFile{fd, number, flags & O_ACCMODE, 0};
        return fd;
    }
    return fail(EMFILE);
}

bool owns(int fd) {
    return file_of(fd) != nullptr;
}

bool exists(int number) {
    return device_of(number) != nullptr;
}

ssize_t read(int fd, void *buf, size_t count) {
    OpenFile *file = file_of(fd);
    Device *device = file ? device_of(file->device) : nullptr;
    if (device == nullptr) return fail(EBADF);
    if (file->access == O_WRONLY) return fail(EBADF);
    if (file->pos >= static_cast<off_t>(device->size) || count == 0) return 0;
    size_t left = device->size - static_cast<size_t>(file->pos);
    if (count > left) count = left;
    Block &first = device->blocks[file->pos / device->erase_size];
    if (fires(first.pending[NKW_SIM_FLASH_SHORT_READ])) count /= 2;
    if (count == 0) return 0;
    std::memcpy(buf, device->bytes + file->pos, count);
    note_read(*device, file->pos, count);
    file->pos += static_cast<off_t>(count);
    return static_cast<ssize_t>(count);
}

ssize_t write(int fd, const void *buf, size_t count) {
    OpenFile *file = file_of(fd);
    Device *device = file ? device_of(file->device) : nullptr;
    if (device == nullptr || file->access == O_RDONLY) return fail(EBADF);
    if (count == 0) return 0;
    if (file->pos >= static_cast<off_t>(device->size)) return fail(ENOSPC);
    // NAND programs whole pages: the kernel refuses a write that does not
    // begin on one (a short last page is padded).
    if (file->pos % device->write_size != 0) return fail(EINVAL);
    size_t left = device->size - static_cast<size_t>(file->pos);
    if (count > left) count = left;
    uint32_t first = static_cast<uint32_t>(file->pos / device->erase_size);
    uint32_t last = static_cast<uint32_t>((file->pos + count - 1) / device->erase_size);
    for (uint32_t b = first; b <= last; ++b) {
        if (device->blocks[b].bad) return fail(EIO);
    }
    const uint8_t *data = static_cast<const uint8_t *>(buf);
    uint8_t *cells = device->bytes + file->pos;
    // Programming can only clear bits.
    for (size_t i = 0; i < count; ++i) cells[i] &= data[i];
    if (fires(device->blocks[first].pending[NKW_SIM_FLASH_VERIFY_MISMATCH])) cells[0] ^= 0x01;
    file->pos += static_cast<off_t>(count);
    return static_cast<ssize_t>(count);
}

off_t lseek(int fd, off_t offset, int whence) {
    OpenFile *file = file_of(fd);
    Device *device = file ? device_of(file->device) : nullptr;
    if (device == nullptr) return fail(EBADF);
    off_t base = whence == SEEK_SET   ? 0
                 : whence == SEEK_CUR ? file->pos
                 : whence == SEEK_END ? static_cast<off_t>(device->size)
                                      : -1;
    if (base < 0) return fail(EINVAL);
    off_t target = base + offset;
    if (target < 0 || target > static_cast<off_t>(device->size)) return fail(EINVAL);
    file->pos = target;
    return target;
}

int ioctl(int fd, unsigned long request, void *arg) {
    OpenFile *file = file_of(fd);
    Device *device = file ? device_of(file->device) : nullptr;
    if (device == nullptr) return fail(EBADF);
    switch (request) {
        case MEMGETINFO: {
            mtd_info_user info{};
            info.type = device->bad_block_support ? MTD_NANDFLASH : MTD_NORFLASH;
            info.flags = MTD_WRITEABLE;
            info.size = device->size;
            info.erasesize = device->erase_size;
            info.writesize = device->write_size;
            std::memcpy(arg, &info, sizeof info);
            return 0;
        }
        case MEMERASE: {
            if (file->access == O_RDONLY) return fail(EPERM);
            erase_info_user range;
            std::memcpy(&range, arg, sizeof range);
            return erase(*device, range);
        }
        case MEMGETBADBLOCK:
            return bad_block_state(*device, static_cast<const loff_t *>(arg));
        case ECCGETSTATS:
            if (fires(device->ecc_stats_failures)) return fail(EIO);
            std::memcpy(arg, &device->ecc, sizeof device->ecc);
            return 0;
        default:
            return fail(ENOTTY);
    }
}

int close(int fd) {
    OpenFile *file = file_of(fd);
    if (file == nullptr) return fail(EBADF);
    if (file->access != O_RDONLY) nkw::host::flash_image::save(file->device);
    file->fd = -1;
    return ::close(fd);
}

int mount_error(bool read_only) {
    return g_mount_errors[read_only ? 1 : 0];
}

}  // namespace nkw::host::flash_model

extern "C" {

NKW_PAL_API int nkw_pal_sim_flash_create(int number, uint32_t size, uint32_t erase_size,
                                         uint32_t write_size) {
    if (number < 0 || number >= kDevices || erase_size == 0 || size == 0 ||
        size % erase_size != 0 || write_size == 0) {
        return -1;
    }
    auto *device = static_cast<Device *>(std::calloc(1, sizeof(Device)));
    if (device == nullptr) return -1;
    *device = Device{size, erase_size, write_size, true, nullptr, nullptr, {}, 0};
    device->bytes = static_cast<uint8_t *>(std::malloc(size));
    device->blocks = static_cast<Block *>(std::calloc(size / erase_size, sizeof(Block)));
    if (device->bytes == nullptr || device->blocks == nullptr) {
        destroy(device);
        return -1;
    }
    std::memset(device->bytes, 0xFF, size);
    destroy(g_devices[number]);
    g_devices[number] = device;
    return 0;
}

NKW_PAL_API void nkw_pal_sim_flash_reset(void) {
    prepare_files();
    for (OpenFile &file : g_files) {
        if (file.fd >= 0) ::close(file.fd);
        file.fd = -1;
    }
    for (Device *&device : g_devices) {
        destroy(device);
        device = nullptr;
    }
    g_mount_errors[0] = g_mount_errors[1] = 0;
}

NKW_PAL_API void nkw_pal_sim_flash_forget_partitions(void) {
    nkw::storage::mtd::forget_table();
}

NKW_PAL_API uint8_t *nkw_pal_sim_flash_image(int number) {
    Device *device = device_of(number);
    return device ? device->bytes : nullptr;
}

NKW_PAL_API int nkw_pal_sim_flash_inject(int number, uint32_t block, int fault, int count) {
    Device *device = device_of(number);
    if (device == nullptr || fault < 0 || fault >= kFaultKinds) return -1;
    if (fault == NKW_SIM_FLASH_ECC_STATS_FAILURE) {
        device->ecc_stats_failures = count;
        return 0;
    }
    if (block >= device->size / device->erase_size) return -1;
    if (fault == NKW_SIM_FLASH_BAD_BLOCK) {
        device->blocks[block].bad = true;
    } else if (fault == NKW_SIM_FLASH_WEARS_OUT) {
        device->blocks[block].wears = count >= 0;
        device->blocks[block].wear_left = count >= 0 ? static_cast<uint32_t>(count) : 0;
    } else {
        device->blocks[block].pending[fault] = count;
    }
    return 0;
}

NKW_PAL_API int nkw_pal_sim_flash_set_bad_block_support(int number, int supported) {
    Device *device = device_of(number);
    if (device == nullptr) return -1;
    device->bad_block_support = supported != 0;
    return 0;
}

NKW_PAL_API uint32_t nkw_pal_sim_flash_erase_count(int number, uint32_t block) {
    Device *device = device_of(number);
    if (device == nullptr || block >= device->size / device->erase_size) return 0;
    return device->blocks[block].erases;
}

NKW_PAL_API int nkw_pal_sim_flash_open_count(void) {
    prepare_files();
    int open = 0;
    for (const OpenFile &file : g_files) open += file.fd >= 0 ? 1 : 0;
    return open;
}

NKW_PAL_API void nkw_pal_sim_flash_set_mount_errors(int read_write_errno, int read_only_errno) {
    g_mount_errors[0] = read_write_errno;
    g_mount_errors[1] = read_only_errno;
}

}  // extern "C"
