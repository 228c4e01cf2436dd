// Extracting one TLV value from a message the modem sent.
#include <cstring>

#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/modem.h"

namespace {
constexpr const char *kTag = "MODEM";
}

extern "C" int32_t nkw_pal_modem_msg_get(nkw_pal_modem_msg_t *msg, uint16_t **type_ref,
                                         void *out_data, uint32_t out_data_size,
                                         uint32_t *out_len) {
    if (msg == nullptr || type_ref == nullptr || out_len == nullptr) {
        NKW_LOGE(kTag, "The input parameters is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    if (*type_ref == nullptr) {
        NKW_LOGE(kTag, "Modem msg type is null. \n");
        return NKW_PAL_INVALID_ARG;
    }
    uint16_t type = **type_ref;
    NKW_LOGI(kTag, "Modem msg type is %d \n", type);

    uint16_t length = 0;
    const void *value = mipc_msg_get_val_ptr(static_cast<mipc_msg_t *>(msg), type, &length);
    if (value == nullptr || length == 0) {
        NKW_LOGE(kTag, "Get msg(type: %d)s failed \n", type);
        return -1;
    }
    // Stored before the buffer checks so a caller can ask for the size first.
    *out_len = length;
    if (out_data == nullptr) {
        NKW_LOGE(kTag, "out_data is NULL. out_data_size must longer than %d \n", length);
        return NKW_PAL_BUFFER_TOO_SMALL;
    }
    if (length > out_data_size) {
        NKW_LOGE(kTag, "data_size is too short. out_data_size must longer than %d \n", length);
        return NKW_PAL_BUFFER_TOO_SMALL;
    }
    std::memcpy(out_data, value, length);
    NKW_LOGI(kTag, "Get msg(type: %d) success. msg_info len: %d \n", type, length);
    return 0;
}
