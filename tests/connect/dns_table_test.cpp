// The resolver file operations, including what they refuse to hand to the
// shell.
#include <gtest/gtest.h>

#include <string>

#include "mipc_sim.h"
#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

namespace {

using nkw::test::Sandbox;
using nkw::test::syslog_contains;

constexpr char kResolv[] = "/etc/resolv.conf";

void refresh(std::string a, std::string b) {
    nkw_pal_refresh_dns_table(a.data(), b.data());
}
void add(std::string a, std::string b) {
    nkw_pal_add_dns_table(a.data(), b.data());
}

TEST(DnsTable, AddCreatesTheFileRefreshReplacesItAndAddAppends) {
    const Sandbox &box = Sandbox::current();
    box.write_file("/etc/hostname", "");
    add("203.0.113.1", "203.0.113.2");
    EXPECT_EQ("nameserver 203.0.113.1\nnameserver 203.0.113.2\n", box.read_file(kResolv));
    refresh("192.0.2.53", "2001:DB8::53");
    EXPECT_EQ("nameserver 192.0.2.53\nnameserver 2001:DB8::53\n", box.read_file(kResolv));
    add("::1", "0.0.0.0");
    EXPECT_EQ(
        "nameserver 192.0.2.53\nnameserver 2001:DB8::53\nnameserver ::1\nnameserver 0.0.0.0\n",
        box.read_file(kResolv));
    EXPECT_TRUE(syslog_contains("[connection_manage] begin to refresh dns table \n"));
    EXPECT_TRUE(syslog_contains("[connection_manage] begin to add dns table \n"));
    EXPECT_TRUE(syslog_contains("[connection_manage] set dns table:2001:DB8::53 \n"));
}

TEST(DnsTable, NullServersDoNothingSilently) {
    std::string server = "192.0.2.1";
    nkw_pal_refresh_dns_table(nullptr, server.data());
    nkw_pal_refresh_dns_table(server.data(), nullptr);
    nkw_pal_add_dns_table(nullptr, nullptr);
    EXPECT_FALSE(Sandbox::current().exists(kResolv));
    EXPECT_TRUE(nkw::test::syslog_records().empty());
}

// Each of these would run `ip` (recorded by the sandbox's fake) or rewrite
// the file if it reached the shell.
TEST(DnsTable, HostileServerTextRunsNoCommandAndLeavesTheFileAlone) {
    const std::string hostile[] = {
        "192.0.2.1' > /dev/null; ip link set pwned; echo '",
        "$(ip link set pwned)",
        "`ip link set pwned`",
        "192.0.2.1;ip",
        "192.0.2.1 192.0.2.2",
        "192.0.2.1\nip link set pwned",
        "192.0.2.1|ip",
        "2001:db8::1%eth0",
        "",
        std::string(46, '1'),
    };
    const Sandbox &box = Sandbox::current();
    box.write_file(kResolv, "nameserver 203.0.113.1\n");
    for (const std::string &text : hostile) {
        SCOPED_TRACE(text);
        nkw::test::syslog_clear();
        refresh(text, "192.0.2.9");
        add("192.0.2.9", text);
        EXPECT_EQ(
            2u, nkw::test::syslog_matching("[connection_manage] refused dns server text:").size());
        EXPECT_FALSE(syslog_contains("set dns table"));
    }
    EXPECT_TRUE(box.commands().empty());
    EXPECT_EQ("nameserver 203.0.113.1\n", box.read_file(kResolv));
}

TEST(DnsTable, AnUnopenableFileEndsTheOperationBeforeTheShell) {
    const Sandbox &box = Sandbox::current();
    box.write_file("/etc/resolv.conf/blocker", "");  // a directory cannot be opened read-write
    refresh("192.0.2.1", "192.0.2.2");
    EXPECT_TRUE(
        syslog_contains("[connection_manage] fatal error!!!, open file failed, fp:-1\n \n"));
    EXPECT_FALSE(syslog_contains("set dns table"));
}

TEST(PdpType, StartsAsIpv4) {
    EXPECT_EQ(1, nkw_pal_get_pdp_ip_type());
    EXPECT_EQ(1, pdp_ip_type);
}

}  // namespace
