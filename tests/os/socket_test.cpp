// Sockets on the loopback interface, address text conversions and name
// resolution (numeric hosts and the resolver seam; no network needed).
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "nkw_pal.h"
#include "os/resolver_seam.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

// Closes the descriptor at the end of the test.
struct Fd {
    int fd;
    ~Fd() {
        if (fd >= 0)
            close(fd);
    }
};

ip_addr address(uint32_t ip_type, const char *text) {
    ip_addr addr{};
    EXPECT_EQ(0, nkw_pal_inet_pton(ip_type, text, &addr)) << text;
    return addr;
}

sockaddr_in6 local_name(int fd) {
    sockaddr_in6 name{};
    socklen_t length = sizeof name;
    getsockname(fd, reinterpret_cast<sockaddr *>(&name), &length);
    return name;
}

uint16_t bound_port(int fd) {
    return ntohs(local_name(fd).sin6_port);
}  // same offset in v4

TEST(SocketCreate, TypesMapToFamiliesAndBadTypesGive7) {
    const struct {
        uint32_t ip_type;
        int32_t sock_type;
        int family, type;  // 0: a status is expected instead
        int32_t status;
        const char *message;
    } cases[] = {
        {0, 0, AF_INET, SOCK_STREAM, 0, "socket create success \n"},
        {1, 1, AF_INET6, SOCK_DGRAM, 0, "socket create success \n"},
        {3, 0, 0, 0, 7, "ip_type is invalid \n"},
        {0, 2, 0, 0, 7, "sock_type is invalid \n"},
        {0, -1, 0, 0, 7, "sock_type is invalid \n"},
        {IP_TYPE_UNSPEC, 0, 0, 0, -1, "socket create failed "},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        Fd s{nkw_pal_socket_create(c.ip_type, c.sock_type)};
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
        if (c.family == 0) {
            EXPECT_EQ(c.status, s.fd) << c.message;
            s.fd = -1;
            continue;
        }
        int family = 0, type = 0;
        socklen_t size = sizeof family;
        getsockopt(s.fd, SOL_SOCKET, SO_DOMAIN, &family, &size);
        getsockopt(s.fd, SOL_SOCKET, SO_TYPE, &type, &size);
        EXPECT_EQ(c.family, family);
        EXPECT_EQ(c.type, type);
    }
}

TEST(InetText, ConversionsRoundTripAndRefuseBadInput) {
    const struct {
        uint32_t ip_type;
        const char *text;
        int32_t status;
    } cases[] = {{0, "192.168.1.20", 0}, {1, "fe80::1:2", 0}, {0, "::1", -1},
                 {0, "300.1.1.1", -1},   {2, "1.2.3.4", -1},  {3, "1.2.3.4", 7}};
    for (const auto &c : cases) {
        ip_addr addr{};
        ASSERT_EQ(c.status, nkw_pal_inet_pton(c.ip_type, c.text, &addr)) << c.text;
        if (c.status != 0)
            continue;
        char text[64];
        EXPECT_STREQ(c.text, nkw_pal_inet_ntop(c.ip_type, &addr, text, sizeof text));
    }
    ip_addr addr{};
    char text[64];
    EXPECT_EQ(7, nkw_pal_inet_pton(0, nullptr, &addr));
    EXPECT_EQ(nullptr, nkw_pal_inet_ntop(0, &addr, text, 0));
    EXPECT_TRUE(syslog_contains("ntop switch failed "));
    EXPECT_EQ(nullptr, nkw_pal_inet_ntop(0, &addr, text, -1));
    EXPECT_TRUE(syslog_contains("size num is invalid \n"));
    EXPECT_EQ(nullptr, nkw_pal_inet_ntop(3, &addr, text, 64));
    EXPECT_EQ(nullptr, nkw_pal_inet_ntop(0, nullptr, text, 64));
}

