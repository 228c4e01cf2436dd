// SAR table switch: enabled by either SAR NVRAM item, done asynchronously.
#include <mipc_msg.h>

#include <cstdint>
#include <cstring>

#include "device/control/control.h"
#include "diag/log.h"
#include "os/heap_record.h"

using nkw::device::kTag;

namespace {

constexpr uint32_t kBodySarLid = 0xE10A;
constexpr uint32_t kTaSarLid = 0xE10B;
constexpr uint16_t kRecord = 1;
constexpr uint16_t kBodySarSize = 36;
constexpr uint16_t kTaSarSize = 52;
constexpr uint32_t kSarMode = 0;

// Result records: the 8-byte header and room for the item.
constexpr uint32_t kHeader = sizeof(mipc_sys_nvram_read_struct);
static_assert(kHeader + kBodySarSize == 44 && kHeader + kTaSarSize == 60, "record sizes");

// The firmware's layout: a non-zero first word and 1 in the second enable SAR.
bool enables_sar(const mipc_sys_nvram_read_struct *item) {
    uint16_t words[2];
    std::memcpy(words, item->data, sizeof words);
    return words[0] != 0 && words[1] == 1;
}

}  // namespace

void nkw_pal_sar_index_switch_cb(mipc_sim_ps_id_enum, mipc_sys_sar_struct *result_ptr, void *) {
    if (result_ptr == nullptr) {
        NKW_LOGE(kTag, "sar_index cb result_ptr is null \n");
        return;
    }
    const int mode = static_cast<int>(result_ptr->sar_mode);
    const int index = static_cast<int>(result_ptr->sar_index);
    if (result_ptr->result_code == 0) {
        NKW_LOGI(kTag, "sar_index cb success mode=%d, index=%d\n \n", mode, index);
    } else {
        NKW_LOGE(kTag, "sar_index cb fail mode=%d, index=%d\n \n", mode, index);
    }
}

extern "C" int32_t nkw_pal_sar_index_switch(unsigned int sar_index) {
    auto body = nkw::HeapRecord<mipc_sys_nvram_read_struct>::allocate(kHeader + kBodySarSize);
    if (!body) {
        NKW_LOGE(kTag, "bodysar nvram malloc failed \n");
        return -1;
    }
    auto ta = nkw::HeapRecord<mipc_sys_nvram_read_struct>::allocate(kHeader + kTaSarSize);
    if (!ta) {
        NKW_LOGE(kTag, "tasar nvram malloc failed \n");
        return -1;
    }
    // Only the calls' returns are judged; the items' own result codes are not.
    if (mipc_sys_nvram_read_sync(MIPC_PS_ALL, body.get(), kBodySarLid, kRecord, kBodySarSize) !=
        MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "bodysar nvram read failed \n");
        return -1;
    }
    if (mipc_sys_nvram_read_sync(MIPC_PS_ALL, ta.get(), kTaSarLid, kRecord, kTaSarSize) !=
        MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "tasar nvram read failed \n");
        return -1;
    }
    if (!enables_sar(body.get()) && !enables_sar(ta.get())) {
        NKW_LOGI(kTag, "sar dont enable,nothing to do \n");
        return 0;
    }
    const int shown = static_cast<int>(sar_index);
    if (tolvaro_mipc_sys_sar_set_async(MIPC_PS_ALL, nkw_pal_sar_index_switch_cb, nullptr, kSarMode,
                                       sar_index) != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "sar_index=%d switch failed \n", shown);
        return -1;
    }
    NKW_LOGI(kTag, "sar_index=%d switch success \n", shown);
    return 0;
}
