/* nkw_pal diagnostics: logging to the system log and result codes. */
#ifndef NKW_PAL_DIAG_H
#define NKW_PAL_DIAG_H

#include <stdarg.h>

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* Log levels: a line of level L is written when the current level >= L. */
enum {
    NKW_PAL_LOG_FATAL = 0, /* syslog LOG_ALERT */
    NKW_PAL_LOG_ERROR = 1, /* LOG_ERR */
    NKW_PAL_LOG_WARN = 2,  /* LOG_WARNING */
    NKW_PAL_LOG_INFO = 3,  /* LOG_INFO; the level every process starts at */
    NKW_PAL_LOG_DEBUG = 4, /* LOG_DEBUG */
    NKW_PAL_LOG_TRACE = 5  /* LOG_NOTICE: deliberately above debug */
};

/*
 * Two result-code pairs, {0, 0} and {-1, -1} (code -> folded value).
 * Exported for callers; the library does not read it.
 */
NKW_PAL_API extern const int32_t err_code_table[4];

/*
 * Opens the system log under the process's executable name (LOG_PID,
 * LOG_DAEMON) and creates the named semaphore that guards level changes.
 * Returns 0, or -1 when the semaphore cannot be created (log not opened).
 */
NKW_PAL_API int32_t nkw_pal_log_init(void);

/* Closes the system log and deletes the level semaphore. Returns 0. */
NKW_PAL_API int32_t nkw_pal_log_close(void);

/* Sets the process's level (0..5). Above 5 returns -1 and changes nothing. */
NKW_PAL_API int32_t nkw_pal_log_set_level(uint32_t level);

NKW_PAL_API uint32_t nkw_pal_log_get_level(void);

/* True when a line of `level` would be written. */
NKW_PAL_API bool nkw_pal_log_should_log(uint32_t level);

/*
 * Writes one line: "[%8s] " with the tag ("UNKNOWN" when null or empty),
 * then the formatted text, cut to fit a 1024-byte line (3 bytes always
 * unused), sent to syslog as "-%s\n"; then sleeps 2 ms. Does not test the
 * level: the wrappers below do. Returns 0.
 */
NKW_PAL_API int32_t nkw_pal_log(uint32_t level, const char *tag, const char *format, va_list args);

/*
 * Level wrappers: return 0 at once when filtered (no formatting, no lock),
 * otherwise write the line through nkw_pal_log. By convention every format
 * begins "[%s:%d]-" followed by the calling function's name and line.
 */
NKW_PAL_API int32_t nkw_pal_logf(const char *tag, const char *format, ...)
    __attribute__((format(printf, 2, 3)));
NKW_PAL_API int32_t nkw_pal_loge(const char *tag, const char *format, ...)
    __attribute__((format(printf, 2, 3)));
NKW_PAL_API int32_t nkw_pal_logw(const char *tag, const char *format, ...)
    __attribute__((format(printf, 2, 3)));
NKW_PAL_API int32_t nkw_pal_logi(const char *tag, const char *format, ...)
    __attribute__((format(printf, 2, 3)));
NKW_PAL_API int32_t nkw_pal_logd(const char *tag, const char *format, ...)
    __attribute__((format(printf, 2, 3)));
NKW_PAL_API int32_t nkw_pal_logt(const char *tag, const char *format, ...)
    __attribute__((format(printf, 2, 3)));

/* Folds any status into 0 (for 0) or 1 (anything else). */
NKW_PAL_API int32_t nkw_pal_err_code_convert(int32_t code);

/* ---- Offline log capture ---------------------------------------------------
 * When NV item 34 enables it, the system log is dumped every few minutes
 * into eight rotating files under /data that survive a reboot. Tag LOG.
 */

/* Reads the switch, prepares or restores the files and starts the timer.
 * 0 (also when disabled) or -1. */
NKW_PAL_API int32_t nkw_pal_offline_log_init(void);
/* The timer routine: dumps the log into the next file and records it. */
NKW_PAL_API void nkw_pal_offline_log_timeout_callback(void);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_DIAG_H */
