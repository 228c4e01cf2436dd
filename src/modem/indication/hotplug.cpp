// Host link (USB/PCIe) plug events.
#include "diag/log.h"
#include "modem/indication/subscription.h"
#include "nkw_pal/modem.h"

using namespace nkw::modem::indication;

namespace {
constexpr uint32_t kHotplugInd = 0x4505;
constexpr uint8_t kCauseAbsent = 255;
constexpr uint8_t kCauseUnplugged = 11;
constexpr uint8_t kCausePlugged = 12;
}  // namespace

extern "C" int32_t nkw_pal_hotplug_status_indication_register(nkw_pal_hotplug_status_cb cb,
                                                              void *user) {
    return subscribe(reinterpret_cast<void (*)()>(cb), user, false,
                     {kHotplugInd, nullptr, nkw_pal_hotplug_status_indicate_cb},
                     "hotplug_status_indication_register failed \n");
}

extern "C" void nkw_pal_hotplug_status_indicate_cb(mipc_msg_t *msg_ptr, void *info) {
    auto *found = static_cast<const uint8_t *>(value_of(msg_ptr, kValue2Tlv, 1));
    uint8_t cause = found != nullptr ? *found : kCauseAbsent;
    NKW_LOGI(kTag, "hotplug_status_indicate_cb cause=%d \n", cause);
    // Other causes are the modem's own business: logged only.
    if (cause != kCauseUnplugged && cause != kCausePlugged) return;
    auto *subscription = static_cast<const Subscription *>(info);
    auto cb = callback_of<nkw_pal_hotplug_status_cb>(subscription);
    if (cb != nullptr) cb(cause == kCausePlugged ? 1 : 0, user_of(subscription));
}
