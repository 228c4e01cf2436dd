// Serving-network model of the simulated modem: registration, operator and
// packet attach. A change of what the modem reports pushes the registration
// indication to every registered listener, from the dispatcher thread.
#pragma once

#include <mipc_msg.h>

#include <cstdint>
#include <string>

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

}  // namespace mipc_sim
