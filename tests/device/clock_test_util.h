// The test clock and time zone the library reads in device tests.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <ctime>

extern "C" {
void nkw_pal_sandbox_clock_set(int64_t sec, int64_t usec, int running);
void nkw_pal_sandbox_clock_get(int64_t *sec, int64_t *usec);
void nkw_pal_sandbox_uptime_set(int64_t sec, int64_t nsec);
void nkw_pal_sandbox_clock_fail_next(int which, int err);
}

namespace nkw::test {

enum ClockCall { kClockGet = 0, kClockSet = 1, kClockMonotonic = 2 };

// POSIX zone rules need no zone files: "UTC0", "JST-9", "EST5EDT,M3.2.0,M11.1.0".
inline void use_zone(const char *zone) {
    setenv("TZ", zone, 1);
    tzset();
}

inline tm calendar(int year, int mon, int day, int hour, int min, int sec) {
    tm t{};
    t.tm_year = year - 1900;
    t.tm_mon = mon - 1;
    t.tm_mday = day;
    t.tm_hour = hour;
    t.tm_min = min;
    t.tm_sec = sec;
    t.tm_isdst = -1;
    return t;
}

// Seconds since 1970 of a calendar date read as UTC.
inline int64_t utc_seconds(int year, int mon, int day, int hour = 0, int min = 0, int sec = 0) {
    tm t = calendar(year, mon, day, hour, min, sec);
    return static_cast<int64_t>(timegm(&t));
}

// Freezes the test clock at the instant that is this local date in the current zone.
inline void freeze_at_local(int year, int mon, int day, int hour = 0, int min = 0, int sec = 0) {
    tm t = calendar(year, mon, day, hour, min, sec);
    nkw_pal_sandbox_clock_set(static_cast<int64_t>(mktime(&t)), 0, 0);
}

}  // namespace nkw::test
