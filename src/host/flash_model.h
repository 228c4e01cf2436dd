// The simulated raw flash device of the test build. Device nodes
// "/dev/mtd<N>" open onto in-memory devices that tests create and shape
// through the C controls below (exported by the sandbox library only).
//
// Behaves as NOR-like raw flash behind the MTD character device: erased
// bytes read 0xFF, programming only clears bits (so unerased blocks keep
// stale ones), erase works on whole aligned blocks inside the device, seeks
// stay within [0, size], reads and writes are clipped at the end. As on NAND
// a write must begin on a multiple of the write size (EINVAL otherwise); its
// length is free, a short last page being padded.
#pragma once

#include <stdint.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

// Faults a test places on one erase block of a device. `count` is how many
// times the fault fires (-1: always); for the bad mark it is ignored.
enum nkw_pal_sim_flash_fault {
    NKW_SIM_FLASH_BAD_BLOCK = 0,         // MEMGETBADBLOCK reports it; erase and write fail (EIO)
    NKW_SIM_FLASH_WEARS_OUT = 1,         // after `count` more good erases it turns bad
    NKW_SIM_FLASH_ECC_CORRECTED = 2,     // a read of it adds one to the corrected counter
    NKW_SIM_FLASH_ECC_FAILED = 3,        // a read of it adds one to the failed counter
    NKW_SIM_FLASH_VERIFY_MISMATCH = 4,   // a write into it stores its first byte wrongly
    NKW_SIM_FLASH_SHORT_READ = 5,        // a read starting in it returns half the bytes
    NKW_SIM_FLASH_ERASE_FAILURE = 6,     // an erase of it fails (EIO), the data stays
    NKW_SIM_FLASH_ECC_STATS_FAILURE = 7  // ECCGETSTATS fails (EIO); the block is ignored
};

// A fresh erased device number `device` (0..63), replacing one of that
// number. 0, or -1 for a bad geometry (size not a multiple of erase_size).
int nkw_pal_sim_flash_create(int device, uint32_t size, uint32_t erase_size, uint32_t write_size);
// Removes every device and closes descriptors left open on them.
void nkw_pal_sim_flash_reset(void);
// Drops the library's partition table so the next scan reads "/proc/mtd"
// again (the library itself keeps it for the process).
void nkw_pal_sim_flash_forget_partitions(void);
// The device's bytes, for tests to preload and inspect; NULL if absent.
uint8_t *nkw_pal_sim_flash_image(int device);
int nkw_pal_sim_flash_inject(int device, uint32_t block, int fault, int count);
// Without support MEMGETBADBLOCK fails with EOPNOTSUPP.
int nkw_pal_sim_flash_set_bad_block_support(int device, int supported);
uint32_t nkw_pal_sim_flash_erase_count(int device, uint32_t block);
// Descriptors open on simulated devices.
int nkw_pal_sim_flash_open_count(void);
// errno values the next mounts fail with (0: they succeed). Mounts are
// recorded, one line each, in "mounts.log" under the sandbox root.
void nkw_pal_sim_flash_set_mount_errors(int read_write_errno, int read_only_errno);

#ifdef __cplusplus
}  // extern "C"

// What the sandbox's system-call seam routes to the model.
namespace nkw::host::flash_model {

// -1 with errno ENOENT when no such device exists.
int open(int device, int flags);
bool owns(int fd);
ssize_t read(int fd, void *buf, size_t count);
ssize_t write(int fd, const void *buf, size_t count);
off_t lseek(int fd, off_t offset, int whence);
int ioctl(int fd, unsigned long request, void *arg);
int close(int fd);
bool exists(int device);
int mount_error(bool read_only);

}  // namespace nkw::host::flash_model
#endif
