// Internals shared by the MTD partition files: the stream contexts, the
// kernel interface, and the device helpers.
#pragma once

#include <mtd/mtd-user.h>
#include <stdint.h>
#include <sys/ioctl.h>
#include <sys/types.h>

#include "nkw_pal/storage.h"

// The MTD ioctls as the module's kernel defines them.
static_assert(MEMGETINFO == 0x80204D01u, "MEMGETINFO");
static_assert(MEMERASE == 0x40084D02u, "MEMERASE");
static_assert(MEMGETBADBLOCK == 0x40084D0Bu, "MEMGETBADBLOCK");
static_assert(ECCGETSTATS == 0x80104D12u, "ECCGETSTATS");

struct nkw_mtd_read_context {
    const nkw_mtd_partition *partition;
    char *buffer;     // one erase block
    size_t consumed;  // bytes of `buffer` already handed out
    int fd;
};

struct nkw_mtd_write_context {
    const nkw_mtd_partition *partition;
    char *buffer;   // one erase block
    size_t stored;  // bytes held in `buffer`
    int fd;
    int64_t *bad_blocks;  // offsets found bad, in the order found
    int bad_block_capacity;
    int bad_block_count;
};

namespace nkw::storage::mtd {

// Opens "/dev/mtd<N>" of the partition.
int open_device(const nkw_mtd_partition *partition, int flags);

// MEMGETBADBLOCK for the block at `pos`.
int bad_block_query(int fd, off_t pos);

// MEMERASE of [start, start + length), tried twice; `failure_format` (with
// the start and the error text) is printed before the second try. Returns
// the number of retries (0 or 1), or -1.
int erase_with_retry(int fd, uint32_t start, uint32_t length, const char *failure_format);

// Reads `len` bytes at `offset` with the codes of nkw_mtd_read_block.
int read_range(const nkw_mtd_partition *partition, char *buf, int64_t len, int64_t offset);

// Writes one erase block at the device position onto the next good block:
// 0, or non-zero with errno set (ENOSPC when the partition ends).
int write_good_block(nkw_mtd_write_context *context, const char *data);

// Frees the partition table so the next scan reads "/proc/mtd" again. The
// library never forgets it; test builds use this to scan many lists in one
// process.
void forget_table();

// Refuses a NULL partition or one without an erase size (nothing could be
// read or written in blocks of it), with errno EINVAL and a line naming the
// caller.
bool partition_usable(const char *caller, const nkw_mtd_partition *partition);

// Refuses a NULL argument with errno EINVAL and a line naming the caller.
bool arguments_present(const char *caller, const void *first, const void *second = "");

}  // namespace nkw::storage::mtd
