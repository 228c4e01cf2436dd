// Erasing the rest of a write stream, and closing it: the held partial
// block is padded with zero bytes and written first.
#include <errno.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace sys = nkw::host::flash;
namespace mtd = nkw::storage::mtd;

extern "C" {

NKW_PAL_API off_t nkw_mtd_erase_blocks(nkw_mtd_write_context *context, int blocks) {
    if (!mtd::arguments_present(__func__, context)) return -1;
    const nkw_mtd_partition *partition = context->partition;
    const off_t block = partition->erase_size;
    if (context->stored > 0) {
        std::memset(context->buffer + context->stored, 0, partition->erase_size - context->stored);
        if (mtd::write_good_block(context, context->buffer) != 0) return -1;
        context->stored = 0;
    }

    off_t pos = sys::lseek(context->fd, 0, SEEK_CUR);
    if (pos == -1) return -1;
    const off_t left = (static_cast<off_t>(partition->size) - pos) / block;
    if (blocks < 0) blocks = static_cast<int>(left);
    if (blocks > left) {
        errno = ENOSPC;
        return -1;
    }
    for (int i = 0; i < blocks; ++i, pos += block) {
        const auto at = static_cast<unsigned long>(pos);
        if (mtd::bad_block_query(context->fd, pos) > 0) {
            std::fprintf(stderr, "mtd: not erasing bad block at 0x%08lx\n", at);
            continue;
        }
        erase_info_user range{static_cast<uint32_t>(pos), partition->erase_size};
        if (sys::ioctl(context->fd, MEMERASE, &range) < 0) {
            std::fprintf(stderr, "mtd: erase failure at 0x%08lx\n", at);
        }
    }
    return pos;
}

NKW_PAL_API int nkw_mtd_write_close(nkw_mtd_write_context *context) {
    if (!mtd::arguments_present(__func__, context)) return -1;
    off_t flushed = nkw_mtd_erase_blocks(context, 0);
    int closed = sys::close(context->fd);
    std::free(context->bad_blocks);
    std::free(context->buffer);
    std::free(context);
    return flushed == -1 || closed != 0 ? -1 : 0;
}

}  // extern "C"
