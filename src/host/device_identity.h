// Host nodes read for the module's identity.
#pragma once

namespace nkw::host::paths {
// The platform's GPIO pin-control listing: one line per pin.
inline constexpr const char kPinctrlGpio[] = "/sys/devices/platform/10005000.pinctrl/mt_gpio";
}  // namespace nkw::host::paths
