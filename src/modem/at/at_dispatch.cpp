// Hands a custom AT command the modem forwarded to the handler registered for it.
#include "diag/log.h"
#include "modem/at/at_records.h"

using nkw::modem::at::CommandRecord;
using nkw::modem::at::kTag;

extern "C" mipc_result_enum nkw_pal_at_callbackInner(mipc_msg_t *msg_ptr, void *at_info) {
    if (msg_ptr == nullptr) {
        NKW_LOGF(kTag, "msg_ptr is NULL \n");
        return MIPC_RESULT_BAD_PARAM;
    }
    auto *record = static_cast<const CommandRecord *>(at_info);
    if (record == nullptr) {
        NKW_LOGE(kTag, "at_info is NULL \n");
        return MIPC_RESULT_BAD_PARAM;
    }
    if (record->handler == nullptr) {
        NKW_LOGW(kTag, "AT command Callback is NULL \n");
        return MIPC_RESULT_FAILURE;
    }
    NKW_LOGI(kTag, "AT command Callback: %p \n", reinterpret_cast<void *>(record->handler));
    // The handler's status travels back to the modem library as it is.
    return static_cast<mipc_result_enum>(record->handler(msg_ptr));
}
