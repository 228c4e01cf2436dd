// Writing or erasing a byte range in place: the other bytes of the touched
// erase blocks are read first and written back after the erase.
#include <errno.h>
#include <fcntl.h>

#include <cstdio>
#include <cstdlib>

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
    char *head_bytes;
    char *tail_bytes;
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
    std::free(r.head_bytes);
    std::free(r.tail_bytes);
}

// Saves head and tail, then erases from `start`. The erase length is the
// rounded end offset, not the length of the touched blocks, as callers have
// always had it. Returns the erase retries (0 or 1) or a negative code.
int save_and_erase(const nkw_mtd_partition *partition, uint32_t len, uint32_t offset,
                   const char *erase_failure, Rewrite &r) {
    r.fd = mtd::open_device(partition, O_RDWR);
    if (r.fd < 0) return kSetupFailed;
    r.head_bytes = static_cast<char *>(std::calloc(r.head + 1, 1));
    r.tail_bytes = static_cast<char *>(std::calloc(r.tail, 1));
    if (r.head_bytes == nullptr || r.tail_bytes == nullptr) return kSetupFailed;
    if (mtd::read_range(partition, r.head_bytes, r.head, r.start) != 0 ||
        mtd::read_range(partition, r.tail_bytes, r.tail, static_cast<int64_t>(r.end)) != 0) {
        return kReadOrSeek;
    }
    if (sys::lseek(r.fd, r.start, SEEK_SET) != r.start) return kReadOrSeek;
    if (uint64_t{r.start} + r.head + len > partition->size) return kEraseOrRange;
    int retries = mtd::erase_with_retry(
        r.fd, r.start, nkw_mtd_malloc_all_size(partition, offset, len), erase_failure);
    return retries < 0 ? kEraseOrRange : retries;
}

bool write_all(int fd, const char *bytes, size_t count) {
    return sys::write(fd, bytes, count) == static_cast<ssize_t>(count);
}

int write_range(const nkw_mtd_partition *partition, const char *data, uint32_t len, uint32_t offset,
                Rewrite &r) {
    int retries = save_and_erase(partition, len, offset, "mtd: erase failure at 0x%08lx (%s)\n", r);
    if (retries < 0) return retries;
    if (sys::lseek(r.fd, r.start, SEEK_SET) == r.start) {
        if (!write_all(r.fd, r.head_bytes, r.head) || !write_all(r.fd, data, len) ||
            !write_all(r.fd, r.tail_bytes, r.tail)) {
            return kShortWrite;
        }
    }
    if (retries > 0) std::fprintf(stderr, "mtd: wrote block after %d retries\n", retries);
    return 0;
}

int erase_range(const nkw_mtd_partition *partition, uint32_t len, uint32_t offset, Rewrite &r) {
    int retries = save_and_erase(partition, len, offset,
                                 "mtd: tolv_mtd_erase_block erase failure at 0x%08lx (%s)\n", r);
    if (retries < 0) return retries;
    if (sys::lseek(r.fd, r.start, SEEK_SET) != r.start) return kReadOrSeek;
    if (!write_all(r.fd, r.head_bytes, r.head)) return kShortWrite;
    // The range itself stays erased.
    if (sys::lseek(r.fd, len, SEEK_CUR) != static_cast<off_t>(r.end)) return kReadOrSeek;
    if (!write_all(r.fd, r.tail_bytes, r.tail)) return kShortWrite;
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
