// Broken-down local time, uptime, the modem's time and the time text.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "device/clock_test_util.h"
#include "mipc_sim.h"
#include "mipc_sim_time.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

struct RtcCase {
    const char *zone;
    rtc local;
    int64_t utc;  // the instant the clock is set to
    rtc back;     // what reading it gives
};

bool same_fields(const rtc &a, const rtc &b) {
    return a.sec == b.sec && a.min == b.min && a.hour == b.hour && a.day == b.day &&
           a.mon == b.mon && a.year == b.year && a.wday == b.wday;
}

TEST(ClockRtc, SetsAndReadsLocalTime) {
    static_assert(sizeof(rtc) == 10, "10 bytes with its alignment");
    const RtcCase cases[] = {
        // sec min hour day mon year wday
        {"UTC0", {0, 0, 0, 1, 3, 2024, 5}, 1709251200, {0, 0, 0, 1, 3, 2024, 5}},
        {"JST-9", {0, 0, 9, 1, 3, 2024, 5}, 1709251200, {0, 0, 9, 1, 3, 2024, 5}},
        {"EST5EDT,M3.2.0,M11.1.0",
         {59, 59, 23, 31, 12, 1999, 5},
         946702799,
         {59, 59, 23, 31, 12, 1999, 5}},
        // The record carries no summer-time flag, so the time is taken as
        // standard time and reads back an hour later.
        {"EST5EDT,M3.2.0,M11.1.0",
         {30, 15, 10, 4, 7, 2023, 2},
         1688483730,
         {30, 15, 11, 4, 7, 2023, 2}},
    };
    for (const RtcCase &c : cases) {
        nkw::test::use_zone(c.zone);
        nkw_pal_sandbox_clock_set(7, 654321, 0);
        ASSERT_EQ(0, nkw_pal_setRTC(&c.local)) << c.zone;
        int64_t sec = 0, usec = 0;
        nkw_pal_sandbox_clock_get(&sec, &usec);
        EXPECT_EQ(c.utc, sec) << c.zone;
        EXPECT_EQ(0, usec) << c.zone;

        rtc back;
        std::memset(&back, 0xAA, sizeof back);
        ASSERT_EQ(0, nkw_pal_getRTC(&back));
        EXPECT_TRUE(same_fields(c.back, back)) << c.zone << " hour " << int{back.hour};
    }
    EXPECT_TRUE(syslog_contains("]-RTC set successfully \n"));
    EXPECT_TRUE(syslog_contains("]-RTC: 2023-07-04 11:15:30\n \n"));
}

TEST(ClockRtc, NullRecordsAndClockFailures) {
    EXPECT_EQ(7, nkw_pal_setRTC(nullptr));
    EXPECT_EQ(7, nkw_pal_getRTC(nullptr));
    EXPECT_EQ(2u, nkw::test::syslog_matching("]-Parameter is NULL \n").size());

    nkw::test::use_zone("UTC0");
    nkw_pal_sandbox_clock_set(100, 0, 0);
    const rtc when = {0, 0, 0, 1, 3, 2024, 5};
    nkw_pal_sandbox_clock_fail_next(nkw::test::kClockSet, EPERM);
    EXPECT_EQ(802, nkw_pal_setRTC(&when));
    EXPECT_TRUE(syslog_contains("]-Set system time error \n"));
    int64_t sec = 0, usec = 0;
    nkw_pal_sandbox_clock_get(&sec, &usec);
    EXPECT_EQ(100, sec);
}

TEST(ClockUptime, TicksAreSecondsDividedByTheTickRate) {
    const long rate = sysconf(_SC_CLK_TCK);
    ASSERT_GT(rate, 1);
    const int64_t uptimes[] = {0, rate - 1, rate, 7 * rate + 3, 4000000};
    for (int64_t uptime : uptimes) {
        nkw_pal_sandbox_uptime_set(uptime, 999999999);
        EXPECT_EQ(static_cast<uint32_t>(uptime / rate), nkw_pal_getSysTicks()) << uptime;
        EXPECT_EQ(uptime, nkw_pal_getSysSec()) << uptime;
    }
    EXPECT_TRUE(syslog_contains("]-System uptime sec: 4000000 seconds\n \n"));

    nkw_pal_sandbox_clock_fail_next(nkw::test::kClockMonotonic, EINVAL);
    EXPECT_EQ(0xFFFFFFFFu, nkw_pal_getSysTicks());
    nkw_pal_sandbox_clock_fail_next(nkw::test::kClockMonotonic, EINVAL);
    EXPECT_EQ(-1, nkw_pal_getSysSec());
    EXPECT_EQ(2u, nkw::test::syslog_matching("]-Failed to get clock time \n").size());
}

TEST(ClockModemTime, ModemMillisecondsOrTheUptime) {
    nkw_pal_sandbox_uptime_set(4242, 0);
    mipc_sim::set_modem_time({1709251200999, 60, 0, 1});
    EXPECT_EQ(1709251200u, nkw_pal_get_sys_time());
    // The record's own result code is not judged.
    mipc_sim::fail_next("mipc_sys_time_get_sync", mipc_sim::result_code(5));
    EXPECT_EQ(1709251200u, nkw_pal_get_sys_time());
    EXPECT_TRUE(syslog_contains("]-[platform] sys_time:"));

    mipc_sim::fail_next("mipc_sys_time_get_sync", mipc_sim::return_value(MIPC_RESULT_TIMEOUT));
    EXPECT_EQ(4242u, nkw_pal_get_sys_time());
    EXPECT_TRUE(syslog_contains("]-[platform] linux_time:4242 \n"));

    for (const mipc_sim::Call &call : mipc_sim::calls_to("mipc_sys_time_get_sync")) {
        EXPECT_EQ(MIPC_PS_ALL, call.ps_id);
    }
}

TEST(ClockTimeText, LocalTimeIn80Bytes) {
    struct {
        const char *zone;
        long stamp;
        const char *text;
    } const cases[] = {
        {"UTC0", 0, "1970-01-01 00:00:00"},
        {"JST-9", 1709251200, "2024-03-01 09:00:00"},
        {"EST5EDT,M3.2.0,M11.1.0", 1688480130, "2023-07-04 10:15:30"},
    };
    for (const auto &c : cases) {
        nkw::test::use_zone(c.zone);
        char out[NKW_PAL_TIME_STR_SIZE + 8];
        std::memset(out, '#', sizeof out);
        EXPECT_EQ(0, nkw_pal_TimeStamp2TimeStr(c.stamp, out));
        const std::string expected =
            std::string(c.text) + std::string(NKW_PAL_TIME_STR_SIZE - std::strlen(c.text), '\0') +
            std::string(8, '#');
        EXPECT_EQ(expected, std::string(out, sizeof out)) << c.zone;
        EXPECT_TRUE(syslog_contains(std::string("]-test time:  ") + c.text + "\n \n"));
    }
    EXPECT_EQ(0, nkw_pal_TimeStamp2TimeStr(0, nullptr));
    EXPECT_TRUE(syslog_contains("]-output buffer is null \n"));
}

}  // namespace
