#include "os/resolver_seam.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/un.h>

#include <cstring>
#include <mutex>

namespace nkw::test {
namespace {

constexpr const char *kSeamSuffix = ".seam.test";

struct Seam {
    std::mutex lock;
    std::vector<SeamAddress> results;
    int error = 0;
    addrinfo hints{};
    std::string service;
    std::vector<addrinfo *> handed_out;  // lists freeaddrinfo must free here
};

Seam &seam() {
    static Seam instance;
    return instance;
}

bool is_seam_name(const char *host) {
    size_t length = host != nullptr ? std::strlen(host) : 0;
    size_t suffix = std::strlen(kSeamSuffix);
    return length > suffix && std::strcmp(host + length - suffix, kSeamSuffix) == 0;
}

// One result node holding its own socket address; freed by the seam.
struct Node {
    addrinfo info;
    sockaddr_storage address;
};

addrinfo *build(const SeamAddress &a) {
    auto *node = new Node{};
    node->info.ai_family = a.family;
    node->info.ai_addr = reinterpret_cast<sockaddr *>(&node->address);
    if (a.family == AF_INET6) {
        auto *in6 = reinterpret_cast<sockaddr_in6 *>(&node->address);
        in6->sin6_family = AF_INET6;
        in6->sin6_port = htons(a.port);
        inet_pton(AF_INET6, a.text.c_str(), &in6->sin6_addr);
        node->info.ai_addrlen = sizeof *in6;
    } else if (a.family == AF_INET) {
        auto *in = reinterpret_cast<sockaddr_in *>(&node->address);
        in->sin_family = AF_INET;
        in->sin_port = htons(a.port);
        inet_pton(AF_INET, a.text.c_str(), &in->sin_addr);
        node->info.ai_addrlen = sizeof *in;
    } else {
        node->address.ss_family = static_cast<sa_family_t>(a.family);
        node->info.ai_addrlen = sizeof(sockaddr_un);
    }
    return &node->info;
}

}  // namespace

void set_resolver_answer(std::vector<SeamAddress> results, int error) {
    std::lock_guard<std::mutex> guard(seam().lock);
    seam().results = std::move(results);
    seam().error = error;
}

addrinfo last_resolver_hints() {
    std::lock_guard<std::mutex> guard(seam().lock);
    return seam().hints;
}

std::string last_resolver_service() {
    std::lock_guard<std::mutex> guard(seam().lock);
    return seam().service;
}

}  // namespace nkw::test

extern "C" {

int getaddrinfo(const char *host, const char *service, const addrinfo *hints, addrinfo **out) {
    using nkw::test::seam;
    if (!nkw::test::is_seam_name(host)) {
        using Real = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
        return reinterpret_cast<Real>(dlsym(RTLD_NEXT, "getaddrinfo"))(host, service, hints, out);
    }
    std::lock_guard<std::mutex> guard(seam().lock);
    seam().hints = hints != nullptr ? *hints : addrinfo{};
    seam().service = service != nullptr ? service : "(none)";
    *out = nullptr;
    if (seam().error != 0)
        return seam().error;
    addrinfo **tail = out;
    for (const nkw::test::SeamAddress &a : seam().results) {
        *tail = nkw::test::build(a);
        tail = &(*tail)->ai_next;
    }
    if (*out != nullptr)
        seam().handed_out.push_back(*out);
    return 0;
}

void freeaddrinfo(addrinfo *list) {
    using nkw::test::seam;
    {
        std::lock_guard<std::mutex> guard(seam().lock);
        auto &lists = seam().handed_out;
        for (auto it = lists.begin(); it != lists.end(); ++it) {
            if (*it != list)
                continue;
            lists.erase(it);
            while (list != nullptr) {
                addrinfo *next = list->ai_next;
                delete reinterpret_cast<nkw::test::Node *>(list);
                list = next;
            }
            return;
        }
    }
    using Real = void (*)(addrinfo *);
    reinterpret_cast<Real>(dlsym(RTLD_NEXT, "freeaddrinfo"))(list);
}

}  // extern "C"
