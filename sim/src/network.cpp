// Serving-network model: registration state, operator, packet attach, cells,
// data class, radio power, initial-attach APNs and the SBP id.
#include <algorithm>
#include <cstring>
#include <string>
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

constexpr uint32_t kLteDataClass = 0x20;
constexpr uint32_t kDefaultSbpId = 8;
constexpr uint16_t kSbpIdTlv = 257;

mipc_apn_ia_entry_struct default_apn() {
    mipc_apn_ia_entry_struct entry{};
    std::strncpy(entry.apn, "internet", sizeof entry.apn - 1);
    return entry;
}

struct Network {
    Registration granted;
    uint32_t attach_state = kAttached;
    std::vector<Listener> listeners;
    std::vector<mipc_nw_cell_struct> cells{lte_cell(0x1A2B3C, 0x1234)};
    std::optional<uint8_t> reported_cell_count;
    uint32_t data_class = kLteDataClass;
    uint8_t sw_radio = 1;
    uint8_t hw_radio = 1;
    std::vector<mipc_apn_ia_entry_struct> apns{default_apn()};
    uint32_t sbp_id = kDefaultSbpId;
};

Network &network() {
    static Network instance;
    return instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(core::state_lock());
    network() = Network{};
});

const core::RequestModel kSbpModel(
    kSbpRequest,
    [](const Call &) {
        std::lock_guard<std::mutex> guard(core::state_lock());
        return std::vector<Tlv>{tlv_u32(0, 0), tlv_u32(kSbpIdTlv, network().sbp_id)};
    },
    true);

