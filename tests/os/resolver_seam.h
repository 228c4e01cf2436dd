// The resolver seam: the test executable defines getaddrinfo/freeaddrinfo.
// Host names ending in ".seam.test" are answered from a list the test sets
// (no network, no DNS server); every other name goes to the C library.
#pragma once

#include <netdb.h>

#include <string>
#include <vector>

namespace nkw::test {

struct SeamAddress {
    int family;  // AF_INET, AF_INET6 or anything else
    std::string text;
    uint16_t port;
};

// The answer for the next seam name: `results` in this order, or `error`.
void set_resolver_answer(std::vector<SeamAddress> results, int error = 0);
// The hints and service of the last call that reached the seam.
addrinfo last_resolver_hints();
std::string last_resolver_service();

}  // namespace nkw::test
