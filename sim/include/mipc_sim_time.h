// Time model of the simulated modem: what mipc_sys_time_get_sync reports.
#pragma once

#include <cstdint>

namespace mipc_sim {

struct ModemTime {
    uint64_t time_ms = 0;  // milliseconds since 1970 UTC
    int32_t tz_offset_min = 0;
    uint32_t dst = 0;
    uint32_t time_source = 0;
};

// From now on the modem reports `time` (its clock does not run on). Without
// this the modem reports the host's time, taken from the network.
void set_modem_time(const ModemTime &time);

}  // namespace mipc_sim
