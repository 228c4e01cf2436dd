// AT command model of the simulated modem.
#pragma once

#include <cstdint>
#include <string>

namespace mipc_sim {

// Scripted answer for AT commands starting with `prefix` (the longest prefix
// wins). Without a script the modem answers result 0 and "OK".
void set_at_reply(const std::string &prefix, uint32_t result_code, const std::string &response);

}  // namespace mipc_sim
