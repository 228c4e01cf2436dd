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
#include "os/os_test_util.h"
#include "os/resolver_seam.h"

using nkw::test::logged_by;
using nkw::test::resolver_seam;
using nkw::test::syslog_contains;

namespace {

// Closes the descriptor at the end of the test.
struct Fd {
    int fd;
    ~Fd() {
        if (fd >= 0) close(fd);
    }
};

ip_addr address(uint32_t ip_type, const char *text) {
    ip_addr addr{};
    EXPECT_EQ(0, nkw_pal_inet_pton(ip_type, text, &addr)) << text;
    return addr;
}

// The bound name; family and port lie at the same offsets for IPv4.
sockaddr_in6 local_name(int fd) {
    sockaddr_in6 name{};
    socklen_t length = sizeof name;
    getsockname(fd, reinterpret_cast<sockaddr *>(&name), &length);
    return name;
}

TEST(InetText, ConversionsRoundTripAndRefuseBadInput) {
    const struct {
        uint32_t ip_type;
        const char *text;
        int32_t status;
    } cases[] = {{0, "192.168.1.20", 0}, {1, "fe80::1:2", 0}, {0, "::1", -1},
                 {2, "1.2.3.4", -1},     {3, "1.2.3.4", 7},   {0, nullptr, 7}};
    char text[64];
    for (const auto &c : cases) {
        ip_addr addr{};
        ASSERT_EQ(c.status, nkw_pal_inet_pton(c.ip_type, c.text, &addr)) << c.text;
        if (c.status == 0) {
            EXPECT_STREQ(c.text, nkw_pal_inet_ntop(c.ip_type, &addr, text, sizeof text));
        }
    }
    ip_addr addr{};
    EXPECT_EQ(nullptr, nkw_pal_inet_ntop(0, &addr, text, 0));
    EXPECT_TRUE(syslog_contains("ntop switch failed "));
    EXPECT_EQ(nullptr, nkw_pal_inet_ntop(0, &addr, text, -1));
    EXPECT_TRUE(syslog_contains("size num is invalid \n"));
}

TEST(SocketDatagram, LoopbackRoundTripOverIpv4AndIpv6) {
    for (uint32_t ip_type : {IP_TYPE_IPV4, IP_TYPE_IPV6}) {
        Fd receiver{nkw_pal_socket_create(ip_type, 1)}, sender{nkw_pal_socket_create(ip_type, 1)};
        ip_addr loopback = address(ip_type, ip_type == IP_TYPE_IPV4 ? "127.0.0.1" : "::1");
        sockaddr_in6 any6{};
        any6.sin6_family = AF_INET6;
        any6.sin6_addr = in6addr_loopback;
        // The library's bind is IPv4 only, so the IPv6 receiver binds directly.
        ASSERT_EQ(0, ip_type == IP_TYPE_IPV4
                         ? nkw_pal_socket_bind(receiver.fd, &loopback, 0)
                         : bind(receiver.fd, reinterpret_cast<sockaddr *>(&any6), sizeof any6));
        uint16_t port = ntohs(local_name(receiver.fd).sin6_port);
        int32_t type = static_cast<int32_t>(ip_type);
        EXPECT_EQ(5, nkw_pal_socket_sendto(sender.fd, "hello", 5, &loopback, port, type));
        char buf[16] = {};
        ip_addr anyone{};
        EXPECT_EQ(5, nkw_pal_socket_recvfrom(receiver.fd, buf, sizeof buf, &anyone, 0, type));
        EXPECT_STREQ("hello", buf);
    }
}

TEST(SocketStream, BindsAnyAddressAsIpv4AndConnectsOrReportsRefusal) {
    ip_addr loopback = address(IP_TYPE_IPV4, "127.0.0.1");
    ip_addr six = address(IP_TYPE_IPV6, "::1");  // first 4 bytes: 0.0.0.0
    Fd listener{nkw_pal_socket_create(0, 0)}, idle{nkw_pal_socket_create(0, 0)};
    Fd client{nkw_pal_socket_create(0, 0)}, refused{nkw_pal_socket_create(0, 0)};
    Fd v6{nkw_pal_socket_create(IP_TYPE_IPV6, 0)};
    ASSERT_EQ(0, nkw_pal_socket_bind(listener.fd, &six, 0));
    auto name = local_name(listener.fd);
    EXPECT_EQ(AF_INET, name.sin6_family);
    EXPECT_EQ(INADDR_ANY, reinterpret_cast<sockaddr_in *>(&name)->sin_addr.s_addr);
    EXPECT_EQ(-1, nkw_pal_socket_bind(v6.fd, &six, 0));  // an IPv4 address on an IPv6 socket
    EXPECT_TRUE(syslog_contains("bind failed "));

    ASSERT_EQ(0, listen(listener.fd, 1));
    EXPECT_EQ(0, nkw_pal_socket_connect(client.fd, &loopback, ntohs(name.sin6_port), 0));
    ASSERT_EQ(0, nkw_pal_socket_bind(idle.fd, &loopback, 0));  // bound, nobody listening
    uint16_t idle_port = ntohs(local_name(idle.fd).sin6_port);
    EXPECT_EQ(-1, nkw_pal_socket_connect(refused.fd, &loopback, idle_port, 0));
    EXPECT_TRUE(syslog_contains("connect failed Connection refused \n"));
}

TEST(SocketArguments, BadTypesAndMissingPiecesAreRefused) {
    ip_addr addr{};
    char buf[4];
    // Each line is looked for under the name of the call that should log it.
    const struct {
        int32_t status, expected;
        const char *function, *message;
    } cases[] = {
        {nkw_pal_socket_create(3, 0), 7, "create", "ip_type is invalid \n"},  // 7: also an fd
        {nkw_pal_socket_create(0, 2), 7, "create", "sock_type is invalid \n"},
        {nkw_pal_socket_create(IP_TYPE_UNSPEC, 0), -1, "create", "socket create failed "},
        {nkw_pal_socket_connect(-1, &addr, 1, 0), 7, "connect", "fd is invalid param \n"},
        {nkw_pal_socket_connect(0, nullptr, 1, 0), 8, "connect", "ip_addr is NULL \n"},
        {nkw_pal_socket_connect(0, &addr, 1, 2), -1, "connect", "ip is not IPV4 or IPV6 \n"},
        {nkw_pal_socket_bind(0, nullptr, 1), 8, "bind", "ip_addr is NULL \n"},
        {nkw_pal_socket_sendto(0, nullptr, 1, &addr, 1, 0), 8, "sendto",
         "ip_addr is NULL or data is NULL \n"},
        {nkw_pal_socket_sendto(0, "x", 1, &addr, 1, 2), -1, "sendto", "ip is not IPV4 or IPV6 \n"},
        {nkw_pal_socket_sendto(-1, "x", 1, &addr, 1, 0), -1, "sendto", "send failed "},
        {nkw_pal_socket_recvfrom(0, buf, 4, nullptr, 1, 0), 8, "recvfrom",
         "ip_addr is NULL or data is NULL \n"},
        {nkw_pal_socket_recvfrom(0, buf, 4, &addr, 1, 3), -1, "recvfrom",
         "ip is not IPV4 or IPV6 \n"},
        {nkw_pal_socket_recvfrom(-1, buf, 4, &addr, 1, 1), -1, "recvfrom", "recive failed "},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.expected, c.status) << c.message;
        EXPECT_TRUE(logged_by(std::string("nkw_pal_socket_") + c.function, c.message))
            << c.function << ": " << c.message;
    }
}

