// Log tag of the SIM, network and device information calls.
#pragma once

namespace nkw::info {
inline constexpr const char kTag[] = "MODEM";
}  // namespace nkw::info
