// Data-call model: activation per APN, active calls, release, and calls
// the network ends.
#include <cstring>
#include <map>
#include <vector>

#include "core.h"
#include "mipc_sim_data_call.h"
#include "model_support.h"

using namespace mipc_sim;

namespace {

constexpr uint32_t kPdpIpv4 = 1;
constexpr uint32_t kPdpIpv6 = 2;

// Documentation ranges: nothing that could be a real network.
constexpr Ipv4 kV4Dns1{192, 0, 2, 53};
constexpr Ipv4 kV4Dns2{192, 0, 2, 54};
constexpr Ipv6 kV6Dns1{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x53};
constexpr Ipv6 kV6Dns2{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x54};

struct Listener {
    mipc_sim_ps_id_enum ps_id;
    mipc_data_call_deact_cb cb;
    void *priv;
};

struct DataCalls {
    std::map<std::string, DataCallAnswer> answers;
    std::vector<DataCallRequest> requests;
    std::map<uint8_t, mipc_data_call_act_struct> active;
    std::vector<Listener> listeners;
};

DataCalls &calls() {
    static DataCalls instance;
    return instance;
}

const core::ResetHook kReset([] { calls() = DataCalls{}; });

uint8_t next_free_id_locked() {
    uint8_t id = 1;
    while (calls().active.count(id) != 0) ++id;
    return id;
}

// The record of a new call; caller holds the state lock.
mipc_data_call_act_struct activate_locked(const DataCallRequest &request) {
    DataCallAnswer answer;
    auto found = calls().answers.find(request.apn);
    if (found != calls().answers.end()) answer = found->second;

    mipc_data_call_act_struct call;
    std::memset(&call, 0, sizeof call);
    call.result_code = answer.result_code;
    if (answer.result_code != 0) return call;
    call.id = static_cast<uint8_t>(answer.id >= 0 ? answer.id : next_free_id_locked());
    call.interface_id = answer.interface_id >= 0 ? answer.interface_id : call.id - 1;
    call.pdp_type = static_cast<uint8_t>(answer.pdp_type >= 0 ? answer.pdp_type : request.pdp_type);
    const std::string &apn = answer.apn.empty() ? request.apn : answer.apn;
    std::strncpy(call.apn, apn.c_str(), sizeof call.apn - 1);

    if (answer.addresses_set) {
        std::memcpy(call.v4_addr, answer.v4_addr.data(), 4);
        std::memcpy(call.v6_addr, answer.v6_addr.data(), 16);
        std::memcpy(call.v4_dns_primary, answer.v4_dns_primary.data(), 4);
        std::memcpy(call.v4_dns_secondary, answer.v4_dns_secondary.data(), 4);
        std::memcpy(call.v6_dns_primary, answer.v6_dns_primary.data(), 16);
        std::memcpy(call.v6_dns_secondary, answer.v6_dns_secondary.data(), 16);
    } else {
        // Each call its own addresses, in the families its type carries.
        if (call.pdp_type != kPdpIpv6) {
            const Ipv4 v4{10, 0, 0, static_cast<uint8_t>(call.id + 1)};
            std::memcpy(call.v4_addr, v4.data(), 4);
            std::memcpy(call.v4_dns_primary, kV4Dns1.data(), 4);
            std::memcpy(call.v4_dns_secondary, kV4Dns2.data(), 4);
        }
        if (call.pdp_type != kPdpIpv4) {
            Ipv6 v6{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, call.id, 0, 0, 0, 0, 0, 0, 0, 2};
            std::memcpy(call.v6_addr, v6.data(), 16);
            std::memcpy(call.v6_dns_primary, kV6Dns1.data(), 16);
            std::memcpy(call.v6_dns_secondary, kV6Dns2.data(), 16);
        }
    }
    calls().active[call.id] = call;
    return call;
}

}  // namespace

extern "C" {

mipc_result_enum mipc_data_call_act_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_data_call_act_struct *result_ptr, const char *apn_ptr,
                                         uint32_t apn_type, uint32_t pdp_type,
                                         uint32_t roaming_pdp_type, uint32_t auth_type,
                                         const char *username_ptr, const char *password_ptr,
                                         uint32_t fallback_type, uint32_t option_bitmask) {
    DataCallRequest request{sim_ps_id,
                            apn_ptr != nullptr ? apn_ptr : "",
                            apn_type,
                            pdp_type,
                            roaming_pdp_type,
                            auth_type,
                            username_ptr != nullptr ? username_ptr : "",
                            password_ptr != nullptr ? password_ptr : "",
                            fallback_type,
                            option_bitmask};
    core::record({"mipc_data_call_act_sync", sim_ps_id, 0, request.apn, pdp_type, {}});
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        calls().requests.push_back(request);
    }
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_data_call_act_sync", &code, &early)) return early;
    if (result_ptr == nullptr || apn_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (code != 0) {
        std::memset(result_ptr, 0, sizeof *result_ptr);
        result_ptr->result_code = code;
        return MIPC_RESULT_SUCCESS;
    }
    std::lock_guard<std::mutex> guard(core::state_lock());
    *result_ptr = activate_locked(request);
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_data_call_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_data_call_act_struct *result_ptr, uint8_t id) {
    core::record({"mipc_data_call_get_sync", sim_ps_id, 0, "", id, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_data_call_get_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    auto found = calls().active.find(id);
    if (found == calls().active.end()) {
        result_ptr->result_code = MIPC_RESULT_FAILURE;  // no such call
    } else {
        *result_ptr = found->second;
    }
    if (code != 0) result_ptr->result_code = code;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_data_call_deact_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_data_call_deact_struct *result_ptr, uint8_t id) {
    core::record({"mipc_data_call_deact_sync", sim_ps_id, 0, "", id, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_data_call_deact_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    result_ptr->id = id;
    if (code != 0) {
        result_ptr->result_code = code;
        return MIPC_RESULT_SUCCESS;
    }
    std::lock_guard<std::mutex> guard(core::state_lock());
    // Ended by the host: no indication, as with a real modem.
    if (calls().active.erase(id) == 0) result_ptr->result_code = MIPC_RESULT_FAILURE;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_data_call_deact_register(mipc_sim_ps_id_enum sim_ps_id,
                                               mipc_data_call_deact_cb cb, void *cb_priv_ptr) {
    core::record({"mipc_data_call_deact_register", sim_ps_id, 0, "", 0, {}});
    Fault fault{};
    bool faulted = core::take_fault("mipc_data_call_deact_register", &fault);
    core::keep_for_process(cb_priv_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    if (faulted) return static_cast<mipc_result_enum>(fault.value);
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    calls().listeners.push_back({sim_ps_id, cb, cb_priv_ptr});
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void set_data_call_answer(const std::string &apn, const DataCallAnswer &answer) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    calls().answers[apn] = answer;
}

std::vector<DataCallRequest> data_call_requests() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return calls().requests;
}

std::vector<uint8_t> active_data_calls() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    std::vector<uint8_t> ids;
    for (const auto &entry : calls().active) ids.push_back(entry.first);
    return ids;
}

bool network_deactivate(uint8_t id, uint32_t cause) {
    std::vector<Listener> listeners;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        if (calls().active.erase(id) == 0) return false;
        listeners = calls().listeners;
    }
    for (const Listener &listener : listeners) {
        post([listener, id, cause] {
            mipc_data_call_deact_struct record;
            std::memset(&record, 0, sizeof record);
            record.id = id;
            record.network_cause = cause;
            listener.cb(listener.ps_id, &record, listener.priv);
        });
    }
    drain();
    return true;
}

}  // namespace mipc_sim
