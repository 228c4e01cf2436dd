// Registering a custom AT command that the modem forwards to the caller.
#include <cstring>

#include "diag/log.h"
#include "modem/at/at_records.h"
#include "os/heap_record.h"

using nkw::HeapRecord;
using nkw::modem::at::CommandRecord;
using nkw::modem::at::kCommandMax;
using nkw::modem::at::kTag;

extern "C" int32_t nkw_pal_at_register(nkw_pal_at_cmd_reg *reg) {
    if (reg == nullptr || reg->name == nullptr || reg->id == 0 || reg->handler == nullptr) {
        NKW_LOGE(kTag, "input param is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    size_t name_len = strnlen(reg->name, kCommandMax + 1);
    if (name_len < 1 || name_len > kCommandMax) {
        NKW_LOGE(kTag, "AT command name len is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    auto record = HeapRecord<CommandRecord>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "at_info malloc failed. \n");
        return NKW_PAL_NO_MEMORY;
    }
    std::memcpy(record->name, reg->name, name_len);
    record->name[name_len] = '\0';
    record->id = reg->id;
    // The modem library knows message ids of 32 bits only.
    auto msg_id = static_cast<uint32_t>(record->id);
    NKW_LOGI(kTag, "AT CMD id: 0x%x \n", msg_id);
    record->handler = reg->handler;

    if (mipc_msg_register_cmd_api(msg_id, nkw_pal_at_callbackInner, 0, record.get()) !=
        MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "AT CMD: %s, id: 0x%x registed failed \n", record->name, msg_id);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "AT CMD: %s, id: 0x%x registed success \n", record->name, msg_id);
    // Lives as long as the registration: for the rest of the process.
    static_cast<void>(record.release());
    return NKW_PAL_OK;
}
