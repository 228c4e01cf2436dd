// SIM model of the simulated modem: two slots, each with its card's identity,
// state and status and a PIN, and the mapping of the first protocol stack to
// a slot. A change of a card's state or status pushes the SIM state and
// status indications, from the dispatcher thread, to the listeners of the
// protocol stack that serves the slot.
#pragma once

#include <mipc_msg.h>

#include <cstdint>
#include <optional>
#include <string>

namespace mipc_sim {

// Status and state values the model uses itself; tests may set any value.
inline constexpr uint32_t kSimStatusReady = 0;
inline constexpr uint32_t kSimStatusPinRequired = 3;
inline constexpr uint32_t kSimStatusBlocked = 4;
inline constexpr uint32_t kSimStateReady = 1;
inline constexpr uint32_t kSimStateAbsent = 6;
// Result codes of a PIN attempt that failed and of a mapping refused.
inline constexpr uint32_t kSimWrongPin = 0x1006;
inline constexpr uint32_t kSimBadSlot = MIPC_RESULT_BAD_PARAM;

struct SimCard {
    std::string imsi = "001010123456789";
    uint8_t mnc_len = 2;
    std::string iccid = "89860012345678901234";
    std::string eid = "89049032000001000000000000000017";
    uint32_t state = kSimStateReady;
    uint32_t status = kSimStatusReady;
    std::string pin = "1234";
    uint32_t remaining_attempts = 3;
};

// Slot 0 holds a ready card, slot 1 none (state kSimStateAbsent).
void set_sim(int slot, const SimCard &card);
SimCard sim(int slot);

// The slot the first protocol stack (MIPC_PS0) serves; MIPC_PS1 serves the
// other one. Identity queries read the first stack's card.
int mapped_slot();
void set_mapped_slot(int slot);

// Pushes one raw indication record (or none, for a null pointer) to every
// listener of `ps_id`, and waits for delivery.
void push_sim_status(mipc_sim_ps_id_enum ps_id, std::optional<mipc_sim_status_struct> record,
                     bool null_user = false);
void push_sim_state(mipc_sim_ps_id_enum ps_id, std::optional<mipc_sim_state_struct> record,
                    bool null_user = false);

}  // namespace mipc_sim
