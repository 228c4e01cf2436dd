// The flash region: byte ranges of the "mddata_bak" partition, over the
// direct block operations.
#include <errno.h>

#include <cstring>

#include "diag/log.h"
#include "nkw_pal/storage.h"

namespace {

constexpr const char *kTag = "FLASH";
constexpr const char kPartition[] = "mddata_bak";
constexpr char kMissing[] = "Can't find part \n";  // read and write; erase adds a full stop

// The sum is taken in 32 bits: existing callers see a wrapping range pass
// here (the block layer refuses it).
bool in_partition(const nkw_mtd_partition *partition, unsigned int offset, unsigned int len) {
    return offset <= partition->size && offset + len <= partition->size;
}

// The partition every region call works on, once the range is known to lie
// in it; otherwise the status of the failed check, logged as `func`. Erase
// has always logged its missing partition with a full stop, so the caller
// passes that line.
int32_t locate(const char *func, const char *missing, unsigned int offset, unsigned int len,
               const nkw_mtd_partition *&partition) {
    partition = nkw_mtd_find_partition_by_name(kPartition);
    if (partition == nullptr) {
        NKW_LOGE_IN(func, kTag, "%s", missing);
        return NKW_PAL_FLASH_NO_PARTITION;
    }
    if (!in_partition(partition, offset, len)) {
        NKW_LOGE_IN(func, kTag, "parameter data or size error \n");
        return NKW_PAL_FLASH_RANGE_ERROR;
    }
    return NKW_PAL_OK;
}

}  // namespace

extern "C" {

NKW_PAL_API int32_t nkw_pal_flash_init(void) {
    if (nkw_mtd_scan_partitions() == -1) {
        NKW_LOGE(kTag, "scan partitions error. \n");
        return NKW_PAL_FLASH_SCAN_ERROR;
    }
    return NKW_PAL_OK;
}

NKW_PAL_API int32_t nkw_pal_flash_read(unsigned int offset, void *data, unsigned int len) {
    if (data == nullptr) {
        NKW_LOGE(kTag, "parameter error \n");
        return NKW_PAL_FLASH_PARAM_ERROR;
    }
    const nkw_mtd_partition *partition = nullptr;
    int32_t status = locate(__func__, kMissing, offset, len, partition);
    if (status != NKW_PAL_OK) return status;
    if (nkw_mtd_read_block(partition, static_cast<char *>(data), static_cast<int>(len),
                           static_cast<int>(offset)) != 0) {
        NKW_LOGE(kTag, "form %s addr:%x read data error \n", partition->name, offset);
        return NKW_PAL_FLASH_READ_ERROR;
    }
    return NKW_PAL_OK;
}

NKW_PAL_API int32_t nkw_pal_flash_write(unsigned int offset, const void *data, unsigned int len) {
    if (data == nullptr) {
        NKW_LOGE(kTag, "parameter error \n");
        return NKW_PAL_FLASH_PARAM_ERROR;
    }
    const nkw_mtd_partition *partition = nullptr;
    int32_t status = locate(__func__, kMissing, offset, len, partition);
    if (status != NKW_PAL_OK) return status;
    if (nkw_mtd_write_block(partition, static_cast<const char *>(data), len, offset) != 0) {
        NKW_LOGE(kTag, "write data err.(%s) to %s addr:%x \n", std::strerror(errno),
                 partition->name, offset);
        return NKW_PAL_FLASH_WRITE_ERROR;
    }
    return NKW_PAL_OK;
}

NKW_PAL_API int32_t nkw_pal_flash_erase(unsigned int offset, unsigned int len) {
    const nkw_mtd_partition *partition = nullptr;
    int32_t status = locate(__func__, "Can't find part. \n", offset, len, partition);
    if (status != NKW_PAL_OK) return status;
    if (nkw_mtd_erase_block(partition, len, offset) != 0) {
        NKW_LOGE(kTag, "erase block error. \n");
        return NKW_PAL_FLASH_ERASE_ERROR;
    }
    return NKW_PAL_OK;
}

}  // extern "C"
