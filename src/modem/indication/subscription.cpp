// Keeping a subscription record and reading event values.
#include "modem/indication/subscription.h"

#include <cstring>

#include "diag/log.h"
#include "os/heap_record.h"

namespace nkw::modem::indication {

namespace {
void log_error(const char *function, int line, const char *text) {
    if (diag::enabled(NKW_PAL_LOG_ERROR)) nkw_pal_loge(kTag, "[%s:%d]-%s", function, line, text);
}
}  // namespace

namespace {
mipc_result_enum register_event(const Event &event, Subscription *record) {
    // Host link events come as indications on the first protocol stack.
    if (event.indication != nullptr) {
        return mipc_msg_register_ind_api(MIPC_PS0, event.msg_id, event.indication, 0, record);
    }
    return mipc_msg_register_cmd_api(event.msg_id, event.command, 0, record);
}
}  // namespace

int32_t subscribe(void (*callback)(), void *user, bool null_callback_ok, const Event &event,
                  const char *refused_text, const char *function, int line) {
    if (callback == nullptr && !null_callback_ok) {
        log_error(function, line, "callback is null \n");
        return NKW_PAL_FAIL;
    }
    auto record = HeapRecord<Subscription>::allocate(sizeof(Subscription), true, function, line);
    if (!record) {
        log_error(function, line, "malloc info_p, not enough memory \n");
        return NKW_PAL_FAIL;
    }
    record->callback = callback;
    record->user = user;
    if (register_event(event, record.get()) != MIPC_RESULT_SUCCESS) {
        log_error(function, line, refused_text);
        return NKW_PAL_FAIL;
    }
    // There is no unsubscription: the record lives as long as the process.
    static_cast<void>(record.release());
    return NKW_PAL_OK;
}

void *value_of(mipc_msg_t *msg, uint16_t type, uint16_t size) {
    uint16_t length = 0;
    void *value = mipc_msg_get_val_ptr(msg, type, &length);
    return value != nullptr && length >= size ? value : nullptr;
}

bool read_i32(mipc_msg_t *msg, uint16_t type, int32_t *value) {
    const void *found = value_of(msg, type, sizeof *value);
    if (found == nullptr) return false;
    std::memcpy(value, found, sizeof *value);
    return true;
}

}  // namespace nkw::modem::indication
