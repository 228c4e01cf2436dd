// Data-call model of the simulated modem: activation answers per APN,
// active calls, release, and calls the network ends (pushed through the
// registered deactivation indications from the dispatcher thread).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace mipc_sim {

using Ipv4 = std::array<uint8_t, 4>;
using Ipv6 = std::array<uint8_t, 16>;

// How the network answers an activation. Unset fields follow the request:
// the next free call id, interface ccmni<id - 1>, the requested PDP type and
// APN, and addresses of the families that PDP type carries.
struct DataCallAnswer {
    uint32_t result_code = 0;  // non-zero: the network refuses
    int id = -1;
    int interface_id = -1;
    int pdp_type = -1;
    std::string apn;             // empty: as requested
    bool addresses_set = false;  // true: use the addresses below as they are
    Ipv4 v4_addr{};
    Ipv6 v6_addr{};
    Ipv4 v4_dns_primary{};
    Ipv4 v4_dns_secondary{};
    Ipv6 v6_dns_primary{};
    Ipv6 v6_dns_secondary{};
};

// The answer for activations of `apn` from now on.
void set_data_call_answer(const std::string &apn, const DataCallAnswer &answer);

// Every activation request, with all its arguments, oldest first.
struct DataCallRequest {
    int ps_id;
    std::string apn;
    uint32_t apn_type;
    uint32_t pdp_type;
    uint32_t roaming_pdp_type;
    uint32_t auth_type;
    std::string username;
    std::string password;
    uint32_t fallback_type;
    uint32_t option_bitmask;
};
std::vector<DataCallRequest> data_call_requests();

// Ids of the calls up now, ascending.
std::vector<uint8_t> active_data_calls();

// The network ends call `id` with `cause`: returns false when it is not up.
// Returns once the indications are delivered.
bool network_deactivate(uint8_t id, uint32_t cause);

}  // namespace mipc_sim
