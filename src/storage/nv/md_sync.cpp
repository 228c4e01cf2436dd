// Synchronous reads and writes of modem NVRAM items.
#include <cstring>

#include "diag/log.h"
#include "modem/mipc.h"
#include "os/heap_record.h"
#include "storage/nv/nv.h"

namespace nkw::nv {

namespace {

constexpr auto kPs = static_cast<mipc_sim_ps_id_enum>(kPsId);
constexpr uint16_t kRecord = NKW_PAL_NVM_MODEM_RECORD;
// The modem's sizes and lengths are 16-bit: no answer needs more room.
constexpr uint32_t kMaxItemSize = 0xFFFF;

using ReadRecord = HeapRecord<mipc_sys_nvram_read_struct>;

int md_read_failed(ReadRecord &record) {
    record.reset();
    NKW_LOGE(kTag, "Read nvm from MD failed. \n");
    return NKW_PAL_NVM_MD_READ_FAILED;
}

}  // namespace

int nkw_pal_read_nv_md_sync(uint32_t lid, unsigned char *buf, unsigned int len) {
    NKW_LOGI(kTag, "plat_nvm_id is %d. \n", lid);
    uint32_t room = len < kMaxItemSize ? len : kMaxItemSize;
    auto record = ReadRecord::allocate(sizeof(mipc_sys_nvram_read_struct) + room);
    if (!record) {
        NKW_LOGE(kTag, "Malloc failed. \n");
        return md_read_failed(record);
    }
    // The request's size is 16-bit: larger lengths wrap.
    mipc_result_enum ret =
        mipc_sys_nvram_read_sync(kPs, record.get(), lid, kRecord, static_cast<uint16_t>(len));
    if (ret != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "Pre read mipc msg send failed, ret is:%d. \n", ret);
        return md_read_failed(record);
    }
    if (record->result_code != 0) {
        NKW_LOGE(kTag, "Pre read MIPC msg get failed, nv_read_str->result_code is %d. \n",
                 record->result_code);
        return md_read_failed(record);
    }
    uint16_t size = record->data_len;
    if (size > len) return md_read_failed(record);  // the item does not fit the caller's buffer
    std::memcpy(buf, record->data, size);
    NKW_LOGI(kTag, "Read MD NV size is:%d. \n", size);
    NKW_LOGI(kTag, "Read MD NV-LID:%d success. \n", lid);
    NKW_LOGI(kTag, "Read nvm from MD success. \n");
    record.reset();
    return 0;
}

int nkw_pal_write_nv_md_sync(uint32_t lid, const unsigned char *data, unsigned int len) {
    mipc_sys_nvram_write_struct result{};
    mipc_result_enum ret =
        mipc_sys_nvram_write_sync(kPs, &result, lid, kRecord, static_cast<uint16_t>(len), data);
    if (ret != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "MD nvm sync write failed, ret is:%d. \n", ret);
        return NKW_PAL_NVM_MD_WRITE_FAILED;
    }
    if (result.result_code != 0) {
        NKW_LOGE(kTag, "MD nvm sync write failed, result code: %d \n", result.result_code);
        return kMdWriteResultFailed;
    }
    NKW_LOGI(kTag, "MD nvm sync write success. \n");
    return 0;
}

}  // namespace nkw::nv
