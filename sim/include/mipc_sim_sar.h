// SAR model of the simulated modem: the body-SAR and TA-SAR items live in
// the NVRAM model (mipc_sim_nvram.h) under their LIDs; the table switch
// completes on the dispatcher thread and changes the active table. Faults go
// through fail_next() under "tolvaro_mipc_sys_sar_set_async".
#pragma once

#include <cstdint>
#include <vector>

namespace mipc_sim {

inline constexpr uint32_t kBodySarLid = 0xE10A;
inline constexpr uint32_t kTaSarLid = 0xE10B;

// Item bytes of `size` whose first two 16-bit words are `first` and `second`
// (a non-zero first word and 1 in the second enable SAR).
std::vector<uint8_t> sar_item(uint16_t first, uint16_t second, size_t size);

struct SarTable {
    uint32_t mode = 0;
    uint32_t index = 0;
    int switches = 0;  // completed switches since reset
};
SarTable sar_table();
// The table in force before any switch (a scenario's starting state).
void set_sar_table(uint32_t mode, uint32_t index);

}  // namespace mipc_sim
