// Hex dump of received bytes, 16 a line.
#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/location.h"

namespace {
constexpr size_t kDumpLineSize = 1024;
constexpr int kBytesPerLine = 16;
}  // namespace

extern "C" {

void nkw_pal_gnss_dump_buff(const unsigned char *buf, int len) {
    NKW_LOGI("GNSS", "[location_srv]len=%d. \n", len);
    if (buf == nullptr || len <= 0) return;
    char line[kDumpLineSize];
    std::memset(line, 0, sizeof line);
    size_t used = 0;
    for (int i = 0; i < len; ++i) {
        if (i % kBytesPerLine == 0) {
            // The line number with a 0 behind it reads as the byte offset.
            used += std::snprintf(line + used, sizeof line - used, "%04x0 ", i / kBytesPerLine);
        }
        used += std::snprintf(line + used, sizeof line - used, "%02x ", buf[i]);
        if (i % kBytesPerLine == kBytesPerLine - 1) {
            NKW_LOGI("GNSS", "[location_srv]  %s  \n", line);
            std::memset(line, 0, sizeof line);
            used = 0;
        }
    }
    if (used != 0) NKW_LOGI("GNSS", "[location_srv]  %s  \n", line);
}

}  // extern "C"
