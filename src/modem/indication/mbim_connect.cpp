// MBIM connection state events.
#include <cstring>

#include "diag/log.h"
#include "modem/ack.h"
#include "modem/indication/subscription.h"
#include "nkw_pal/modem.h"

using namespace nkw::modem::indication;

namespace {

constexpr uint32_t kMbimConnectStatusInd = 0x8F4D;
constexpr int32_t kConnected = 1;
constexpr int32_t kDisconnected = 3;

// The APN text, when it is terminated within its TLV.
const char *apn_of(mipc_msg_t *msg) {
    uint16_t length = 0;
    auto *apn = static_cast<const char *>(mipc_msg_get_val_ptr(msg, kValue2Tlv, &length));
    return apn != nullptr && std::memchr(apn, '\0', length) != nullptr ? apn : nullptr;
}

}  // namespace

extern "C" int32_t nkw_pal_mbim_connect_status_indication_register(
    nkw_pal_mbim_connect_status_cb cb, void *user) {
    return subscribe(reinterpret_cast<void (*)()>(cb), user, false,
                     {kMbimConnectStatusInd, nkw_pal_mbim_connect_status_indicate_cb, nullptr},
                     "mbim_connect_status_indication_register failed \n");
}

extern "C" mipc_result_enum nkw_pal_mbim_connect_status_indicate_cb(mipc_msg_t *msg_ptr,
                                                                    void *info) {
    int32_t status = 0;
    if (!read_i32(msg_ptr, kValue1Tlv, &status)) {
        NKW_LOGE(kTag, "mbim_connect_status_indicate_cb connect_status get failed \n");
        return MIPC_RESULT_FAILURE;
    }
    const char *apn = apn_of(msg_ptr);
    if (apn == nullptr) {
        NKW_LOGE(kTag, "mbim_connect_status_indicate_cb apn get failed \n");
        return MIPC_RESULT_FAILURE;
    }
    NKW_LOGI(kTag, "mbim_connect_status_indicate_cb status=%d, apn=%s \n", status, apn);
    auto *subscription = static_cast<const Subscription *>(info);
    auto cb = callback_of<nkw_pal_mbim_connect_status_cb>(subscription);
    // Intermediate states (connecting, disconnecting) are not passed on.
    if (cb != nullptr && (status == kConnected || status == kDisconnected)) {
        cb(status == kConnected ? 1 : 0, apn, user_of(subscription));
    }
    nkw::modem::acknowledge(msg_ptr);
    return MIPC_RESULT_SUCCESS;
}
