// The address types of the socket wrappers and the families they stand for.
#pragma once

#include <sys/socket.h>

#include <cstdint>

namespace nkw::os {

constexpr int kIpFamily[] = {AF_INET, AF_INET6, AF_UNSPEC};  // by IP_TYPE_*
constexpr uint32_t kIpTypeCount = sizeof(kIpFamily) / sizeof(kIpFamily[0]);

inline bool valid_ip_type(uint32_t ip_type) {
    return ip_type < kIpTypeCount;
}

// The family of a valid type, -1 (which every call refuses) otherwise.
inline int family_of(uint32_t ip_type) {
    return valid_ip_type(ip_type) ? kIpFamily[ip_type] : -1;
}

}  // namespace nkw::os
