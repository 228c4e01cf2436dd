// MBIM LPA authentication-server APDU events.
#include "diag/log.h"
#include "modem/ack.h"
#include "modem/indication/subscription.h"
#include "nkw_pal/modem.h"

using namespace nkw::modem::indication;

namespace {
constexpr uint32_t kMbimLpaApduInd = 0x8F65;
}

extern "C" int32_t nkw_pal_mbim_lpa_auth_server_apdu_indication_register(
    nkw_pal_mbim_lpa_auth_server_apdu_cb cb, void *user) {
    // Accepts a null callback: the events are then only acknowledged.
    return subscribe(reinterpret_cast<void (*)()>(cb), user, true,
                     {kMbimLpaApduInd, nkw_pal_mbim_lpa_auth_server_apdu_indicate_cb, nullptr},
                     "lpa_auth_server_apdu_indication_register failed \n");
}

extern "C" mipc_result_enum nkw_pal_mbim_lpa_auth_server_apdu_indicate_cb(mipc_msg_t *msg_ptr,
                                                                          void *info) {
    int32_t value = 0;
    if (!read_i32(msg_ptr, kValue1Tlv, &value)) {
        NKW_LOGE(kTag, "lpa_auth_server_apdu info get failed \n");
        return MIPC_RESULT_FAILURE;
    }
    auto *subscription = static_cast<const Subscription *>(info);
    auto cb = callback_of<nkw_pal_mbim_lpa_auth_server_apdu_cb>(subscription);
    if (cb != nullptr) cb(value, user_of(subscription));
    nkw::modem::acknowledge(msg_ptr);
    return MIPC_RESULT_SUCCESS;
}
