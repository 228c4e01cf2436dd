#include "os/resolver_seam.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <netinet/in.h>

nkw::test::ResolverSeam nkw::test::resolver_seam;

namespace {

char kSeamMarker[] = "seam";  // in ai_canonname: the seam built this list

// One result node holding its own socket address.
struct Node {
    addrinfo info;
    sockaddr_in6 address;  // large enough for either family
};

addrinfo *build(const nkw::test::SeamAddress &a) {
    auto *node = new Node{};
    node->info.ai_family = a.family;
    node->info.ai_canonname = kSeamMarker;
    node->info.ai_addr = reinterpret_cast<sockaddr *>(&node->address);
    node->info.ai_addrlen = a.family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
    node->address.sin6_family = static_cast<sa_family_t>(a.family);
    node->address.sin6_port = htons(a.port);  // at the same offset as sin_port
    auto *in = reinterpret_cast<sockaddr_in *>(&node->address);
    inet_pton(a.family, a.text,
              a.family == AF_INET6 ? static_cast<void *>(&node->address.sin6_addr)
                                   : &in->sin_addr);  // other families: no-op
    return &node->info;
}

}  // namespace

extern "C" {

int getaddrinfo(const char *host, const char *service, const addrinfo *hints, addrinfo **out) {
    auto &seam = nkw::test::resolver_seam;
    if (!seam.armed) {
        using Real = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
        return reinterpret_cast<Real>(dlsym(RTLD_NEXT, "getaddrinfo"))(host, service, hints, out);
    }
    seam.hints = *hints;
    seam.service = service != nullptr ? service : "(none)";
    *out = nullptr;
    if (seam.error != 0) return seam.error;
    for (auto it = seam.results.rbegin(); it != seam.results.rend(); ++it) {
        addrinfo *node = build(*it);
        node->ai_next = *out;
        *out = node;
    }
    return 0;
}

void freeaddrinfo(addrinfo *list) {
    if (list == nullptr || list->ai_canonname != kSeamMarker) {
        using Real = void (*)(addrinfo *);
        return reinterpret_cast<Real>(dlsym(RTLD_NEXT, "freeaddrinfo"))(list);
    }
    while (list != nullptr) {
        addrinfo *next = list->ai_next;
        delete reinterpret_cast<Node *>(list);
        list = next;
    }
}

}  // extern "C"
