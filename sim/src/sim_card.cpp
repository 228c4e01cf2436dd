// SIM model: two slots, the first protocol stack's slot mapping, PIN entry,
// and the state and status indications a card change pushes.
#include <algorithm>
#include <cstring>
#include <vector>

#include "core.h"
#include "mipc_sim_at.h"
#include "mipc_sim_card.h"
#include "model_support.h"

using namespace mipc_sim;

namespace {

constexpr int kSlots = 2;
constexpr uint32_t kPinStateVerified = 0;
constexpr uint32_t kPinStateRequired = 1;

struct Listener {
    mipc_sim_ps_id_enum ps_id;
    mipc_sim_state_cb state_cb;  // one of the two is set
    mipc_sim_status_cb status_cb;
    void *priv;
};

SimCard empty_slot() {
    SimCard card;
    card.imsi.clear();
    card.iccid.clear();
    card.eid.clear();
    card.state = kSimStateAbsent;
    return card;
}

struct Cards {
    SimCard slot[kSlots] = {SimCard{}, empty_slot()};
    int mapped = 0;  // slot of the first protocol stack
    std::vector<Listener> listeners;
};

Cards &cards() {
    static Cards instance;
    return instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(core::state_lock());
    cards() = Cards{};
});

// Caller holds the state lock.
int slot_of_locked(mipc_sim_ps_id_enum ps_id) {
    return ps_id == MIPC_PS1 ? 1 - cards().mapped : cards().mapped;
}

mipc_sim_ps_id_enum stack_of_locked(int slot) {
    return slot == cards().mapped ? MIPC_PS0 : MIPC_PS1;
}

// The EID answer follows the card the first stack serves.
void refresh_eid_answer() {
    std::string eid;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        eid = cards().slot[cards().mapped].eid;
    }
    set_at_reply("AT+GTESIMID", 0, "+GTESIMID: \"" + eid + "\"\r\nOK");
}

void copy_text(char *field, size_t size, const std::string &text) {
    std::memset(field, 0, size);
    std::memcpy(field, text.data(), std::min(text.size(), size - 1));
}

// Posts the records given to the listeners of `ps_id`; `null_record` and
// `null_user` hand them null pointers instead, as a faulty modem might.
void announce(mipc_sim_ps_id_enum ps_id, std::optional<mipc_sim_state_struct> state,
              std::optional<mipc_sim_status_struct> status, bool null_record, bool null_user) {
    std::vector<Listener> listeners;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        listeners = cards().listeners;
    }
    for (const Listener &l : listeners) {
        if (l.ps_id != ps_id) continue;
        void *priv = null_user ? nullptr : l.priv;
        if (l.state_cb != nullptr && state) {
            post([l, priv, record = *state, null_record]() mutable {
                l.state_cb(l.ps_id, null_record ? nullptr : &record, priv);
            });
        }
        if (l.status_cb != nullptr && status) {
            post([l, priv, record = *status, null_record]() mutable {
                l.status_cb(l.ps_id, null_record ? nullptr : &record, priv);
            });
        }
    }
}

mipc_sim_state_struct state_record(int slot, const SimCard &card) {
    mipc_sim_state_struct record{};
    record.sim_id = static_cast<uint8_t>(slot);
    record.sim_state = card.state;
    return record;
}

mipc_sim_status_struct status_record(int slot, const SimCard &card) {
    mipc_sim_status_struct record{};
    record.sim_id = static_cast<uint8_t>(slot);
    record.sim_status = card.status;
    return record;
}

// Replaces a card and pushes what changed, as a real modem would.
void change_card(int slot, const SimCard &card) {
    SimCard before;
    mipc_sim_ps_id_enum stack;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        before = cards().slot[slot];
        cards().slot[slot] = card;
        stack = stack_of_locked(slot);
    }
    std::optional<mipc_sim_state_struct> state;
    std::optional<mipc_sim_status_struct> status;
    if (before.state != card.state) state = state_record(slot, card);
    if (before.status != card.status) status = status_record(slot, card);
    if (state || status) {
        announce(stack, state, status, false, false);
        if (!core::on_dispatcher_thread()) drain();
    }
}