TEST(SocketDatagram, LoopbackRoundTripOverIpv4AndIpv6) {
    const struct {
        uint32_t ip_type;
        const char *loopback;
    } cases[] = {{IP_TYPE_IPV4, "127.0.0.1"}, {IP_TYPE_IPV6, "::1"}};
    for (const auto &c : cases) {
        Fd receiver{nkw_pal_socket_create(c.ip_type, 1)},
            sender{nkw_pal_socket_create(c.ip_type, 1)};
        ip_addr loopback = address(c.ip_type, c.loopback);
        sockaddr_in6 any6{};
        any6.sin6_family = AF_INET6;
        any6.sin6_addr = in6addr_loopback;
        // The library's bind is IPv4 only, so the IPv6 receiver binds directly.
        ASSERT_EQ(0, c.ip_type == IP_TYPE_IPV4
                         ? nkw_pal_socket_bind(receiver.fd, &loopback, 0)
                         : bind(receiver.fd, reinterpret_cast<sockaddr *>(&any6), sizeof any6));
        uint16_t port = bound_port(receiver.fd);
        int32_t ip_type = static_cast<int32_t>(c.ip_type);
        EXPECT_EQ(5, nkw_pal_socket_sendto(sender.fd, "hello", 5, &loopback, port, ip_type));
        char buf[16] = {};
        ip_addr anyone{};
        EXPECT_EQ(5, nkw_pal_socket_recvfrom(receiver.fd, buf, sizeof buf, &anyone, 0, ip_type));
        EXPECT_STREQ("hello", buf);
    }
}

TEST(SocketStream, ConnectsToALoopbackListenerAndReportsRefusal) {
    ip_addr loopback = address(IP_TYPE_IPV4, "127.0.0.1");
    Fd listener{nkw_pal_socket_create(0, 0)}, idle{nkw_pal_socket_create(0, 0)};
    Fd client{nkw_pal_socket_create(0, 0)}, refused{nkw_pal_socket_create(0, 0)};
    ASSERT_EQ(0, nkw_pal_socket_bind(listener.fd, &loopback, 0));
    ASSERT_EQ(0, listen(listener.fd, 1));
    EXPECT_EQ(0, nkw_pal_socket_connect(client.fd, &loopback, bound_port(listener.fd), 0));
    ASSERT_EQ(0, nkw_pal_socket_bind(idle.fd, &loopback, 0));  // bound, nobody listening
    EXPECT_EQ(-1, nkw_pal_socket_connect(refused.fd, &loopback, bound_port(idle.fd), 0));
    EXPECT_TRUE(syslog_contains("connect failed Connection refused \n"));
}

TEST(SocketBind, AnyAddressIsBoundAsIpv4FromItsFirstFourBytes) {
    Fd v4{nkw_pal_socket_create(IP_TYPE_IPV4, 1)}, v6{nkw_pal_socket_create(IP_TYPE_IPV6, 1)};
    ip_addr six = address(IP_TYPE_IPV6, "::1");  // first 4 bytes: 0.0.0.0
    ASSERT_EQ(0, nkw_pal_socket_bind(v4.fd, &six, 0));
    auto name = local_name(v4.fd);
    EXPECT_EQ(AF_INET, name.sin6_family);
    EXPECT_EQ(INADDR_ANY, reinterpret_cast<sockaddr_in *>(&name)->sin_addr.s_addr);
    EXPECT_EQ(-1, nkw_pal_socket_bind(v6.fd, &six, 0));  // an IPv4 address on an IPv6 socket
    EXPECT_TRUE(syslog_contains("bind failed "));
}

TEST(SocketArguments, MissingPiecesAndUnknownTypesAreRefused) {
    ip_addr addr{};
    char buf[4];
    const struct {
        int32_t status, expected;
        const char *message;
    } cases[] = {
        {nkw_pal_socket_connect(-1, &addr, 1, 0), 7, "fd is invalid param \n"},
        {nkw_pal_socket_connect(0, nullptr, 1, 0), 8, "ip_addr is NULL \n"},
        {nkw_pal_socket_connect(0, &addr, 1, 2), -1, "ip is not IPV4 or IPV6 \n"},
        {nkw_pal_socket_bind(0, nullptr, 1), 8, "ip_addr is NULL \n"},
        {nkw_pal_socket_sendto(0, nullptr, 1, &addr, 1, 0), 8,
         "ip_addr is NULL or data is NULL \n"},
        {nkw_pal_socket_sendto(0, "x", 1, &addr, 1, 2), -1, "ip is not IPV4 or IPV6 \n"},
        {nkw_pal_socket_sendto(-1, "x", 1, &addr, 1, 0), -1, "send failed "},
        {nkw_pal_socket_recvfrom(0, buf, 4, nullptr, 1, 0), 8,
         "ip_addr is NULL or data is NULL \n"},
        {nkw_pal_socket_recvfrom(0, buf, 4, &addr, 1, 3), -1, "ip is not IPV4 or IPV6 \n"},
        {nkw_pal_socket_recvfrom(-1, buf, 4, &addr, 1, 1), -1, "recive failed "},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.expected, c.status) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
    }
}

