// A time stamp as local-time text.
#include <cstring>
#include <ctime>

#include "diag/log.h"
#include "nkw_pal/device.h"

extern "C" {

int32_t nkw_pal_TimeStamp2TimeStr(long timestamp, char *out) {
    if (out == nullptr) {
        NKW_LOGI("SYS", "output buffer is null \n");
        return NKW_PAL_OK;
    }
    char text[NKW_PAL_TIME_STR_SIZE];
    std::memset(text, 0, sizeof text);
    const time_t seconds = timestamp;
    tm local;
    std::memset(&local, 0, sizeof local);
    if (localtime_r(&seconds, &local) != nullptr) {
        strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    }
    std::memcpy(out, text, sizeof text);
    NKW_LOGE("SYS", "test time:  %s\n \n", text);
    return NKW_PAL_OK;
}

}  // extern "C"
