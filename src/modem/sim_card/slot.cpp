// The SIM slot mapped to the first protocol stack: query and switch.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"
#include "os/heap_record.h"

using nkw::info::kTag;

namespace {

constexpr int32_t kSlotUnknown = 255;
constexpr int32_t kSlotMax = 255;

}  // namespace

extern "C" {

int32_t nkw_pal_get_current_sim_slot(void) {
    auto record = nkw::HeapRecord<mipc_sys_mapping_struct>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "mipc_sys_mapping_struct malloc failed. \n");
        return kSlotUnknown;
    }
    mipc_result_enum result = mipc_sys_mapping_get_sync(MIPC_PS_ALL, record.get());
    if (!nkw::info::call_ok(__func__, "mipc_sys_mapping_get_sync", result, record->result_code,
                            nkw::info::CodeLabel::kResult)) {
        return kSlotUnknown;
    }
    uint32_t ps_id = record->mapping_list[0].ps_id;
    NKW_LOGI(kTag, "mipc_sys_mapping_get_sync ps_id=%d. \n", ps_id);
    return ps_id == 0 || ps_id == 1 ? static_cast<int32_t>(ps_id) : kSlotUnknown;
}

int32_t nkw_pal_sim_slot_switch(int32_t slot) {
    // Signed: negative slots are the modem's to judge.
    if (slot > kSlotMax) {
        NKW_LOGE(kTag, "nkw_pal_switch_sim_slot param failed. \n");
        return NKW_PAL_FAIL;
    }
    mipc_sys_mapping_struct4 mapping;
    std::memset(&mapping, 0, sizeof mapping);
    mapping.ps_id = static_cast<uint32_t>(slot);
    mipc_sys_mapping_struct result_record;
    std::memset(&result_record, 0, sizeof result_record);
    mipc_result_enum result = mipc_sys_mapping_set_sync(MIPC_PS_ALL, &result_record, 1, &mapping);
    if (!nkw::info::call_ok(__func__, "mipc_sys_mapping_set_sync", result,
                            result_record.result_code, nkw::info::CodeLabel::kResultCode)) {
        return NKW_PAL_FAIL;
    }
    return NKW_PAL_OK;
}

}  // extern "C"
