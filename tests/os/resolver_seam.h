// The resolver seam: the test executable defines getaddrinfo/freeaddrinfo.
// While armed, every name is answered from the list the test sets (no
// network, no DNS server); otherwise the C library answers.
#pragma once

#include <netdb.h>

#include <string>
#include <utility>
#include <vector>

namespace nkw::test {

struct SeamAddress {
    int family;  // AF_INET, AF_INET6 or anything else
    const char *text;
    uint16_t port;
};

// Touched only from the test's own thread.
struct ResolverSeam {
    bool armed = false;
    std::vector<SeamAddress> results;  // answered in this order,
    int error = 0;                     // unless this is set
    addrinfo hints{};                  // what the last answered call asked
    std::string service;
};
extern ResolverSeam resolver_seam;

// Arms the seam with a fresh answer.
inline void answer_with(std::vector<SeamAddress> results, int error = 0) {
    resolver_seam = ResolverSeam{};
    resolver_seam.armed = true;
    resolver_seam.results = std::move(results);
    resolver_seam.error = error;
}

}  // namespace nkw::test
