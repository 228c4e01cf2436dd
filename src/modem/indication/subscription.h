// Subscriptions to modem events: the record each registration keeps for the
// rest of the process, and reading an event's values.
#pragma once

#include <cstdint>

#include "modem/mipc.h"
#include "nkw_pal/common.h"

namespace nkw::modem::indication {

inline constexpr const char *kTag = "MODEM";
// Value TLVs of the modem's event messages.
inline constexpr uint16_t kValue1Tlv = 256;
inline constexpr uint16_t kValue2Tlv = 257;

// {callback, user datum}: the caller's callback is stored as a plain function
// pointer and turned back into its own type by the event routine.
struct Subscription {
    void (*callback)();
    void *user;
};
static_assert(sizeof(Subscription) == 2 * sizeof(void *), "subscription record is two pointers");

template <typename Callback>
Callback callback_of(const Subscription *subscription) {
    return subscription != nullptr ? reinterpret_cast<Callback>(subscription->callback) : nullptr;
}
inline void *user_of(const Subscription *subscription) {
    return subscription != nullptr ? subscription->user : nullptr;
}

// What a registration subscribes to: message `msg_id`, delivered either as
// a command to acknowledge (MBIM events) or as an indication.
struct Event {
    uint32_t msg_id;
    mipc_msg_cmd_cb command;
    mipc_msg_ind_cb indication;
};

// Allocates the record, registers it for `event` and keeps it when the
// modem library accepts. A null callback is refused unless
// `null_callback_ok`. Returns 0 or -1; the lines are logged under the
// registering function's name, with `refused_text` when the modem library
// refuses.
int32_t subscribe(void (*callback)(), void *user, bool null_callback_ok, const Event &event,
                  const char *refused_text, const char *function = __builtin_FUNCTION(),
                  int line = __builtin_LINE());

// The value of TLV `type` of an event when it holds at least `size` bytes,
// else null (a short value is as good as a missing one).
void *value_of(mipc_msg_t *msg, uint16_t type, uint16_t size);
// A 32-bit value, which need not be aligned in the message.
bool read_i32(mipc_msg_t *msg, uint16_t type, int32_t *value);

}  // namespace nkw::modem::indication

// Event routines run by the modem library on its own thread; exported so that
// the modem library (and tests) can reach them by name.
extern "C" {
NKW_PAL_API void nkw_pal_hotplug_status_indicate_cb(mipc_msg_t *msg_ptr, void *info);
NKW_PAL_API mipc_result_enum nkw_pal_mbim_open_status_indicate_cb(mipc_msg_t *msg_ptr, void *info);
NKW_PAL_API mipc_result_enum nkw_pal_mbim_sim_slot_mapping_indicate_cb(mipc_msg_t *msg_ptr,
                                                                       void *info);
NKW_PAL_API mipc_result_enum nkw_pal_mbim_simpin_status_indicate_cb(mipc_msg_t *msg_ptr,
                                                                    void *info);
NKW_PAL_API mipc_result_enum nkw_pal_mbim_connect_status_indicate_cb(mipc_msg_t *msg_ptr,
                                                                     void *info);
NKW_PAL_API mipc_result_enum nkw_pal_mbim_lpa_auth_server_apdu_indicate_cb(mipc_msg_t *msg_ptr,
                                                                           void *info);
}
