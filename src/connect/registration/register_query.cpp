// Registration queries: the serving PLMN and the packet-service state.
#include <cstring>

#include "connect/registration/reg_state.h"
#include "connect/tag.h"
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/connect.h"

using nkw::connect::kTag;

namespace {

constexpr size_t kMccLen = 3;
constexpr size_t kMncLen = 4;  // two or three digits and the terminator

bool ps_registered(uint8_t ps_state) {
    return ps_state == MIPC_NW_REG_STATE_HOME || ps_state == MIPC_NW_REG_STATE_ROAMING;
}

// The query judged twice: 0, else the call's return or the record's code.
int32_t query_registration(mipc_nw_reg_state_struct *record) {
    std::memset(record, 0, sizeof *record);
    int32_t result = mipc_nw_register_state_get_sync(MIPC_PS_ALL, record);
    return result != 0 ? result : static_cast<int32_t>(record->result_code);
}

}  // namespace

extern "C" {

int32_t nkw_pal_get_register_info_str(char mcc[3], char mnc[4]) {
    if (mcc == nullptr || mnc == nullptr) {
        NKW_LOGE(kTag, "[platform] get reg_info failed for param \n");
        return NKW_PAL_FAIL;
    }
    mipc_nw_reg_state_struct record;
    int32_t failure = query_registration(&record);
    if (failure != 0) {
        NKW_LOGE(kTag, "[platform] nkw_pal_get_register_info failed, result=%d \n", failure);
        return NKW_PAL_FAIL;
    }
    if (ps_registered(record.ps_state)) {
        std::memcpy(mcc, record.plmn, kMccLen);
        std::memcpy(mnc, record.plmn + kMccLen, kMncLen);
    }
    NKW_LOGI(kTag, "[platform] network network_name: %s, reg_state.plmn: %s \n",
             record.network_name, record.plmn);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_register_state(uint32_t *state) {
    // Always shown at the default level: callers' logs rely on this trace.
    NKW_LOGE(kTag, "[platform] enter nkw_pal_get_register_state \n");
    if (state == nullptr) {
        NKW_LOGE(kTag, "[platform] get reg_state failed for param \n");
        return NKW_PAL_FAIL;
    }
    mipc_nw_reg_state_struct record;
    int32_t failure = query_registration(&record);
    if (failure != 0) {
        NKW_LOGE(kTag, "[platform] nkw_pal_get_register_state failed, result=%d \n", failure);
        return NKW_PAL_FAIL;
    }
    nkw::connect::map_reg_state(record.ps_state, state);
    NKW_LOGI(kTag, "[platform] network ps_state:%d \n", record.ps_state);
    return NKW_PAL_OK;
}

}  // extern "C"
