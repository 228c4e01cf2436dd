// Host-side steps of a data call activation.
#pragma once

#include <cstdint>

#include "modem/mipc.h"

// Default route and MTU on ccmni<interface_id>, after the interface wait.
void nkw_pal_configure_after_data_call(int32_t interface_id);

namespace nkw::connect {

// Writes the call's DNS servers to the resolver file, the call's own family
// first; both families always.
void write_dns_servers(const mipc_data_call_act_struct &call);

// Full, uncompressed lower-case text of an address.
constexpr size_t kIpv4TextSize = 16;
constexpr size_t kIpv6TextSize = 40;
void ipv4_text(char (&text)[kIpv4TextSize], const uint8_t (&address)[4]);
void ipv6_text(char (&text)[kIpv6TextSize], const uint8_t (&address)[16]);

}  // namespace nkw::connect
