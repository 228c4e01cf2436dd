// Live event injection: a control socket that accepts scenario timeline
// events from another process (sim-inject) while a daemon runs.
#pragma once

#include <string>

namespace mipc_sim {

// mipc_init listens on the socket named here, when set; mipc_deinit removes it.
inline constexpr const char *kControlEnv = "NKW_PAL_SIM_CONTROL";

bool start_control_socket(const std::string &path, std::string *error);
void stop_control_socket();

}  // namespace mipc_sim
