// Log tag of the connectivity subsystem.
#pragma once

namespace nkw::connect {
inline constexpr const char kTag[] = "TEST";
}  // namespace nkw::connect