TEST(Resolve, NumericHostsGoThroughTheCLibraryAndRefuseABadType) {
    addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX] = {};
    ASSERT_EQ(0, nkw_pal_getaddrinfo("::1", nullptr, entries, IP_TYPE_UNSPEC));
    EXPECT_EQ(10, entries[0].family);
    EXPECT_EQ(0, entries[0].port);  // no port asked for
    EXPECT_EQ(0, std::memcmp(address(1, "::1").addr, entries[0].address, 16));
    EXPECT_EQ(8, nkw_pal_getaddrinfo(nullptr, nullptr, entries, 0));
    EXPECT_EQ(8, nkw_pal_getaddrinfo("::1", nullptr, nullptr, 0));
    EXPECT_EQ(1502, nkw_pal_getaddrinfo("::1", nullptr, entries, 3));  // family -1
    EXPECT_TRUE(syslog_contains("DNS resolution failure "));
}

TEST(Resolve, KeepsTheFirstFiveIpResultsInOrder) {
    nkw::test::answer_with({{AF_INET, "10.0.0.1", 53},
                            {AF_INET6, "2001:db8::1", 53},
                            {AF_UNIX, "", 0},  // skipped, not counted
                            {AF_INET, "10.0.0.2", 53},
                            {AF_INET6, "2001:db8::2", 53},
                            {AF_INET, "10.0.0.3", 53},
                            {AF_INET6, "2001:db8::3", 53}});
    addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX];
    std::memset(entries, 0xAA, sizeof entries);
    const uint16_t port = 53;
    ASSERT_EQ(0, nkw_pal_getaddrinfo("six", &port, entries, IP_TYPE_UNSPEC));
    EXPECT_EQ(AI_PASSIVE, resolver_seam.hints.ai_flags);
    EXPECT_EQ(AF_UNSPEC, resolver_seam.hints.ai_family);
    EXPECT_EQ("53", resolver_seam.service);
    const int order[] = {0, 1, 3, 4, 5};
    for (int i = 0; i < NKW_PAL_ADDRINFO_MAX; ++i) {
        const nkw::test::SeamAddress &want = resolver_seam.results[order[i]];
        bool v4 = want.family == AF_INET;
        ip_addr expected = address(v4 ? 0 : 1, want.text);
        EXPECT_EQ(0, std::memcmp(expected.addr, entries[i].address, v4 ? 4 : 16)) << want.text;
        EXPECT_EQ(want.family, entries[i].family);
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
        nkw::test::answer_with(c.answer, c.error);
        addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX] = {};
        EXPECT_EQ(c.status, nkw_pal_getaddrinfo("x", nullptr, entries, 0)) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
        EXPECT_EQ(0, entries[0].family);
    }
}

}  // namespace
