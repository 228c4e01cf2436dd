// Serving-network model: registration state, operator, packet attach.
#include <cstring>
#include <vector>

#include "core.h"
#include "mipc_sim_network.h"
#include "model_support.h"

using namespace mipc_sim;

namespace {

constexpr uint32_t kDetached = 0;
constexpr uint32_t kAttached = 1;

struct Listener {
    mipc_sim_ps_id_enum ps_id;
    mipc_nw_register_state_cb cb;
    void *priv;
};

struct Network {
    Registration granted;
    uint32_t attach_state = kAttached;
    std::vector<Listener> listeners;
};

Network &network() {
    static Network instance;
    return instance;
}

const core::ResetHook kReset([] { network() = Network{}; });

// Caller holds the state lock.
Registration reported_locked() {
    Registration now = network().granted;
    if (network().attach_state != kAttached) now.ps_state = MIPC_NW_REG_STATE_NOT_REGISTERED;
    return now;
}

void fill(mipc_nw_reg_state_struct *record, const Registration &reg) {
    std::memset(record, 0, sizeof *record);
    record->cs_state = reg.cs_state;
    record->ps_state = reg.ps_state;
    std::strncpy(record->plmn, reg.plmn.c_str(), sizeof record->plmn - 1);
    std::strncpy(record->network_name, reg.network_name.c_str(), sizeof record->network_name - 1);
    record->network_error = reg.network_error;
}

// Pushes the state to every listener when it differs from `before`, and
// waits for delivery. Called without the state lock.
void announce_if_changed(const Registration &before) {
    std::vector<Listener> listeners;
    Registration now;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        now = reported_locked();
        listeners = network().listeners;
    }
    if (now.cs_state == before.cs_state && now.ps_state == before.ps_state &&
        now.plmn == before.plmn && now.network_name == before.network_name &&
        now.network_error == before.network_error) {
        return;
    }
    for (const Listener &listener : listeners) {
        post([listener, now] {
            mipc_nw_reg_state_struct record;
            fill(&record, now);
            listener.cb(listener.ps_id, &record, listener.priv);
        });
    }
    drain();
}

}  // namespace

extern "C" {

mipc_result_enum mipc_nw_register_state_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                                 mipc_nw_reg_state_struct *result_ptr) {
    core::record({"mipc_nw_register_state_get_sync", sim_ps_id, 0, "", 0, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_nw_register_state_get_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        fill(result_ptr, reported_locked());
    }
    result_ptr->result_code = code;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_nw_ps_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                     mipc_nw_attach_state_struct *result_ptr) {
    core::record({"mipc_nw_ps_get_sync", sim_ps_id, 0, "", 0, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_nw_ps_get_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    result_ptr->result_code = code;
    result_ptr->attach_state = network().attach_state;
    result_ptr->network_error = network().granted.network_error;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_nw_ps_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                     mipc_nw_attach_state_struct *result_ptr,
                                     uint32_t attach_state) {
    core::record({"mipc_nw_ps_set_sync", sim_ps_id, 0, "", attach_state, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_nw_ps_set_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    if (attach_state != kAttached && attach_state != kDetached) {
        result_ptr->result_code = MIPC_RESULT_BAD_PARAM;  // not a packet-service state
        return MIPC_RESULT_SUCCESS;
    }
    Registration before;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        before = reported_locked();
        if (code == 0) network().attach_state = attach_state;
        result_ptr->result_code = code;
        result_ptr->attach_state = network().attach_state;
        result_ptr->network_error = network().granted.network_error;
    }
    announce_if_changed(before);
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_nw_register_state_register(mipc_sim_ps_id_enum sim_ps_id,
                                                 mipc_nw_register_state_cb cb, void *cb_priv_ptr) {
    core::record({"mipc_nw_register_state_register", sim_ps_id, 0, "", 0, {}});
    Fault fault{};
    bool faulted = core::take_fault("mipc_nw_register_state_register", &fault);
    core::keep_for_process(cb_priv_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    if (faulted) return static_cast<mipc_result_enum>(fault.value);
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    network().listeners.push_back({sim_ps_id, cb, cb_priv_ptr});
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void set_registration(const Registration &registration) {
    Registration before;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        before = reported_locked();
        network().granted = registration;
    }
    announce_if_changed(before);
}

Registration registration() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return reported_locked();
}

uint32_t attach_state() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return network().attach_state;
}

}  // namespace mipc_sim
