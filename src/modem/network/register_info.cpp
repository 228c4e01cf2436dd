// Registration details: operator name, MCC and MNC as numbers.
#include <cstdlib>
#include <cstring>

#include "diag/log.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;

namespace {

constexpr size_t kMccLen = 3;
constexpr size_t kMncLen = 4;           // the digits after the MCC, up to the PLMN's seventh byte
constexpr size_t kClearedOnSearch = 8;  // bytes of the name cleared while not registered

}  // namespace

extern "C" int32_t nkw_pal_get_register_info(reg_info *info) {
    if (info == nullptr) {
        NKW_LOGE(kTag, "[platform] get reg_info failed for param \n");
        return NKW_PAL_FAIL;
    }
    mipc_nw_reg_state_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_nw_register_state_get_sync(MIPC_PS_ALL, &record);
    if (result != MIPC_RESULT_SUCCESS || record.result_code != 0) {
        NKW_LOGE(kTag, "[platform] nkw_pal_get_register_info failed, result=%d \n",
                 result != MIPC_RESULT_SUCCESS ? static_cast<int>(result)
                                               : static_cast<int>(record.result_code));
        return NKW_PAL_FAIL;
    }
    switch (record.ps_state) {
        case MIPC_NW_REG_STATE_HOME:
        case MIPC_NW_REG_STATE_ROAMING: {
            std::memcpy(info->network_name, record.network_name, sizeof info->network_name);
            char mcc[kMccLen + 1] = {};
            char mnc[kMncLen + 1] = {};
            std::memcpy(mcc, record.plmn, kMccLen);
            std::memcpy(mnc, record.plmn + kMccLen, kMncLen);
            info->mcc = static_cast<uint32_t>(std::atoi(mcc));
            info->mnc = static_cast<uint32_t>(std::atoi(mnc));
            break;
        }
        case MIPC_NW_REG_STATE_NOT_REGISTERED:
        case MIPC_NW_REG_STATE_SEARCHING:
        case MIPC_NW_REG_STATE_DENIED:
        case MIPC_NW_REG_STATE_UNKNOWN:
            std::memset(info->network_name, 0, kClearedOnSearch);
            break;
        default:
            break;  // a state the modem should not send: the output stays as it was
    }
    NKW_LOGI(kTag, "[platform] network network_name: %.*s, reg_state.plmn: %.*s \n",
             static_cast<int>(sizeof record.network_name), record.network_name,
             static_cast<int>(sizeof record.plmn), record.plmn);
    return NKW_PAL_OK;
}
