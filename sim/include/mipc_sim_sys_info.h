// System information of the simulated modem: the module's IMEI.
#pragma once

#include <string>

namespace mipc_sim {

// "" makes the modem report an unknown IMEI.
void set_imei(const std::string &imei);
std::string imei();

}  // namespace mipc_sim
