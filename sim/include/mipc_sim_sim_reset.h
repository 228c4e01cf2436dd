// SIM reset model of the simulated modem: which SIMs were reset. Faults go
// through fail_next() of mipc_sim.h under "mipc_sim_reset_set_sync".
#pragma once

#include <cstdint>
#include <vector>

namespace mipc_sim {

// Result code of a reset addressed to a stack without a SIM slot.
inline constexpr uint32_t kSimResetNoSlot = 0x2001;

struct SimReset {
    int ps_id;
    uint32_t pass_through_mode;
};
// Resets the modem carried out, oldest first.
std::vector<SimReset> sim_resets();

}  // namespace mipc_sim
