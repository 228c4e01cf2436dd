// The log writer and its level wrappers.
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "diag/level.h"
#include "nkw_pal/diag.h"

namespace {

struct LevelPriority {
    int32_t level;
    int32_t priority;
};

// Trace is written at LOG_NOTICE, above debug: existing log filters expect it.
constexpr LevelPriority kLevelPriority[] = {
    {NKW_PAL_LOG_FATAL, LOG_ALERT}, {NKW_PAL_LOG_ERROR, LOG_ERR},   {NKW_PAL_LOG_WARN, LOG_WARNING},
    {NKW_PAL_LOG_INFO, LOG_INFO},   {NKW_PAL_LOG_DEBUG, LOG_DEBUG}, {NKW_PAL_LOG_TRACE, LOG_NOTICE},
};
constexpr int kDefaultPriority = LOG_INFO;

constexpr size_t kLineSize = 1024;
constexpr int kLineLimit = 1021;  // 3 bytes of the line always stay unused
constexpr useconds_t kPaceMicros = 2000;
constexpr const char *kNoTag = "UNKNOWN";

int priority_of(uint32_t level) {
    for (const LevelPriority &entry : kLevelPriority) {
        if (static_cast<uint32_t>(entry.level) == level) return entry.priority;
    }
    return kDefaultPriority;
}

}  // namespace

namespace nkw::diag {
// Read without the lock: a whole 32-bit value is all a reader needs.
std::atomic<uint32_t> g_log_level{NKW_PAL_LOG_INFO};
}  // namespace nkw::diag

extern "C" {

uint32_t nkw_pal_log_get_level(void) {
    return nkw::diag::g_log_level.load(std::memory_order_relaxed);
}

bool nkw_pal_log_should_log(uint32_t level) {
    return nkw_pal_log_get_level() >= level;
}

int32_t nkw_pal_log(uint32_t level, const char *tag, const char *format, va_list args) {
    char line[kLineSize] = {};
    const char *shown = (tag != nullptr && tag[0] != '\0') ? tag : kNoTag;
    // A tag longer than the line is cut too, so the last 3 bytes stay unused.
    int prefix = std::snprintf(line, kLineLimit, "[%8s] ", shown);
    if (prefix < 0) prefix = 0;
    if (prefix < kLineLimit - 1 && format != nullptr) {
        std::vsnprintf(line + prefix, static_cast<size_t>(kLineLimit - prefix), format, args);
    }
    syslog(priority_of(level), "-%s\n", line);
    usleep(kPaceMicros);
    return 0;
}

int32_t nkw_pal_logf(const char *tag, const char *format, ...) {
    if (!nkw_pal_log_should_log(NKW_PAL_LOG_FATAL)) return 0;
    va_list args;
    va_start(args, format);
    int32_t result = nkw_pal_log(NKW_PAL_LOG_FATAL, tag, format, args);
    va_end(args);
    return result;
}

int32_t nkw_pal_loge(const char *tag, const char *format, ...) {
    if (!nkw_pal_log_should_log(NKW_PAL_LOG_ERROR)) return 0;
    va_list args;
    va_start(args, format);
    int32_t result = nkw_pal_log(NKW_PAL_LOG_ERROR, tag, format, args);
    va_end(args);
    return result;
}

int32_t nkw_pal_logw(const char *tag, const char *format, ...) {
    if (!nkw_pal_log_should_log(NKW_PAL_LOG_WARN)) return 0;
    va_list args;
    va_start(args, format);
    int32_t result = nkw_pal_log(NKW_PAL_LOG_WARN, tag, format, args);
    va_end(args);
    return result;
}

int32_t nkw_pal_logi(const char *tag, const char *format, ...) {
    if (!nkw_pal_log_should_log(NKW_PAL_LOG_INFO)) return 0;
    va_list args;
    va_start(args, format);
    int32_t result = nkw_pal_log(NKW_PAL_LOG_INFO, tag, format, args);
    va_end(args);
    return result;
}

int32_t nkw_pal_logd(const char *tag, const char *format, ...) {
    if (!nkw_pal_log_should_log(NKW_PAL_LOG_DEBUG)) return 0;
    va_list args;
    va_start(args, format);
    int32_t result = nkw_pal_log(NKW_PAL_LOG_DEBUG, tag, format, args);
    va_end(args);
    return result;
}

int32_t nkw_pal_logt(const char *tag, const char *format, ...) {
    if (!nkw_pal_log_should_log(NKW_PAL_LOG_TRACE)) return 0;
    va_list args;
    va_start(args, format);
    int32_t result = nkw_pal_log(NKW_PAL_LOG_TRACE, tag, format, args);
    va_end(args);
    return result;
}

}  // extern "C"
