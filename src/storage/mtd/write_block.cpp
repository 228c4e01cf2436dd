// Writing one erase block of a stream: onto the next block that is not
// marked bad, erased, written, read back and compared, with two attempts; a
// block that fails both joins the stream's bad-block list.
#include <errno.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace {

namespace sys = nkw::host::flash;
namespace mtd = nkw::storage::mtd;

constexpr int kAttempts = 2;

int remember_bad_block(nkw_mtd_write_context *context, off_t pos) {
    if (context->bad_block_count == context->bad_block_capacity) {
        int capacity = context->bad_block_capacity * 2 + 1;
        void *grown = std::realloc(context->bad_blocks, sizeof(int64_t) * capacity);
        if (grown == nullptr) {
            errno = ENOMEM;
            return -1;
        }
        context->bad_blocks = static_cast<int64_t *>(grown);
        context->bad_block_capacity = capacity;
    }
    context->bad_blocks[context->bad_block_count++] = pos;
    return 0;
}

// One attempt: erase, write, read back, compare.
bool attempt(int fd, off_t pos, const char *data, char *verify, size_t block) {
    const auto at = static_cast<unsigned long>(pos);
    erase_info_user range{static_cast<uint32_t>(pos), static_cast<uint32_t>(block)};
    if (sys::ioctl(fd, MEMERASE, &range) < 0) {
        std::fprintf(stderr, "mtd: erase failure at 0x%08lx (%s)\n", at, std::strerror(errno));
        return false;
    }
    if (sys::lseek(fd, pos, SEEK_SET) != pos ||
        sys::write(fd, data, block) != static_cast<ssize_t>(block)) {
        // The read-back below decides.
        std::fprintf(stderr, "mtd: write error at 0x%08lx (%s)\n", at, std::strerror(errno));
    }
    if (sys::lseek(fd, pos, SEEK_SET) != pos ||
        sys::read(fd, verify, block) != static_cast<ssize_t>(block)) {
        std::fprintf(stderr, "mtd: re-read error at 0x%08lx (%s)\n", at, std::strerror(errno));
        return false;
    }
    if (std::memcmp(data, verify, block) != 0) {
        std::fprintf(stderr, "mtd: verification error at 0x%08lx (%s)\n", at, std::strerror(errno));
        return false;
    }
    return true;
}

}  // namespace

namespace nkw::storage::mtd {

int write_good_block(nkw_mtd_write_context *context, const char *data) {
    const nkw_mtd_partition *partition = context->partition;
    const size_t block = partition->erase_size;
    off_t pos = sys::lseek(context->fd, 0, SEEK_CUR);
    if (pos == -1) return 1;
    char *verify = static_cast<char *>(std::malloc(block));
    if (verify == nullptr) return -1;

    int result = -1;
    bool out_of_memory = false;
    for (; pos + static_cast<off_t>(block) <= static_cast<off_t>(partition->size);
         pos += static_cast<off_t>(block)) {
        const auto at = static_cast<unsigned long>(pos);
        int bad = bad_block_query(context->fd, pos);
        if (bad != 0 && !(bad == -1 && errno == EOPNOTSUPP)) {
            int error = errno;
            out_of_memory = remember_bad_block(context, pos) != 0;
            if (out_of_memory) break;
            std::fprintf(stderr, "mtd: not writing bad block at 0x%08lx (ret %d errno %d)\n", at,
                         bad, error);
            continue;
        }
        for (int retry = 0; retry < kAttempts && result != 0; ++retry) {
            if (!attempt(context->fd, pos, data, verify, block)) continue;
            if (retry > 0) std::fprintf(stderr, "mtd: wrote block after %d retries\n", retry);
            result = 0;
        }
        if (result == 0) break;
        out_of_memory = remember_bad_block(context, pos) != 0;
        if (out_of_memory) break;
        std::fprintf(stderr, "mtd: skipping write block at 0x%08lx\n", at);
        // Do not leave it half written.
        erase_info_user range{static_cast<uint32_t>(pos), static_cast<uint32_t>(block)};
        sys::ioctl(context->fd, MEMERASE, &range);
    }
    std::free(verify);
    if (result != 0) errno = out_of_memory ? ENOMEM : ENOSPC;
    return result;
}

}  // namespace nkw::storage::mtd

extern "C" NKW_PAL_API off_t mtd_find_write_start(const nkw_mtd_write_context *context, off_t pos) {
    if (!mtd::arguments_present(__func__, context)) return -1;
    for (int i = 0; i < context->bad_block_count; ++i) {
        if (context->bad_blocks[i] == pos) {
            pos += static_cast<off_t>(context->partition->erase_size);
        } else if (context->bad_blocks[i] > pos) {
            break;
        }
    }
    return pos;
}
