// IMEI from the modem's system information, and the fixed model name.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;

namespace {

constexpr char kModel[] = "QV770K-XB";

}  // namespace

extern "C" {

int32_t nkw_pal_get_imei(char *imei) {
    if (!nkw::info::argument_given(imei, __func__, "imei")) return NKW_PAL_INVALID_ARG;
    mipc_sys_info_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_sys_info_get_sync(MIPC_PS_ALL, &record);
    if (!nkw::info::answer_ok(__func__, "imei", result, record.result_code)) return NKW_PAL_FAIL;
    size_t length = strnlen(record.imei, sizeof record.imei);
    if (length == 0) {
        NKW_LOGE(kTag, "get imei failed for IMEI is null \n");
        return NKW_PAL_FAIL;
    }
    std::memcpy(imei, record.imei, length);
    NKW_LOGI(kTag, "operater success, get imei: %.*s \n", static_cast<int>(length), record.imei);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_model(char *model) {
    if (!nkw::info::argument_given(model, __func__, "model")) return NKW_PAL_FAIL;
    std::memcpy(model, kModel, sizeof kModel - 1);
    return NKW_PAL_OK;
}

}  // extern "C"
