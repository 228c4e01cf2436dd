// MBIM SIM PIN state events.
#include <cstring>

#include "diag/log.h"
#include "modem/ack.h"
#include "modem/indication/subscription.h"
#include "nkw_pal/modem.h"

using namespace nkw::modem::indication;

namespace {

constexpr uint32_t kMbimPinStatusInd = 0x8F53;
constexpr uint8_t kPinNotSet = 2;

static_assert(sizeof(nkw_pal_mbim_pin_info) == 18, "PIN record is 18 bytes");

// Rewrites the modem's record into what callers expect; false when the
// status is not one callers are told about.
bool normalise(nkw_pal_mbim_pin_info *pin) {
    switch (pin->status) {
        case 0:
        case 1:
        case 3:
            pin->status = 1;
            return true;
        case kPinNotSet:
            std::memset(pin, 0, sizeof *pin);
            return true;
        default:
            return false;
    }
}

}  // namespace

extern "C" int32_t nkw_pal_mbim_simpin_status_indication_register(nkw_pal_mbim_simpin_status_cb cb,
                                                                  void *user) {
    return subscribe(reinterpret_cast<void (*)()>(cb), user, false,
                     {kMbimPinStatusInd, nkw_pal_mbim_simpin_status_indicate_cb, nullptr},
                     "mbim_simpin_status_indication_register failed \n");
}

extern "C" mipc_result_enum nkw_pal_mbim_simpin_status_indicate_cb(mipc_msg_t *msg_ptr,
                                                                   void *info) {
    // The record is rewritten where the modem library keeps it.
    auto *pin = static_cast<nkw_pal_mbim_pin_info *>(
        value_of(msg_ptr, kValue1Tlv, sizeof(nkw_pal_mbim_pin_info)));
    if (pin == nullptr) {
        NKW_LOGE(kTag, "mbim_simpin_status_indicate_cb val_ptr get failed \n");
        return MIPC_RESULT_FAILURE;
    }
    auto *subscription = static_cast<const Subscription *>(info);
    auto cb = callback_of<nkw_pal_mbim_simpin_status_cb>(subscription);
    if (cb != nullptr) {
        // The PIN field need not be terminated within the record.
        NKW_LOGI(kTag, "mbim_simpin_status_indicate_cb pin_status=%d, pin_code=%.*s \n",
                 pin->status, static_cast<int>(sizeof pin->pin), pin->pin);
        if (normalise(pin)) cb(pin, user_of(subscription));
    }
    nkw::modem::acknowledge(msg_ptr);
    return MIPC_RESULT_SUCCESS;
}
