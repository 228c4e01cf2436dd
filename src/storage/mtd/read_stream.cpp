// Streaming reads that deliver the good blocks of a partition in order,
// skipping blocks that cannot be read, that show new uncorrectable ECC
// errors, or that are marked bad.
#include <errno.h>
#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/flash.h"
#include "storage/mtd/mtd.h"

namespace {

namespace sys = nkw::host::flash;
using nkw::storage::mtd::arguments_present;

bool ecc_stats(int fd, mtd_ecc_stats *stats) {
    if (sys::ioctl(fd, ECCGETSTATS, stats) == 0) return true;
    std::fprintf(stderr, "mtd: ECCGETSTATS error (%s)\n", std::strerror(errno));
    return false;
}

// Reads the next good erase block at or after the device position.
int read_good_block(const nkw_mtd_partition *partition, int fd, char *data) {
    mtd_ecc_stats before;
    if (!ecc_stats(fd, &before)) return -1;
    const size_t block = partition->erase_size;
    for (off_t pos = sys::lseek(fd, 0, SEEK_CUR); pos >= 0; pos += static_cast<off_t>(block)) {
        if (pos + static_cast<off_t>(block) > static_cast<off_t>(partition->size)) break;
        const auto at = static_cast<unsigned long>(pos);
        if (sys::lseek(fd, pos, SEEK_SET) != pos ||
            sys::read(fd, data, block) != static_cast<ssize_t>(block)) {
            std::fprintf(stderr, "mtd: read error at 0x%08lx (%s)\n", at, std::strerror(errno));
            continue;
        }
        mtd_ecc_stats after;
        if (!ecc_stats(fd, &after)) return -1;
        if (after.failed != before.failed) {
            std::fprintf(stderr, "mtd: ECC errors (%d soft, %d hard) at 0x%08lx\n",
                         static_cast<int>(after.corrected - before.corrected),
                         static_cast<int>(after.failed - before.failed), at);
            before = after;
            continue;
        }
        int bad = nkw::storage::mtd::bad_block_query(fd, pos);
        if (bad == 0) return 0;
        std::fprintf(stderr, "mtd: MEMGETBADBLOCK returned %d at 0x%08lx (errno=%d)\n", bad, at,
                     errno);
    }
    errno = ENOSPC;
    return -1;
}

}  // namespace

extern "C" {

NKW_PAL_API nkw_mtd_read_context *nkw_mtd_read_partition(const nkw_mtd_partition *partition) {
    if (!nkw::storage::mtd::partition_usable(__func__, partition)) return nullptr;
    auto *context =
        static_cast<nkw_mtd_read_context *>(std::calloc(1, sizeof(nkw_mtd_read_context)));
    if (context == nullptr) return nullptr;
    context->buffer = static_cast<char *>(std::malloc(partition->erase_size));
    if (context->buffer == nullptr) {
        std::free(context);
        return nullptr;
    }
    context->fd = nkw::storage::mtd::open_device(partition, O_RDONLY);
    if (context->fd < 0) {
        std::free(context->buffer);
        std::free(context);
        return nullptr;
    }
    context->partition = partition;
    context->consumed = partition->erase_size;  // nothing buffered yet
    return context;
}

NKW_PAL_API off_t nkw_mtd_read_skip_to(const nkw_mtd_read_context *context, off_t offset) {
    if (!arguments_present(__func__, context)) return -1;
    return sys::lseek(context->fd, offset, SEEK_SET);
}

NKW_PAL_API ssize_t nkw_mtd_read_data(nkw_mtd_read_context *context, char *data, size_t len) {
    if (!arguments_present(__func__, context, data)) return -1;
    const size_t block = context->partition->erase_size;
    size_t done = 0;
    while (done < len) {
        if (context->consumed < block) {
            size_t take = block - context->consumed;
            if (take > len - done) take = len - done;
            std::memcpy(data + done, context->buffer + context->consumed, take);
            context->consumed += take;
            done += take;
        }
        // Whole blocks go straight into the caller's buffer.
        while (context->consumed == block && len - done >= block) {
            if (read_good_block(context->partition, context->fd, data + done) != 0) return -1;
            done += block;
        }
        if (done < len && context->consumed == block) {
            if (read_good_block(context->partition, context->fd, context->buffer) != 0) return -1;
            context->consumed = 0;
        }
    }
    return static_cast<ssize_t>(done);
}

NKW_PAL_API void nkw_mtd_read_close(nkw_mtd_read_context *context) {
    if (context == nullptr) return;
    sys::close(context->fd);
    std::free(context->buffer);
    std::free(context);
}

}  // extern "C"