// Caller holds the state lock.
Registration reported_locked() {
    Registration now = network().granted;
    if (network().sw_radio == 0 || network().hw_radio == 0) {
        now.cs_state = MIPC_NW_REG_STATE_NOT_REGISTERED;
        now.ps_state = MIPC_NW_REG_STATE_NOT_REGISTERED;
    }
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
    result_ptr->data_class = network().data_class;
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

mipc_result_enum mipc_nw_cell_info_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                            mipc_nw_cell_info_struct *result_ptr) {
    core::record({"mipc_nw_cell_info_get_sync",
                  sim_ps_id,
                  0,
                  "",
                  result_ptr != nullptr ? result_ptr->cell_list_count : -1,
                  {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_nw_cell_info_get_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    // The caller's count is its capacity; the modem writes no further.
    size_t capacity = std::min<size_t>(result_ptr->cell_list_count, MIPC_NW_CELL_LIST_MAX);
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    const std::vector<mipc_nw_cell_struct> &cells = network().cells;
    size_t filled = std::min(capacity, cells.size());
    std::copy(cells.begin(), cells.begin() + static_cast<std::ptrdiff_t>(filled),
              result_ptr->cell_list);
    result_ptr->result_code = code;
    result_ptr->cell_list_count =
        network().reported_cell_count.value_or(static_cast<uint8_t>(filled));
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_nw_radio_state_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                              mipc_nw_radio_state_struct *result_ptr) {
    core::record({"mipc_nw_radio_state_get_sync", sim_ps_id, 0, "", 0, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_nw_radio_state_get_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    result_ptr->result_code = code;
    result_ptr->sw_state = network().sw_radio;
    result_ptr->hw_state = network().hw_radio;
    return MIPC_RESULT_SUCCESS;
}

// The journal's arg holds the software state, its text the hardware state.
mipc_result_enum mipc_nw_final_radio_state_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                                    mipc_nw_radio_state_struct *result_ptr,
                                                    uint8_t sw_state, uint8_t hw_state) {
    core::record({"mipc_nw_final_radio_state_set_sync",
                  sim_ps_id,
                  0,
                  std::to_string(hw_state),
                  sw_state,
                  {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_nw_final_radio_state_set_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    result_ptr->result_code = code;
    if (code == 0) set_radio(sw_state, hw_state);
    std::pair<uint8_t, uint8_t> now = radio();
    result_ptr->sw_state = now.first;
    result_ptr->hw_state = now.second;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_apn_ia_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                      mipc_apn_ia_struct_v *result_ptr) {
    core::record({"mipc_apn_ia_get_sync", sim_ps_id, 0, "", 0, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_apn_ia_get_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    const std::vector<mipc_apn_ia_entry_struct> &apns = network().apns;
    size_t count = std::min<size_t>(apns.size(), MIPC_APN_IA_LIST_MAX);
    std::copy(apns.begin(), apns.begin() + static_cast<std::ptrdiff_t>(count),
              result_ptr->apn_list);
    result_ptr->result_code = code;
    result_ptr->apn_list_count = static_cast<uint8_t>(count);
    return MIPC_RESULT_SUCCESS;
}

// The journal's text holds the APN, its arg the option value.
mipc_result_enum mipc_apn_ia_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                      mipc_apn_ia_set_struct *result_ptr, const char *apn_ptr,
                                      uint32_t pdp_type, uint32_t roaming_pdp_type,
                                      uint32_t auth_type, const char *username_ptr,
                                      const char *password_ptr, unsigned int option,
                                      uint32_t compression) {
    core::record(
        {"mipc_apn_ia_set_sync", sim_ps_id, 0, apn_ptr != nullptr ? apn_ptr : "", option, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_apn_ia_set_sync", &code, &early)) return early;
    if (result_ptr == nullptr || apn_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    result_ptr->result_code = code;
    if (code != 0) return MIPC_RESULT_SUCCESS;
    mipc_apn_ia_entry_struct entry{};
    // Bounded: the caller's fields need not be terminated.
    std::memcpy(entry.apn, apn_ptr, strnlen(apn_ptr, sizeof entry.apn - 1));
    if (username_ptr != nullptr) {
        std::memcpy(entry.username, username_ptr, strnlen(username_ptr, sizeof entry.username - 1));
    }
    if (password_ptr != nullptr) {
        std::memcpy(entry.password, password_ptr, strnlen(password_ptr, sizeof entry.password - 1));
    }
    entry.option = option;
    entry.pdp_type = static_cast<uint8_t>(pdp_type);
    entry.roaming_pdp_type = static_cast<uint8_t>(roaming_pdp_type);
    entry.auth_type = static_cast<uint8_t>(auth_type);
    entry.compression = static_cast<uint8_t>(compression);
    std::lock_guard<std::mutex> guard(core::state_lock());
    network().apns = {entry};
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

namespace mipc_sim {

mipc_nw_cell_struct lte_cell(uint32_t cell_id, uint32_t tac) {
    mipc_nw_cell_struct cell{};
    cell.cell_type = MIPC_NW_CELL_TYPE_LTE;
    cell.lte_cell_id = cell_id;
    cell.lte_tac = tac;
    return cell;
}

mipc_nw_cell_struct nr_cell(uint64_t cell_id, uint32_t tac) {
    mipc_nw_cell_struct cell{};
    cell.cell_type = MIPC_NW_CELL_TYPE_NR;
    cell.nr_cell_id = cell_id;
    cell.nr_tac = tac;
    return cell;
}

mipc_nw_cell_struct gw_cell(uint32_t type, uint32_t cell_id, uint32_t lac) {
    mipc_nw_cell_struct cell{};
    cell.cell_type = type;
    cell.gw_cell_id = cell_id;
    cell.gw_lac = lac;
    return cell;
}

void set_cells(const std::vector<mipc_nw_cell_struct> &cells,
               std::optional<uint8_t> reported_count) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    network().cells = cells;
    network().reported_cell_count = reported_count;
}

void set_data_class(uint32_t mask) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    network().data_class = mask;
}

void set_radio(uint8_t sw_state, uint8_t hw_state) {
    Registration before;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        before = reported_locked();
        network().sw_radio = sw_state;
        network().hw_radio = hw_state;
    }
    announce_if_changed(before);
}

std::pair<uint8_t, uint8_t> radio() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return {network().sw_radio, network().hw_radio};
}

void set_attach_apns(const std::vector<mipc_apn_ia_entry_struct> &apns) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    network().apns = apns;
}

std::vector<mipc_apn_ia_entry_struct> attach_apns() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return network().apns;
}

void set_sbp_id(uint32_t sbp_id) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    network().sbp_id = sbp_id;
}

}  // namespace mipc_sim
