// time: the wall clock, uptime and the modem's time; the clock is set only
// by the explicit `time set`.
#include <nkw_pal.h>

#include <cstdio>

#include "commands.h"

namespace nkwctl {

namespace time_group {
namespace {

constexpr uint32_t kNoTicks = 0xFFFFFFFF;

std::string when;
long long seconds = -1;

std::string local_text(const rtc &t) {
    char text[32];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u", unsigned{t.year},
                  unsigned{t.mon}, unsigned{t.day}, unsigned{t.hour}, unsigned{t.min},
                  unsigned{t.sec});
    return text;
}

// The wall clock as the library reads it; false (reported) when it cannot.
bool add_clock(Report &report) {
    rtc now = {};
    const int32_t status = nkw_pal_getRTC(&now);
    if (status != 0) return fail("time", status, "the local time could not be read") == 0;
    long long stamp = 0;
    const int32_t stamped = nkw_pal_getTimestamp(&stamp);
    if (stamped != 0) return fail("time", stamped, "the timestamp could not be read") == 0;
    report.text("time.local", local_text(now));
    report.number("time.weekday", now.wday);
    report.number("time.timestamp", stamp);
    return true;
}

int show(const Options &options) {
    Report report;
    if (!add_clock(report)) return 1;
    report.number("time.uptime", nkw_pal_getSysSec());
    const uint32_t ticks = nkw_pal_getSysTicks();
    report.number("time.ticks", ticks == kNoTicks ? -1 : int64_t{ticks});
    report.number("time.modem", nkw_pal_get_sys_time());
    report.print(options);
    return 0;
}

// "YYYY-MM-DD hh:mm:ss" into the library's broken-down time.
bool parse_local(const std::string &text, rtc *t) {
    unsigned year = 0, mon = 0, day = 0, hour = 0, min = 0, sec = 0;
    char end = '\0';
    if (std::sscanf(text.c_str(), "%4u-%2u-%2u %2u:%2u:%2u%c", &year, &mon, &day, &hour, &min, &sec,
                    &end) != 6)
        return false;
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (year < 1970 || year > 9999 || mon < 1 || mon > 12 || hour > 23 || min > 59 || sec > 59)
        return false;
    // The library's own month table: a day past the month's end is refused,
    // not rolled into the next month.
    if (day < 1 || day > unsigned{nkw_mon_yday[leap][mon]} - nkw_mon_yday[leap][mon - 1])
        return false;
    *t = rtc{static_cast<uint8_t>(sec),
             static_cast<uint8_t>(min),
             static_cast<uint8_t>(hour),
             static_cast<uint8_t>(day),
             static_cast<uint8_t>(mon),
             static_cast<uint16_t>(year),
             0};
    return true;
}

// Sets the clock, then shows it as it now reads.
int set(const Options &options) {
    int32_t status = 0;
    if (seconds >= 0) {
        status = nkw_pal_setTimestamp(static_cast<long>(seconds));
    } else {
        rtc t = {};
        if (!parse_local(when, &t))
            return fail("time set", NKW_PAL_INVALID_ARG, "expected \"YYYY-MM-DD hh:mm:ss\"");
        status = nkw_pal_setRTC(&t);
    }
    if (status != 0) return fail("time set", status, "the system clock was not set");
    Report report;
    if (!add_clock(report)) return 1;
    report.print(options);
    return 0;
}

}  // namespace
}  // namespace time_group

void add_time(CLI::App &app, Action &action) {
    using namespace time_group;
    auto *time = app.add_subcommand("time", "local time, uptime and the modem's time");
    time->callback([&action] {
        if (!action.run) action.run = show;
    });
    auto *setter = time->add_subcommand("set", "set the system clock (local time or --timestamp)");
    auto *local = setter->add_option("TIME", when, "\"YYYY-MM-DD hh:mm:ss\", local time");
    setter->add_option("--timestamp", seconds, "seconds since 1970")
        ->check(CLI::NonNegativeNumber)
        ->excludes(local);
    setter->callback([&action] {
        action.run = set;
        action.needs_modem = false;
    });
}

}  // namespace nkwctl
