// MBIM session open events.
#include "diag/log.h"
#include "modem/ack.h"
#include "modem/indication/subscription.h"
#include "nkw_pal/modem.h"

using namespace nkw::modem::indication;

namespace {
constexpr uint32_t kMbimOpenInd = 0x8F57;
}

extern "C" int32_t nkw_pal_mbim_open_status_indication_register(nkw_pal_mbim_open_status_cb cb,
                                                                void *user) {
    return subscribe(reinterpret_cast<void (*)()>(cb), user, false,
                     {kMbimOpenInd, nkw_pal_mbim_open_status_indicate_cb, nullptr},
                     "mbim_open_status_indication_register failed \n");
}

extern "C" mipc_result_enum nkw_pal_mbim_open_status_indicate_cb(mipc_msg_t *msg_ptr, void *info) {
    int32_t status = 0;
    if (!read_i32(msg_ptr, kValue1Tlv, &status)) {
        NKW_LOGE(kTag, "mbim_open_status_indicate_cb val_ptr get failed \n");
        return MIPC_RESULT_FAILURE;
    }
    NKW_LOGI(kTag, "mbim_open_status_indicate_cb mbim_status=%d \n", status);
    auto *subscription = static_cast<const Subscription *>(info);
    auto cb = callback_of<nkw_pal_mbim_open_status_cb>(subscription);
    if (cb != nullptr) cb(status, user_of(subscription));
    nkw::modem::acknowledge(msg_ptr);
    return MIPC_RESULT_SUCCESS;
}
