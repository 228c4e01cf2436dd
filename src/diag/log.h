// Internal logging helpers: every line of the library goes through these so
// that the "[function:line]-" prefix is supplied in one place.
#pragma once

#include "nkw_pal/diag.h"

// The format is a string literal; the prefix is pasted in front of it.
#define NKW_LOGF(tag, fmt, ...) nkw_pal_logf(tag, "[%s:%d]-" fmt, __func__, __LINE__, ##__VA_ARGS__)
#define NKW_LOGE(tag, fmt, ...) nkw_pal_loge(tag, "[%s:%d]-" fmt, __func__, __LINE__, ##__VA_ARGS__)
#define NKW_LOGW(tag, fmt, ...) nkw_pal_logw(tag, "[%s:%d]-" fmt, __func__, __LINE__, ##__VA_ARGS__)
#define NKW_LOGI(tag, fmt, ...) nkw_pal_logi(tag, "[%s:%d]-" fmt, __func__, __LINE__, ##__VA_ARGS__)
#define NKW_LOGD(tag, fmt, ...) nkw_pal_logd(tag, "[%s:%d]-" fmt, __func__, __LINE__, ##__VA_ARGS__)
#define NKW_LOGT(tag, fmt, ...) nkw_pal_logt(tag, "[%s:%d]-" fmt, __func__, __LINE__, ##__VA_ARGS__)
