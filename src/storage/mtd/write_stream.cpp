// Streaming writes: data is gathered into whole erase blocks, each written
// onto the next good block of the partition.
#include <errno.h>
#include <fcntl.h>

#include <cstdlib>
#include <cstring>

#include "storage/mtd/mtd.h"

namespace mtd = nkw::storage::mtd;

extern "C" {

NKW_PAL_API nkw_mtd_write_context *nkw_mtd_write_partition(const nkw_mtd_partition *partition) {
    if (!mtd::partition_usable(__func__, partition)) return nullptr;
    auto *context =
        static_cast<nkw_mtd_write_context *>(std::calloc(1, sizeof(nkw_mtd_write_context)));
    if (context == nullptr) return nullptr;
    context->buffer = static_cast<char *>(std::malloc(partition->erase_size));
    if (context->buffer == nullptr) {
        std::free(context);
        return nullptr;
    }
    context->fd = mtd::open_device(partition, O_RDWR);
    if (context->fd < 0) {
        std::free(context->buffer);
        std::free(context);
        return nullptr;
    }
    context->partition = partition;
    return context;
}

NKW_PAL_API ssize_t nkw_mtd_write_data(nkw_mtd_write_context *context, const char *data,
                                       size_t len) {
    if (!mtd::arguments_present(__func__, context, data)) return -1;
    const size_t block = context->partition->erase_size;
    size_t done = 0;
    while (done < len) {
        if (context->stored > 0 || len - done < block) {
            size_t take = block - context->stored;
            if (take > len - done) take = len - done;
            std::memcpy(context->buffer + context->stored, data + done, take);
            context->stored += take;
            done += take;
        }
        if (context->stored == block) {
            if (mtd::write_good_block(context, context->buffer) != 0) return -1;
            context->stored = 0;
        }
        // Whole blocks go straight from the caller's buffer.
        while (context->stored == 0 && len - done >= block) {
            if (mtd::write_good_block(context, data + done) != 0) return -1;
            done += block;
        }
    }
    return static_cast<ssize_t>(len);
}

}  // extern "C"
