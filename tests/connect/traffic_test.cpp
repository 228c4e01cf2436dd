// Traffic counters read from the interface's sysfs statistics.
#include <gtest/gtest.h>

#include <string>

#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

namespace {

using nkw::test::Sandbox;
using nkw::test::syslog_contains;

std::string counter(const std::string &ifname, const char *which) {
    return "/sys/devices/virtual/net/" + ifname + "/statistics/" + which;
}

TEST(Traffic, CountersAreReadAsDecimalTextOf32Bits) {
    struct Case {
        std::string rx_text, tx_text;
        uint32_t rx, tx;
    };
    const Case cases[] = {
        {"1234\n", "99\n", 1234, 99},
        {"", "7", 0, 7},                                   // an empty counter reads as 0
        {"4294967295\n", "4294967296\n", 4294967295u, 0},  // past 4 GiB it wraps
        {std::string(30, '0') + "123", "5", 0, 5},         // only 30 bytes are read
    };
    const Sandbox &box = Sandbox::current();
    for (const Case &c : cases) {
        SCOPED_TRACE(c.rx_text);
        box.write_file(counter("ccmni0", "rx_bytes"), c.rx_text);
        box.write_file(counter("ccmni0", "tx_bytes"), c.tx_text);
        uint32_t rx = 1;
        uint32_t tx = 1;
        ASSERT_EQ(0, nkw_pal_get_traffic_by_interface_name("ccmni0", &tx, &rx));
        EXPECT_EQ(c.rx, rx);
        EXPECT_EQ(c.tx, tx);
    }
    EXPECT_TRUE(syslog_contains(
        "[TRAFFIC]: path url: /sys/devices/virtual/net/ccmni0/statistics/rx_bytes \n"));
}

TEST(Traffic, FailuresLeaveWhatWasNotReadUntouched) {
    const Sandbox &box = Sandbox::current();
    const std::string long_name(80, 'x');
    box.write_file(counter("half", "rx_bytes"), "42");
    struct Case {
        const char *ifname;
        bool null_output;
        std::string line;
        uint32_t rx_after;
    };
    const Case cases[] = {
        {nullptr, false, "[TRAFFIC]: invalid param! \n", 7},
        {"ccmni0", true, "[TRAFFIC]: invalid param! \n", 7},
        {"missing", false, "[TRAFFIC]:open fd failed \n", 7},
        {long_name.c_str(), false, "[TRAFFIC]: interface name too long: " + long_name, 7},
        {"half", false, "[TRAFFIC]:open fd2 failed \n", 42},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.line);
        uint32_t rx = 7;
        uint32_t tx = 7;
        EXPECT_EQ(-1, nkw_pal_get_traffic_by_interface_name(c.ifname, c.null_output ? nullptr : &tx,
                                                            &rx));
        EXPECT_EQ(c.rx_after, rx);
        EXPECT_EQ(7u, tx);
        EXPECT_TRUE(syslog_contains(c.line));
    }
}

}  // namespace
