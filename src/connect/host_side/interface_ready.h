// Whether the modem's network interface ccmni<n> is usable.
#pragma once

#include <cstdint>

// 0 when ccmni<n> is up, running and has an IPv4 address other than
// 0.0.0.0; -1 otherwise (also when the check cannot run).
int32_t nkw_pal_is_net_interface_ready(int32_t n);