TEST(Resolve, NumericHostsFillEntriesWithPortAndFamily) {
    const uint16_t port = 8080;
    const struct {
        const char *host;
        const uint16_t *port;
        uint8_t family;
        uint16_t expected_port;
    } cases[] = {{"127.0.0.1", &port, 2, 8080}, {"::1", nullptr, 10, 0}};
    for (const auto &c : cases) {
        addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX] = {};
        ASSERT_EQ(0, nkw_pal_getaddrinfo(c.host, c.port, entries, IP_TYPE_UNSPEC)) << c.host;
        EXPECT_EQ(c.family, entries[0].family);
        EXPECT_EQ(c.expected_port, entries[0].port);
        char text[64];
        EXPECT_STREQ(c.host, nkw_pal_inet_ntop(c.family == 2 ? 0 : 1,
                                               reinterpret_cast<ip_addr *>(entries[0].address),
                                               text, sizeof text));
    }
    addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX] = {};
    EXPECT_EQ(8, nkw_pal_getaddrinfo(nullptr, nullptr, entries, 0));
    EXPECT_EQ(8, nkw_pal_getaddrinfo("127.0.0.1", nullptr, nullptr, 0));
    EXPECT_EQ(1502, nkw_pal_getaddrinfo("127.0.0.1", nullptr, entries, 3));  // family -1
    EXPECT_TRUE(syslog_contains("DNS resolution failure "));
}

TEST(Resolve, KeepsTheFirstFiveIpResultsInOrder) {
    using nkw::test::SeamAddress;
    nkw::test::set_resolver_answer({{AF_INET, "10.0.0.1", 53},
                                    {AF_INET6, "2001:db8::1", 53},
                                    {AF_UNIX, "", 0},  // skipped, not counted
                                    {AF_INET, "10.0.0.2", 53},
                                    {AF_INET6, "2001:db8::2", 53},
                                    {AF_INET, "10.0.0.3", 53},
                                    {AF_INET6, "2001:db8::3", 53}});
    addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX];
    std::memset(entries, 0xAA, sizeof entries);
    const uint16_t port = 53;
    ASSERT_EQ(0, nkw_pal_getaddrinfo("six.seam.test", &port, entries, IP_TYPE_UNSPEC));
    EXPECT_EQ(AI_PASSIVE, nkw::test::last_resolver_hints().ai_flags);
    EXPECT_EQ(AF_UNSPEC, nkw::test::last_resolver_hints().ai_family);
    EXPECT_EQ("53", nkw::test::last_resolver_service());
    const char *expected[] = {"10.0.0.1", "2001:db8::1", "10.0.0.2", "2001:db8::2", "10.0.0.3"};
    for (int i = 0; i < NKW_PAL_ADDRINFO_MAX; ++i) {
        bool v4 = std::strchr(expected[i], ':') == nullptr;
        char text[64];
        EXPECT_STREQ(expected[i],
                     nkw_pal_inet_ntop(v4 ? 0 : 1, reinterpret_cast<ip_addr *>(entries[i].address),
                                       text, sizeof text));
        EXPECT_EQ(v4 ? 2 : 10, entries[i].family);
        EXPECT_EQ(53, entries[i].port);
        if (v4) {
            EXPECT_EQ(0xAA, entries[i].address[4]) << "bytes past IPv4 left as they were";
        }
    }
}

TEST(Resolve, EmptyOrNonIpAnswersAreFailures) {
    const struct {
        std::vector<nkw::test::SeamAddress> answer;
        int error;
        int32_t status;
        const char *message;
    } cases[] = {
        {{}, 0, 1502, "getaddrinfo result is NULL \n"},
        {{}, EAI_NONAME, 1502, "DNS resolution failure "},
        {{{AF_UNIX, "", 0}}, 0, 1503, "IP ontaining failure \n"},
    };
    for (const auto &c : cases) {
        nkw::test::set_resolver_answer(c.answer, c.error);
        addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX] = {};
        EXPECT_EQ(c.status, nkw_pal_getaddrinfo("x.seam.test", nullptr, entries, 0)) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
        EXPECT_EQ(0, entries[0].family);
    }
}

}  // namespace
