// Sending an AT command and waiting for its answer.
#include <cstring>

#include "diag/log.h"
#include "modem/at/at_records.h"

using nkw::modem::at::kCommandMax;
using nkw::modem::at::kTag;

extern "C" int32_t nkw_pal_at_send(const char *cmd, uint32_t cmd_len, char *resp, int32_t resp_size,
                                   uint32_t *resp_len) {
    if (cmd == nullptr || cmd_len == 0 || resp == nullptr || resp_size == 0 ||
        resp_len == nullptr) {
        NKW_LOGE(kTag, "input param is incorrect \n");
        return NKW_PAL_FAIL;
    }
    if (cmd_len > kCommandMax) {
        NKW_LOGE(kTag, "cmd string is too long \n");
        return NKW_PAL_FAIL;
    }

    // The synchronous command always goes to the modem as a whole, whatever
    // SIM is in use.
    mipc_sys_at_struct result;
    std::memset(&result, 0, sizeof result);
    mipc_result_enum sent = mipc_sys_at_sync(MIPC_PS_ALL, &result, cmd);
    if (sent != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "AT Command send failed: %d \n", sent);
        return NKW_PAL_FAIL;
    }
    if (result.result_code != 0) {
        NKW_LOGE(kTag, "AT Command response result: %d \n", result.result_code);
        return NKW_PAL_AT_RESULT_ERROR;
    }

    // Bounded: a modem that fills the whole field leaves no terminator.
    auto length = static_cast<int32_t>(strnlen(result.atcmd_res_ptr, sizeof result.atcmd_res_ptr));
    NKW_LOGI(kTag, "AT Command response data len: %d \n", length);
    if (length < 1) {
        *resp_len = 0;
        NKW_LOGE(kTag, "output AT Command response data failed. \n");
        return NKW_PAL_AT_RESPONSE_ERROR;
    }
    // Signed on purpose: a negative size refuses every response. Widened so
    // that the smallest size does not overflow.
    if (static_cast<int64_t>(length) > static_cast<int64_t>(resp_size) - 1) {
        *resp_len = 0;
        NKW_LOGE(kTag, "resp_size is too small. \n");
        return NKW_PAL_AT_RESPONSE_ERROR;
    }
    std::memcpy(resp, result.atcmd_res_ptr, static_cast<size_t>(length));
    resp[length] = '\0';
    *resp_len = static_cast<uint32_t>(length);
    NKW_LOGI(kTag, "AT Command response data: %s, len: %d \n", resp, length);
    return NKW_PAL_OK;
}
