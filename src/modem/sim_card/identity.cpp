// SIM identity: IMSI, ICCID, and the MCC and MNC taken from the IMSI.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::answer_ok;
using nkw::info::argument_given;
using nkw::info::kTag;

namespace {

constexpr size_t kMccLen = 3;

// Bounded: a record that fills its field leaves no terminator.
template <size_t N>
size_t text_length(const char (&field)[N]) {
    return strnlen(field, N);
}

// The IMSI query the IMSI, MCC and MNC calls share; false once logged.
bool read_imsi(const char *func, const char *what, mipc_sim_imsi_struct &record) {
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_sim_imsi_get_sync(MIPC_PS_ALL, &record);
    return answer_ok(func, what, result, record.result_code);
}

}  // namespace

extern "C" {

int32_t nkw_pal_get_imsi(char *imsi) {
    if (!argument_given(imsi, __func__, "imsi")) return NKW_PAL_INVALID_ARG;
    mipc_sim_imsi_struct record;
    if (!read_imsi(__func__, "imsi", record)) return NKW_PAL_FAIL;
    std::memcpy(imsi, record.imsi, text_length(record.imsi));
    NKW_LOGI(kTag, "operate success,get result: %d, get_imsi: %.*s \n", MIPC_RESULT_SUCCESS,
             static_cast<int>(sizeof record.imsi), record.imsi);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_iccid(char *iccid) {
    if (!argument_given(iccid, __func__, "iccid")) return NKW_PAL_INVALID_ARG;
    mipc_sim_iccid_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_sim_iccid_get_sync(MIPC_PS_ALL, &record);
    if (!answer_ok(__func__, "iccid", result, record.result_code)) return NKW_PAL_FAIL;
    std::memcpy(iccid, record.iccid, text_length(record.iccid));
    NKW_LOGI(kTag, "operate success, get result: %d, get_iccid: %.*s \n", result,
             static_cast<int>(sizeof record.iccid), record.iccid);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_mcc_info(char *mcc) {
    if (!argument_given(mcc, __func__, "mcc")) return NKW_PAL_INVALID_ARG;
    mipc_sim_imsi_struct record;
    if (!read_imsi(__func__, "mcc", record)) return NKW_PAL_FAIL;
    std::memcpy(mcc, record.imsi, kMccLen);
    NKW_LOGI(kTag, "operate success,get result:%d, get_imsi:%.*s, mcc:%.*s \n", MIPC_RESULT_SUCCESS,
             static_cast<int>(sizeof record.imsi), record.imsi, static_cast<int>(kMccLen), mcc);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_mnc_info(char *mnc) {
    if (!argument_given(mnc, __func__, "mnc")) return NKW_PAL_INVALID_ARG;
    mipc_sim_imsi_struct record;
    if (!read_imsi(__func__, "mnc", record)) return NKW_PAL_FAIL;
    // The modem's count, never guessed from the digits; kept inside the
    // record so an oversized count cannot read past it.
    size_t mnc_len = record.mnc_len;
    if (mnc_len > sizeof record.imsi - kMccLen) mnc_len = sizeof record.imsi - kMccLen;
    std::memcpy(mnc, record.imsi + kMccLen, mnc_len);
    NKW_LOGI(kTag, "operate success,get result:%d, mnc_len:%d, get_imsi:%.*s, mnc:%.*s \n",
             MIPC_RESULT_SUCCESS, record.mnc_len, static_cast<int>(sizeof record.imsi), record.imsi,
             static_cast<int>(mnc_len), mnc);
    return NKW_PAL_OK;
}

}  // extern "C"
