// Host name resolution into the socket wrappers' fixed array of addresses.
#include <netdb.h>
#include <netinet/in.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/ip_family.h"

namespace {

constexpr const char *kTag = "SOCKET";
constexpr size_t kServiceSize = 6;  // "65535" and its terminator

// Stores one result; false for families the entries cannot hold.
bool store(const addrinfo &result, addrinfo_entry *entry) {
    if (result.ai_family == AF_INET) {
        const auto *in = reinterpret_cast<const sockaddr_in *>(result.ai_addr);
        std::memcpy(entry->address, &in->sin_addr, sizeof in->sin_addr);
        entry->port = ntohs(in->sin_port);
    } else if (result.ai_family == AF_INET6) {
        const auto *in6 = reinterpret_cast<const sockaddr_in6 *>(result.ai_addr);
        std::memcpy(entry->address, &in6->sin6_addr, sizeof in6->sin6_addr);
        entry->port = ntohs(in6->sin6_port);
    } else {
        return false;
    }
    entry->family = static_cast<uint8_t>(result.ai_family);
    return true;
}

}  // namespace

extern "C" {

int32_t nkw_pal_getaddrinfo(const char *host, const uint16_t *port,
                            addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX], uint32_t ip_type) {
    if (host == nullptr || entries == nullptr) {
        NKW_LOGE(kTag, "hostname or addrinfo is NULL \n");
        return NKW_PAL_OS_MISSING_ARG;
    }
    NKW_LOGD(kTag, "ip_type: %d \n", static_cast<int>(ip_type));

    addrinfo hints{};
    hints.ai_flags = AI_PASSIVE;
    hints.ai_family = nkw::os::family_of(ip_type);  // -1 for a bad type: refused
    char service[kServiceSize] = {};
    if (port != nullptr) std::snprintf(service, sizeof service, "%d", *port);

    addrinfo *results = nullptr;
    if (getaddrinfo(host, port != nullptr ? service : nullptr, &hints, &results) != 0) {
        // errno, not the resolver's own code: log readers have always seen this.
        NKW_LOGE(kTag, "DNS resolution failure %s \n", strerror(errno));
        return NKW_PAL_RESOLVE_FAILED;
    }
    if (results == nullptr) {
        NKW_LOGE(kTag, "getaddrinfo result is NULL \n");
        return NKW_PAL_RESOLVE_FAILED;
    }
    int stored = 0;
    for (const addrinfo *r = results; r != nullptr && stored < NKW_PAL_ADDRINFO_MAX;
         r = r->ai_next) {
        if (store(*r, &entries[stored])) ++stored;
    }
    freeaddrinfo(results);
    if (stored == 0) {
        NKW_LOGE(kTag, "IP ontaining failure \n");
        return NKW_PAL_RESOLVE_NO_ADDRESS;
    }
    return 0;
}

}  // extern "C"
