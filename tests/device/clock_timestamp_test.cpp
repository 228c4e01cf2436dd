// Wall-clock seconds: the module's own arithmetic against real calendars.
#include <gtest/gtest.h>

#include <cerrno>

#include "device/clock_test_util.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

constexpr int64_t kDay = 86400;
constexpr int64_t kWrap = int64_t{1} << 32;

struct StampCase {
    const char *name;
    const char *zone;
    int year, mon, day, hour, min, sec;  // local calendar time
    int64_t days_ahead;                  // of the same calendar read as UTC
    int64_t wraps;                       // 2^32 subtracted by the 32-bit sum
};

TEST(ClockTimestamp, CountsTheLocalCalendarAsUtcWithTheModulesQuirks) {
    const StampCase cases[] = {
        {"2024-03-01 local in UTC", "UTC0", 2024, 3, 1, 0, 0, 0, 0, 0},
        {"2024-03-01 local east of UTC", "JST-9", 2024, 3, 1, 0, 0, 0, 0, 0},
        {"summer time west of UTC", "EST5EDT,M3.2.0,M11.1.0", 2023, 7, 4, 18, 30, 15, 0, 0},
        {"leap day 2024", "UTC0", 2024, 2, 29, 23, 59, 59, 0, 0},
        {"1991 is a day ahead", "UTC0", 1991, 6, 15, 12, 0, 0, 1, 0},
        {"Jan 1992 still ahead", "UTC0", 1992, 1, 31, 0, 0, 0, 1, 0},
        {"Mar 1992 matches", "UTC0", 1992, 3, 1, 0, 0, 0, 0, 0},
        {"last second before the wrap", "UTC0", 2037, 12, 31, 23, 59, 59, 0, 0},
        {"2040 wraps", "UTC0", 2040, 1, 1, 0, 0, 0, 0, 1},
        {"2100 counted as leap", "UTC0", 2100, 3, 1, 0, 0, 0, 1, 1},
    };
    for (const StampCase &c : cases) {
        nkw::test::use_zone(c.zone);
        nkw::test::freeze_at_local(c.year, c.mon, c.day, c.hour, c.min, c.sec);
        long long stamp = 0;
        ASSERT_EQ(0, nkw_pal_getTimestamp(&stamp)) << c.name;
        const int64_t expected =
            nkw::test::utc_seconds(c.year, c.mon, c.day, c.hour, c.min, c.sec) +
            c.days_ahead * kDay - c.wraps * kWrap;
        EXPECT_EQ(expected, stamp) << c.name;
        EXPECT_TRUE(syslog_contains("Timestamp sec: " + std::to_string(expected) + " seconds\n \n"))
            << c.name;
    }
}

TEST(ClockTimestamp, FailuresOfTheClockAreReported) {
    EXPECT_EQ(7, nkw_pal_getTimestamp(nullptr));
    EXPECT_TRUE(syslog_contains("nkw_pal_getTimestamp:"));
    EXPECT_TRUE(syslog_contains("]-Parameter is NULL \n"));

    // A time no calendar can hold: the local breakdown fails.
    nkw_pal_sandbox_clock_set(int64_t{1} << 62, 0, 0);
    long long stamp = 1234;
    EXPECT_EQ(-1, nkw_pal_getTimestamp(&stamp));
    EXPECT_EQ(1234, stamp);
    EXPECT_TRUE(syslog_contains("]-get localtime error \n"));
    EXPECT_TRUE(syslog_contains("]-Get RTC error \n"));
}

TEST(ClockTimestamp, SettingKeepsTheMicroseconds) {
    nkw_pal_sandbox_clock_set(1000, 123456, 0);
    EXPECT_EQ(0, nkw_pal_setTimestamp(1709251200));
    int64_t sec = 0, usec = 0;
    nkw_pal_sandbox_clock_get(&sec, &usec);
    EXPECT_EQ(1709251200, sec);
    EXPECT_EQ(123456, usec);
    EXPECT_TRUE(syslog_contains("Timestamp has been set to 1709251200\n \n"));

    nkw_pal_sandbox_clock_fail_next(nkw::test::kClockSet, EPERM);
    EXPECT_EQ(802, nkw_pal_setTimestamp(5));
    nkw_pal_sandbox_clock_get(&sec, &usec);
    EXPECT_EQ(1709251200, sec);
    EXPECT_TRUE(syslog_contains("]-set system time error \n"));
}

TEST(ClockTimestamp, DaysBeforeEachMonthTable) {
    const uint16_t month_days[2][12] = {{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
                                        {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}};
    static_assert(sizeof nkw_mon_yday == 2 * 13 * sizeof(uint16_t), "2 x 13 unsigned 16-bit");
    for (int row = 0; row < 2; ++row) {
        EXPECT_EQ(0, nkw_mon_yday[row][0]);
        for (int m = 0; m < 12; ++m) {
            EXPECT_EQ(month_days[row][m], nkw_mon_yday[row][m + 1] - nkw_mon_yday[row][m])
                << "row " << row << " month " << m + 1;
        }
    }
}

}  // namespace
