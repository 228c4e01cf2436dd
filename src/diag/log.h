// Internal logging helpers: every line of the library goes through these so
// that the "[function:line]-" prefix is supplied in one place.
//
// The level is also tested here, inline, so that a filtered line costs the
// library one load and compare rather than a call (the exported wrappers
// still test it for outside callers).
#pragma once

#include "diag/level.h"
#include "nkw_pal/diag.h"

namespace nkw::diag {
inline bool enabled(uint32_t level) {
    return g_log_level.load(std::memory_order_relaxed) >= level;
}
}  // namespace nkw::diag

// The format is a string literal; the prefix is pasted in front of it.
#define NKW_LOG_AT(level, writer, tag, fmt, ...) \
    (nkw::diag::enabled(level) ? writer(tag, "[%s:%d]-" fmt, __func__, __LINE__, ##__VA_ARGS__) : 0)
#define NKW_LOGF(tag, fmt, ...) NKW_LOG_AT(NKW_PAL_LOG_FATAL, nkw_pal_logf, tag, fmt, ##__VA_ARGS__)
#define NKW_LOGE(tag, fmt, ...) NKW_LOG_AT(NKW_PAL_LOG_ERROR, nkw_pal_loge, tag, fmt, ##__VA_ARGS__)
#define NKW_LOGW(tag, fmt, ...) NKW_LOG_AT(NKW_PAL_LOG_WARN, nkw_pal_logw, tag, fmt, ##__VA_ARGS__)
#define NKW_LOGI(tag, fmt, ...) NKW_LOG_AT(NKW_PAL_LOG_INFO, nkw_pal_logi, tag, fmt, ##__VA_ARGS__)
#define NKW_LOGD(tag, fmt, ...) NKW_LOG_AT(NKW_PAL_LOG_DEBUG, nkw_pal_logd, tag, fmt, ##__VA_ARGS__)
#define NKW_LOGT(tag, fmt, ...) NKW_LOG_AT(NKW_PAL_LOG_TRACE, nkw_pal_logt, tag, fmt, ##__VA_ARGS__)

// The same lines for shared helpers that log on behalf of a caller: `func` is
// the caller's __func__, so the prefix names the caller, not the helper.
#define NKW_LOG_IN(func, level, writer, tag, fmt, ...) \
    (nkw::diag::enabled(level) ? writer(tag, "[%s:%d]-" fmt, func, __LINE__, ##__VA_ARGS__) : 0)
#define NKW_LOGE_IN(func, tag, fmt, ...) \
    NKW_LOG_IN(func, NKW_PAL_LOG_ERROR, nkw_pal_loge, tag, fmt, ##__VA_ARGS__)
#define NKW_LOGI_IN(func, tag, fmt, ...) \
    NKW_LOG_IN(func, NKW_PAL_LOG_INFO, nkw_pal_logi, tag, fmt, ##__VA_ARGS__)
