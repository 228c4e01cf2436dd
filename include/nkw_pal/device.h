/*
 * nkw_pal device control. Tag SYS.
 */
#ifndef NKW_PAL_DEVICE_H
#define NKW_PAL_DEVICE_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* ---- Clock and time --------------------------------------------------------
 * Wall clock as local time, monotonic uptime and the modem's time.
 */

/* Statuses of device control. */
enum {
    NKW_PAL_CLOCK_SET_FAILED = 802, /* the system clock could not be set */
    NKW_PAL_CLOCK_GET_FAILED = 803  /* the local time could not be broken down */
};

/* Broken-down wall-clock time, 10 bytes. */
typedef struct rtc {
    uint8_t sec;   /* 0-59 */
    uint8_t min;   /* 0-59 */
    uint8_t hour;  /* 0-23 */
    uint8_t day;   /* day of month, 1-31 */
    uint8_t mon;   /* 1-12 */
    uint16_t year; /* full year, e.g. 2024 */
    uint8_t wday;  /* 0 = Sunday */
} rtc;

/* Days before each month and the year's length: [0] normal, [1] leap year. */
NKW_PAL_API extern const uint16_t nkw_mon_yday[2][13];

/* Sets the system clock from `t` read as local time (microseconds 0). 0, 7 or 802. */
NKW_PAL_API int32_t nkw_pal_setRTC(const rtc *t);
/* The current local time. 0, 7 or 803. */
NKW_PAL_API int32_t nkw_pal_getRTC(rtc *t);
/* Sets the clock's seconds, keeping its microseconds. 0 or 802. */
NKW_PAL_API int32_t nkw_pal_setTimestamp(long seconds);
/*
 * The local calendar time counted as if it were UTC, with the module's own
 * leap-year rule (on the year's low 8 bits) and 32-bit arithmetic: it matches
 * the UTC reading for dates from 1993 to 2037, is a day ahead for 1970-1992
 * and wraps after 2037. 0, 7 or -1.
 */
NKW_PAL_API int32_t nkw_pal_getTimestamp(long long *seconds);
/* Monotonic whole seconds divided by the clock-tick rate; 0xFFFFFFFF on failure. */
NKW_PAL_API uint32_t nkw_pal_getSysTicks(void);
/* Monotonic whole seconds, or -1. */
NKW_PAL_API int32_t nkw_pal_getSysSec(void);
/* The modem's time in seconds; the uptime when the modem cannot be asked. */
NKW_PAL_API uint32_t nkw_pal_get_sys_time(void);
/* Size of the text nkw_pal_TimeStamp2TimeStr writes. */
#define NKW_PAL_TIME_STR_SIZE 80
/*
 * "YYYY-MM-DD hh:mm:ss" of `timestamp` in local time; writes all 80 bytes of
 * `out` (zero-padded). A NULL `out` is logged and left alone. Always 0.
 */
NKW_PAL_API int32_t nkw_pal_TimeStamp2TimeStr(long timestamp, char *out);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_DEVICE_H */
