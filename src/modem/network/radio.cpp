// Radio power state: query and switch of software and hardware state together.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;

extern "C" {

int32_t nkw_pal_get_radio_state(uint32_t *state) {
    mipc_nw_radio_state_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_nw_radio_state_get_sync(MIPC_PS_ALL, &record);
    if (!nkw::info::call_ok(__func__, "mipc_nw_radio_state_get_sync", result, record.result_code,
                            nkw::info::CodeLabel::kResult)) {
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "mipc_nw_radio_state_get_sync sw=%d, hw=%d. \n", record.sw_state,
             record.hw_state);
    // Checked only after the query, so the modem sees the same calls; a null
    // output is refused rather than written through.
    if (!nkw::info::argument_given(state, __func__, "radio state")) return NKW_PAL_FAIL;
    *state = record.sw_state != 0 && record.hw_state != 0 ? 1 : 0;
    return NKW_PAL_OK;
}

int32_t nkw_pal_set_radio_state(int32_t state) {
    // Signed: a negative state switches the radio on.
    if (state > 1) {
        NKW_LOGE(kTag, "set_final_radio_status get param failed. \n");
        return NKW_PAL_INVALID_ARG;
    }
    const uint8_t on = state != 0 ? 1 : 0;
    mipc_nw_radio_state_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_nw_final_radio_state_set_sync(MIPC_PS_ALL, &record, on, on);
    if (!nkw::info::call_ok(__func__, "mipc_nw_final_radio_state_set_sync", result,
                            record.result_code, nkw::info::CodeLabel::kResult)) {
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "mipc_nw_final_radio_state_set_sync success sw=%d, hw=%d. \n", on, on);
    return NKW_PAL_OK;
}

}  // extern "C"
