// The modem's SIM status and state values as the SIM status codes callers see.
#pragma once

#include <cstdint>

namespace nkw::info {

inline constexpr int32_t kStatusUnknown = 8;
inline constexpr uint32_t kSimStateReported = 6;  // the only state passed on
inline constexpr int32_t kStateCode = 5;          // its code
inline constexpr int32_t kNoCode = -1;            // the callback is not called

struct StatusCode {
    uint32_t sim_status;
    int32_t queried;
    int32_t indicated;  // kNoCode: status 1 is never reported, on purpose
};

inline constexpr StatusCode kStatusCodes[] = {
    {0, 0, 0}, {1, 1, kNoCode}, {2, 7, 7}, {3, 2, 2}, {4, 3, 3}, {10, 4, 4}, {20, 6, 6}, {21, 7, 7},
};
inline constexpr int32_t kOtherQueried = 5;

// The code for a status: the query's or the indication's column.
inline int32_t status_code(uint32_t sim_status, bool indicated) {
    for (const StatusCode &row : kStatusCodes) {
        if (row.sim_status == sim_status) return indicated ? row.indicated : row.queried;
    }
    return indicated ? kNoCode : kOtherQueried;
}

}  // namespace nkw::info
