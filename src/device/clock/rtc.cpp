// The wall clock as a broken-down local time.
#include <cstring>
#include <ctime>

#include "diag/log.h"
#include "host/clock.h"
#include "nkw_pal/device.h"

extern "C" {

int32_t nkw_pal_setRTC(const rtc *t) {
    if (t == nullptr) {
        NKW_LOGE("SYS", "Parameter is NULL \n");
        return NKW_PAL_INVALID_ARG;
    }
    tm calendar;
    std::memset(&calendar, 0, sizeof calendar);
    calendar.tm_year = t->year - 1900;
    calendar.tm_mon = t->mon - 1;
    calendar.tm_mday = t->day;
    calendar.tm_hour = t->hour;
    calendar.tm_min = t->min;
    calendar.tm_sec = t->sec;
    calendar.tm_wday = t->wday;
    timeval to{};
    to.tv_sec = mktime(&calendar);
    to.tv_usec = 0;
    if (nkw::host::clock::set_time_of_day(&to) != 0) {
        NKW_LOGE("SYS", "Set system time error \n");
        return NKW_PAL_CLOCK_SET_FAILED;
    }
    NKW_LOGI("SYS", "RTC set successfully \n");
    return NKW_PAL_OK;
}

int32_t nkw_pal_getRTC(rtc *t) {
    if (t == nullptr) {
        NKW_LOGE("SYS", "Parameter is NULL \n");
        return NKW_PAL_INVALID_ARG;
    }
    timeval now{};
    tm local;
    std::memset(&local, 0, sizeof local);
    time_t seconds = 0;
    if (nkw::host::clock::get_time_of_day(&now) == 0) seconds = now.tv_sec;
    if (localtime_r(&seconds, &local) == nullptr) {
        NKW_LOGE("SYS", "get localtime error \n");
        return NKW_PAL_CLOCK_GET_FAILED;
    }
    t->sec = static_cast<uint8_t>(local.tm_sec);
    t->min = static_cast<uint8_t>(local.tm_min);
    t->hour = static_cast<uint8_t>(local.tm_hour);
    t->day = static_cast<uint8_t>(local.tm_mday);
    t->mon = static_cast<uint8_t>(local.tm_mon + 1);
    t->year = static_cast<uint16_t>(local.tm_year + 1900);
    t->wday = static_cast<uint8_t>(local.tm_wday);
    NKW_LOGI("SYS", "RTC: %04d-%02d-%02d %02d:%02d:%02d\n \n", t->year, t->mon, t->day, t->hour,
             t->min, t->sec);
    return NKW_PAL_OK;
}

}  // extern "C"
