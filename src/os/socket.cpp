// TCP/UDP sockets addressed by (address type, 16-byte address, host-order port).
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/ip_family.h"

namespace {

constexpr const char *kTag = "SOCKET";
constexpr int kSocketType[] = {SOCK_STREAM, SOCK_DGRAM};  // by socket type 0, 1
constexpr size_t kNtopBufferSize = 50;

// Either socket address form, with the length the calls are given.
struct SocketAddress {
    union {
        sockaddr_in v4;
        sockaddr_in6 v6;
    };
    socklen_t length;

    sockaddr *get() { return reinterpret_cast<sockaddr *>(&v4); }
};

SocketAddress ipv4_address(const ip_addr &addr, uint16_t port) {
    SocketAddress address{};
    address.v4.sin_family = AF_INET;
    address.v4.sin_port = htons(port);
    std::memcpy(&address.v4.sin_addr, addr.addr, sizeof address.v4.sin_addr);
    address.length = sizeof address.v4;
    return address;
}

// `copied` is how many leading bytes of the address are used; the rest stay zero.
SocketAddress ipv6_address(const ip_addr &addr, uint16_t port, size_t copied = 16) {
    SocketAddress address{};
    address.v6.sin6_family = AF_INET6;
    address.v6.sin6_port = htons(port);
    std::memcpy(&address.v6.sin6_addr, addr.addr, copied);
    address.length = sizeof address.v6;
    return address;
}

// IPv4 or IPv6 by type; false for any other type (the callers log it, so
// that the line carries their name).
bool address_for(int32_t ip_type, const ip_addr &addr, uint16_t port, SocketAddress *out) {
    if (ip_type == IP_TYPE_IPV4) {
        *out = ipv4_address(addr, port);
        return true;
    }
    if (ip_type == IP_TYPE_IPV6) {
        *out = ipv6_address(addr, port);
        return true;
    }
    return false;
}

}  // namespace

extern "C" {

int32_t nkw_pal_socket_create(uint32_t ip_type, int32_t sock_type) {
    if (!nkw::os::valid_ip_type(ip_type)) {
        NKW_LOGE(kTag, "ip_type is invalid \n");
        return NKW_PAL_INVALID_ARG;
    }
    if (sock_type != 0 && sock_type != 1) {
        NKW_LOGE(kTag, "sock_type is invalid \n");
        return NKW_PAL_INVALID_ARG;
    }
    int fd = socket(nkw::os::family_of(ip_type), kSocketType[sock_type], 0);
    if (fd < 0) {
        NKW_LOGE(kTag, "socket create failed %s \n", strerror(errno));
        return -1;
    }
    NKW_LOGI(kTag, "socket create success \n");
    return fd;
}

int32_t nkw_pal_socket_connect(int32_t fd, const ip_addr *addr, uint16_t port, int32_t ip_type) {
    if (fd < 0) {
        NKW_LOGE(kTag, "fd is invalid param \n");
        return NKW_PAL_INVALID_ARG;
    }
    if (addr == nullptr) {
        NKW_LOGE(kTag, "ip_addr is NULL \n");
        return NKW_PAL_OS_MISSING_ARG;
    }
    SocketAddress address{};
    if (ip_type == IP_TYPE_IPV4) {
        NKW_LOGD(kTag, "IP_TYPE_IPV4 \n");
        address = ipv4_address(*addr, port);
    } else if (ip_type == IP_TYPE_IPV6) {
        NKW_LOGD(kTag, "IP_TYPE_IPV6 \n");
        address = ipv6_address(*addr, port);
    } else {
        NKW_LOGE(kTag, "ip is not IPV4 or IPV6 \n");
        return -1;
    }
    if (connect(fd, address.get(), address.length) != 0) {
        NKW_LOGE(kTag, "connect failed %s \n", strerror(errno));
        return -1;
    }
    return 0;
}

int32_t nkw_pal_socket_bind(int32_t fd, const ip_addr *addr, uint16_t port) {
    if (addr == nullptr) {
        NKW_LOGE(kTag, "ip_addr is NULL \n");
        return NKW_PAL_OS_MISSING_ARG;
    }
    // The family is decided by trying the conversions, IPv4 first. Any 16
    // bytes read as IPv4, so in effect the bind is always IPv4; the IPv6
    // branch, and its 8-byte copy, are kept as existing callers know them.
    char text[kNtopBufferSize] = {};
    SocketAddress address{};
    if (nkw_pal_inet_ntop(IP_TYPE_IPV4, addr, text, sizeof text) != nullptr) {
        address = ipv4_address(*addr, port);
    } else if (nkw_pal_inet_ntop(IP_TYPE_IPV6, addr, text, sizeof text) != nullptr) {
        address = ipv6_address(*addr, port, 8);
    } else {
        NKW_LOGE(kTag, "ip is not IPV4 or IPV6 \n");
        return -1;
    }
    if (bind(fd, address.get(), address.length) != 0) {
        NKW_LOGE(kTag, "bind failed %s \n", strerror(errno));
        return -1;
    }
    return 0;
}

int32_t nkw_pal_socket_sendto(int32_t fd, const void *data, uint32_t len, const ip_addr *addr,
                              uint16_t port, int32_t ip_type) {
    if (addr == nullptr || data == nullptr) {
        NKW_LOGE(kTag, "ip_addr is NULL or data is NULL \n");
        return NKW_PAL_OS_MISSING_ARG;
    }
    SocketAddress address{};
    if (!address_for(ip_type, *addr, port, &address)) {
        NKW_LOGE(kTag, "ip is not IPV4 or IPV6 \n");
        return -1;
    }
    auto sent = static_cast<int32_t>(sendto(fd, data, len, 0, address.get(), address.length));
    if (sent == -1) NKW_LOGE(kTag, "send failed %s \n", strerror(errno));
    return sent;
}

int32_t nkw_pal_socket_recvfrom(int32_t fd, void *buf, uint32_t len, const ip_addr *addr,
                                uint16_t port, int32_t ip_type) {
    if (addr == nullptr || buf == nullptr) {
        NKW_LOGE(kTag, "ip_addr is NULL or data is NULL \n");
        return NKW_PAL_OS_MISSING_ARG;
    }
    // The sender's address lands in this local copy and goes no further.
    SocketAddress address{};
    if (!address_for(ip_type, *addr, port, &address)) {
        NKW_LOGE(kTag, "ip is not IPV4 or IPV6 \n");
        return -1;
    }
    auto received = static_cast<int32_t>(recvfrom(fd, buf, len, 0, address.get(), &address.length));
    if (received == -1) NKW_LOGE(kTag, "recive failed %s \n", strerror(errno));
    return received;
}

}  // extern "C"
