// Serving-network model of the simulated modem: registration, operator,
// packet attach, serving cells, data class, radio power, initial-attach APNs
// and the carrier configuration (SBP) id. A change of what the modem reports
// pushes the registration indication to every registered listener, from the
// dispatcher thread.
#pragma once

#include <mipc_msg.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mipc_sim {

// What the network grants. States are mipc_nw_reg_state_enum values, but any
// byte is accepted so tests can send what a modem should not.
struct Registration {
    uint8_t cs_state = MIPC_NW_REG_STATE_HOME;
    uint8_t ps_state = MIPC_NW_REG_STATE_HOME;
    std::string plmn = "00101";  // MCC and MNC digits
    std::string network_name = "Test Network";
    uint32_t network_error = 0;
};

// Replaces the network's answer; returns once the indications are delivered.
void set_registration(const Registration &registration);
// What the modem reports now: while detached the packet service reads as
// not registered.
Registration registration();

// Packet-service state: 1 attached (the start), 0 detached.
uint32_t attach_state();

// Serving and neighbour cells, first entry first. The modem reports as many
// as the caller's capacity allows; `reported_count` replaces the count it
// reports (to send what a modem should not). Default: one LTE cell.
mipc_nw_cell_struct lte_cell(uint32_t cell_id, uint32_t tac);
mipc_nw_cell_struct nr_cell(uint64_t cell_id, uint32_t tac);
// GSM or UMTS (`type`), which share their fields.
mipc_nw_cell_struct gw_cell(uint32_t type, uint32_t cell_id, uint32_t lac);
void set_cells(const std::vector<mipc_nw_cell_struct> &cells,
               std::optional<uint8_t> reported_count = std::nullopt);

// Data-class bit mask of the current bearer (default 0x20, LTE).
void set_data_class(uint32_t mask);

// Radio power: software and hardware state, both 1 at the start. With either
// off the module is not registered (and the indications say so).
void set_radio(uint8_t sw_state, uint8_t hw_state);
std::pair<uint8_t, uint8_t> radio();

// Initial-attach APN list (default: one entry, "internet"). A set request
// replaces the list with the entry it carries.
void set_attach_apns(const std::vector<mipc_apn_ia_entry_struct> &apns);
std::vector<mipc_apn_ia_entry_struct> attach_apns();

// Answer of the carrier configuration request (raw message 77): TLV 0 = 0
// and TLV 257 = the id (default 8).
inline constexpr uint16_t kSbpRequest = 77;
void set_sbp_id(uint32_t sbp_id);

}  // namespace mipc_sim
