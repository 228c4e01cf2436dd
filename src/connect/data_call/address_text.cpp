// Address texts for the resolver file and the logs.
#include <cstdio>

#include "connect/data_call/host_config.h"

namespace nkw::connect {

void ipv4_text(char (&text)[kIpv4TextSize], const uint8_t (&a)[4]) {
    std::snprintf(text, sizeof text, "%d.%d.%d.%d", a[0], a[1], a[2], a[3]);
}

// Every group in full: the resolver sees the same text the logs show.
void ipv6_text(char (&text)[kIpv6TextSize], const uint8_t (&a)[16]) {
    std::snprintf(text, sizeof text,
                  "%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x", a[0],
                  a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12], a[13],
                  a[14], a[15]);
}

}  // namespace nkw::connect
