// SIM status query and PIN entry.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "modem/sim_card/status_code.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;

namespace {

constexpr int32_t kIndexMax = 255;
// Result codes the status call gives instead of a status.
constexpr uint32_t kResultAbsent = 3;  // reads as status code 0
constexpr uint32_t kResultBusy = 4;    // reads as the code of state 6
constexpr uint32_t kPinType1 = 1;

}  // namespace

extern "C" {

int32_t nkw_pal_get_sim_status(int32_t index) {
    if (index > kIndexMax) {
        NKW_LOGE(kTag, "nkw_pal_get_current_sim_status param failed. \n");
        return nkw::info::kStatusUnknown;
    }
    mipc_sim_ps_id_enum id = index == 0 ? MIPC_PS0 : MIPC_PS1;

    mipc_sim_state_struct state;
    std::memset(&state, 0, sizeof state);
    mipc_result_enum result = mipc_sim_state_get_sync(id, &state);
    if (!nkw::info::call_ok(__func__, "mipc_sim_state_get_sync", result, state.result_code,
                            nkw::info::CodeLabel::kResult)) {
        return nkw::info::kStatusUnknown;
    }
    NKW_LOGI(kTag, "mipc_sim_state_get_sync sim_id=%d, sim_state=%d. \n", state.sim_id,
             state.sim_state);
    if (state.sim_state == nkw::info::kSimStateReported) return nkw::info::kStateCode;

    mipc_sim_status_struct status;
    std::memset(&status, 0, sizeof status);
    result = mipc_sim_status_get_sync(id, &status);
    if (result != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "mipc_sim_status_get_sync failed, api_result=%d. \n", result);
        return nkw::info::kStatusUnknown;
    }
    if (status.result_code != 0) {
        NKW_LOGI(kTag, "mipc_sim_status_get_sync result=%d. \n", status.result_code);
        if (status.result_code == kResultAbsent) return 0;
        if (status.result_code == kResultBusy) return nkw::info::kStateCode;
        return nkw::info::kStatusUnknown;
    }
    NKW_LOGI(kTag, "mipc_sim_status_get_sync sim_status=%d. \n", status.sim_status);
    return nkw::info::status_code(status.sim_status, false);
}

int32_t nkw_pal_sim_verify_pin(const char *pin) {
    if (pin == nullptr) {
        NKW_LOGE(kTag, "verify_pin param get failed \n");
        return NKW_PAL_FAIL;
    }
    mipc_sim_verify_pin_struct record;
    std::memset(&record, 0, sizeof record);
    if (mipc_sim_verify_pin_sync(MIPC_PS_ALL, &record, kPinType1, pin) != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "verify_pin api send failed \n");
        return NKW_PAL_FAIL;
    }
    if (record.result_code != 0) {
        NKW_LOGE(kTag, "verify_pin api get failed %d \n", record.result_code);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "verify_pin api success, pin_type %d, pin_state %d, remaining_attempts %d \n",
             record.pin_type, record.pin_state, record.remaining_attempts);
    return NKW_PAL_OK;
}

}  // extern "C"
