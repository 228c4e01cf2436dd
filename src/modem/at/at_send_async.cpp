// Sending an AT command whose answer arrives later in a callback.
#include <cstring>

#include "diag/log.h"
#include "modem/at/at_records.h"
#include "os/heap_record.h"

using nkw::HeapRecord;
using nkw::modem::at::AsyncRequest;
using nkw::modem::at::kCommandMax;
using nkw::modem::at::kTag;

extern "C" int32_t nkw_pal_at_send_async(const char *cmd, uint32_t cmd_len, nkw_pal_at_resp_cb cb) {
    if (cmd == nullptr || cmd_len == 0) {
        NKW_LOGE(kTag, "input param is incorrect \n");
        return NKW_PAL_FAIL;
    }
    if (cmd_len > kCommandMax) {
        NKW_LOGE(kTag, "cmd string is too long \n");
        return NKW_PAL_FAIL;
    }
    auto request = HeapRecord<AsyncRequest>::allocate();
    if (!request) {
        NKW_LOGE(kTag, "at_info malloc failed. \n");
        return NKW_PAL_NO_MEMORY;
    }
    std::memcpy(request->command, cmd, cmd_len);
    request->command[cmd_len] = '\0';
    request->callback = cb;
    NKW_LOGI(kTag, "at_async->cb: %p \n", reinterpret_cast<void *>(cb));
    NKW_LOGI(kTag, "send AT command by async: %s \n", request->command);

    // From here the modem library holds the record, even when it refuses the
    // request: it may still complete it, so it is not freed on that path.
    AsyncRequest *held = request.release();
    if (mipc_sys_at_async(MIPC_PS0, nkw_pal_at_send_async_cb, held, held->command) !=
        MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "mipc_sys_at_async cmd send failed \n");
        return NKW_PAL_FAIL;
    }
    return NKW_PAL_OK;
}

extern "C" void nkw_pal_at_send_async_cb(mipc_sim_ps_id_enum, mipc_sys_at_struct *result_ptr,
                                         void *at_async) {
    // Adopted first so the request is freed last, on every path.
    auto request = HeapRecord<AsyncRequest>::adopt(static_cast<AsyncRequest *>(at_async));
    if (!request || result_ptr == nullptr) {
        NKW_LOGE(kTag, "at_async or result_ptr is NULL \n");
        return;
    }
    NKW_LOGI(kTag, "at response result_code: %d \n", result_ptr->result_code);
    if (result_ptr->result_code != 0) {
        NKW_LOGE(kTag, "at response failed, result_code: %d \n", result_ptr->result_code);
        return;
    }
    const char *response = result_ptr->atcmd_res_ptr;
    auto length = static_cast<int32_t>(strnlen(response, sizeof result_ptr->atcmd_res_ptr));
    NKW_LOGI(kTag, "AT command response: %.*s \n", length, response);
    NKW_LOGI(kTag, "AT command response len: %d \n", length);
    NKW_LOGI(kTag, "at_async->cb: %p \n", reinterpret_cast<void *>(request->callback));
    if (request->callback == nullptr) {
        NKW_LOGW(kTag, "AT command response Callback is NULL \n");
        return;
    }
    request->callback(response, length);
}
