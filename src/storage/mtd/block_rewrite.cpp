// Writing or erasing a byte range in place: the other bytes of the touched
// erase blocks are read first and written back after the erase.
#include <errno.h>
#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace sys = nkw::host::flash;
namespace mtd = nkw::storage::mtd;

namespace {

enum : int { kSetupFailed = -1, kReadOrSeek = -2, kShortWrite = -3, kEraseOrRange = -4 };

// The range [offset, offset + len) within its erase blocks.
struct Rewrite {
    uint32_t start;  // offset rounded down to a block
    uint32_t head;   // bytes kept before the range
    uint64_t end;    // offset + len
    uint32_t tail;   // bytes kept after it; a whole block when `end` is aligned
    // head, range and tail as they go back: whole blocks from `start`, so one
    // write that begins on a page, which NAND requires of every write.
    char *image;
    int fd;
};

Rewrite plan(const nkw_mtd_partition *partition, uint32_t len, uint32_t offset) {
    const uint32_t block = partition->erase_size;
    Rewrite r{};
    r.start = offset / block * block;
    r.head = offset - r.start;
    r.end = uint64_t{offset} + len;
    r.tail = block - static_cast<uint32_t>(r.end % block);
    r.fd = -1;
    return r;
}

void release(Rewrite &r) {
    if (r.fd >= 0) sys::close(r.fd);
    std::free(r.image);
}

// Saves head and tail, then erases from `start`. The erase length is the
// rounded end offset, not the length of the touched blocks, as callers have
// always had it. Returns the erase retries (0 or 1) or a negative code.
int save_and_erase(const nkw_mtd_partition *partition, uint32_t len, uint32_t offset,
                   const char *erase_failure, Rewrite &r) {
    r.fd = mtd::open_device(partition, O_RDWR);
    if (r.fd < 0) return kSetupFailed;
    // A range past the end could not have its tail read; refuse it before
    // sizing the image by it.
    if (r.end > partition->size) return kReadOrSeek;
    r.image = static_cast<char *>(std::calloc(size_t{r.head} + len + r.tail, 1));
    if (r.image == nullptr) return kSetupFailed;
    if (mtd::read_range(partition, r.image, r.head, r.start) != 0 ||
        mtd::read_range(partition, r.image + r.head + len, r.tail, static_cast<int64_t>(r.end)) !=
            0) {
        return kReadOrSeek;
    }
    if (sys::lseek(r.fd, r.start, SEEK_SET) != r.start) return kReadOrSeek;
    if (uint64_t{r.start} + r.head + len > partition->size) return kEraseOrRange;
    int retries = mtd::erase_with_retry(
        r.fd, r.start, nkw_mtd_malloc_all_size(partition, offset, len), erase_failure);
    return retries < 0 ? kEraseOrRange : retries;
}

bool write_image(const Rewrite &r, uint32_t len) {
    const size_t count = size_t{r.head} + len + r.tail;
    return sys::write(r.fd, r.image, count) == static_cast<ssize_t>(count);
}

int write_range(const nkw_mtd_partition *partition, const char *data, uint32_t len, uint32_t offset,
                Rewrite &r) {
    int retries = save_and_erase(partition, len, offset, "mtd: erase failure at 0x%08lx (%s)\n", r);
    if (retries < 0) return retries;
    std::memcpy(r.image + r.head, data, len);
    if (sys::lseek(r.fd, r.start, SEEK_SET) == r.start && !write_image(r, len)) return kShortWrite;
    if (retries > 0) std::fprintf(stderr, "mtd: wrote block after %d retries\n", retries);
    return 0;
}

int erase_range(const nkw_mtd_partition *partition, uint32_t len, uint32_t offset, Rewrite &r) {
    int retries = save_and_erase(partition, len, offset,
                                 "mtd: tolv_mtd_erase_block erase failure at 0x%08lx (%s)\n", r);
    if (retries < 0) return retries;
    if (sys::lseek(r.fd, r.start, SEEK_SET) != r.start) return kReadOrSeek;
    // Programming 0xFF leaves the range as erased.
    std::memset(r.image + r.head, 0xFF, len);
    if (!write_image(r, len)) return kShortWrite;
    return 0;
}

}  // namespace

extern "C" {

NKW_PAL_API int nkw_mtd_write_block(const nkw_mtd_partition *partition, const char *data,
                                    uint32_t len, uint32_t offset) {
    if (!mtd::partition_usable(__func__, partition) || !mtd::arguments_present(__func__, data)) {
        return kSetupFailed;
    }
    Rewrite r = plan(partition, len, offset);
    int result = write_range(partition, data, len, offset, r);
    release(r);
    return result;
}

NKW_PAL_API int nkw_mtd_erase_block(const nkw_mtd_partition *partition, uint32_t len,
                                    uint32_t offset) {
    if (!mtd::partition_usable(__func__, partition)) return kSetupFailed;
    Rewrite r = plan(partition, len, offset);
    int result = erase_range(partition, len, offset, r);
    release(r);
    return result;
}

}  // extern "C"