// Journals and takes a fault: true when the call must return *early.
bool receive(const char *function, mipc_sim_ps_id_enum ps_id, const std::string &text, int64_t arg,
             uint32_t *code, mipc_result_enum *early) {
    core::record({function, ps_id, 0, text, arg, {}});
    return core::take_call_fault(function, code, early);
}

// A state or status query: the record `make` builds for the stack's card.
template <typename Record>
mipc_result_enum card_record(const char *function, mipc_sim_ps_id_enum ps_id, Record *result_ptr,
                             Record (*make)(int, const SimCard &)) {
    uint32_t code = 0;
    mipc_result_enum early{};
    if (receive(function, ps_id, "", 0, &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::lock_guard<std::mutex> guard(core::state_lock());
    int slot = slot_of_locked(ps_id);
    *result_ptr = make(slot, cards().slot[slot]);
    result_ptr->result_code = code;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum add_listener(const char *function, bool has_callback, const Listener &listener) {
    core::record({function, listener.ps_id, 0, "", 0, {}});
    Fault fault{};
    if (core::take_fault(function, &fault)) return static_cast<mipc_result_enum>(fault.value);
    if (!has_callback) return MIPC_RESULT_BAD_PARAM;
    core::keep_for_process(listener.priv);
    std::lock_guard<std::mutex> guard(core::state_lock());
    cards().listeners.push_back(listener);
    return MIPC_RESULT_SUCCESS;
}

}  // namespace

extern "C" {

mipc_result_enum mipc_sim_imsi_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                        mipc_sim_imsi_struct *result_ptr) {
    uint32_t code = 0;
    mipc_result_enum early{};
    if (receive("mipc_sim_imsi_get_sync", sim_ps_id, "", 0, &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    const SimCard &card = cards().slot[slot_of_locked(sim_ps_id)];
    result_ptr->result_code = code;
    copy_text(result_ptr->imsi, sizeof result_ptr->imsi, card.imsi);
    result_ptr->mnc_len = card.mnc_len;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sim_iccid_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_sim_iccid_struct *result_ptr) {
    uint32_t code = 0;
    mipc_result_enum early{};
    if (receive("mipc_sim_iccid_get_sync", sim_ps_id, "", 0, &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    result_ptr->result_code = code;
    copy_text(result_ptr->iccid, sizeof result_ptr->iccid,
              cards().slot[slot_of_locked(sim_ps_id)].iccid);
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sim_state_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_sim_state_struct *result_ptr) {
    return card_record("mipc_sim_state_get_sync", sim_ps_id, result_ptr, state_record);
}

mipc_result_enum mipc_sim_status_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_sim_status_struct *result_ptr) {
    return card_record("mipc_sim_status_get_sync", sim_ps_id, result_ptr, status_record);
}

mipc_result_enum mipc_sim_verify_pin_sync(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_sim_verify_pin_struct *result_ptr, uint32_t pin_type,
                                          const char *pin_code_ptr) {
    std::string pin = pin_code_ptr != nullptr ? pin_code_ptr : "";
    uint32_t code = 0;
    mipc_result_enum early{};
    if (receive("mipc_sim_verify_pin_sync", sim_ps_id, pin, pin_type, &code, &early)) return early;
    if (result_ptr == nullptr || pin_code_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    int slot;
    SimCard card;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        slot = cards().mapped;
        card = cards().slot[slot];
    }
    result_ptr->pin_type = pin_type;
    if (code != 0) {
        result_ptr->result_code = code;
    } else if (card.remaining_attempts == 0 || pin != card.pin) {
        result_ptr->result_code = kSimWrongPin;
        if (card.remaining_attempts > 0 && --card.remaining_attempts == 0) {
            card.status = kSimStatusBlocked;
        }
    } else {
        card.remaining_attempts = 3;
        if (card.status == kSimStatusPinRequired) card.status = kSimStatusReady;
    }
    result_ptr->pin_state = card.status == kSimStatusReady ? kPinStateVerified : kPinStateRequired;
    result_ptr->remaining_attempts = card.remaining_attempts;
    change_card(slot, card);
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sim_state_register(mipc_sim_ps_id_enum sim_ps_id, mipc_sim_state_cb cb,
                                         void *cb_priv_ptr) {
    return add_listener("mipc_sim_state_register", cb != nullptr,
                        {sim_ps_id, cb, nullptr, cb_priv_ptr});
}

mipc_result_enum mipc_sim_status_register(mipc_sim_ps_id_enum sim_ps_id, mipc_sim_status_cb cb,
                                          void *cb_priv_ptr) {
    return add_listener("mipc_sim_status_register", cb != nullptr,
                        {sim_ps_id, nullptr, cb, cb_priv_ptr});
}

mipc_result_enum mipc_sys_mapping_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_sys_mapping_struct *result_ptr) {
    uint32_t code = 0;
    mipc_result_enum early{};
    if (receive("mipc_sys_mapping_get_sync", sim_ps_id, "", 0, &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    result_ptr->result_code = code;
    result_ptr->mapping_count = kSlots;
    result_ptr->mapping_list[0].ps_id = static_cast<uint32_t>(cards().mapped);
    result_ptr->mapping_list[1].ps_id = static_cast<uint32_t>(1 - cards().mapped);
    return MIPC_RESULT_SUCCESS;
}

// The journal's arg is the first entry's slot, read as signed.
mipc_result_enum mipc_sys_mapping_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_sys_mapping_struct *result_ptr,
                                           uint8_t mapping_count,
                                           const mipc_sys_mapping_struct4 *mapping_list_ptr) {
    int64_t slot = mapping_count > 0 && mapping_list_ptr != nullptr
                       ? static_cast<int32_t>(mapping_list_ptr[0].ps_id)
                       : -1;
    uint32_t code = 0;
    mipc_result_enum early{};
    if (receive("mipc_sys_mapping_set_sync", sim_ps_id, "", slot, &code, &early)) return early;
    if (result_ptr == nullptr || mapping_list_ptr == nullptr || mapping_count == 0) {
        return MIPC_RESULT_BAD_PARAM;
    }
    std::memset(result_ptr, 0, sizeof *result_ptr);
    if (code == 0 && (slot < 0 || slot >= kSlots)) code = kSimBadSlot;
    result_ptr->result_code = code;
    if (code == 0) set_mapped_slot(static_cast<int>(slot));
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void set_sim(int slot, const SimCard &card) {
    if (slot < 0 || slot >= kSlots) return;
    change_card(slot, card);
    refresh_eid_answer();
}

SimCard sim(int slot) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return cards().slot[slot < 0 || slot >= kSlots ? 0 : slot];
}

int mapped_slot() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return cards().mapped;
}

void set_mapped_slot(int slot) {
    if (slot < 0 || slot >= kSlots) return;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        cards().mapped = slot;
    }
    refresh_eid_answer();
}

void push_sim_status(mipc_sim_ps_id_enum ps_id, std::optional<mipc_sim_status_struct> record,
                     bool null_user) {
    announce(ps_id, std::nullopt, record.value_or(mipc_sim_status_struct{}), !record, null_user);
    drain();
}

void push_sim_state(mipc_sim_ps_id_enum ps_id, std::optional<mipc_sim_state_struct> record,
                    bool null_user) {
    announce(ps_id, record.value_or(mipc_sim_state_struct{}), std::nullopt, !record, null_user);
    drain();
}

}  // namespace mipc_sim
