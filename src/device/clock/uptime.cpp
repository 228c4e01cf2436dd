// Monotonic uptime in seconds and in the module's "ticks".
#include <unistd.h>

#include "diag/log.h"
#include "host/clock.h"
#include "nkw_pal/device.h"

extern "C" {

// Seconds divided by the tick rate (not multiplied): daemons were written
// against this unit.
uint32_t nkw_pal_getSysTicks(void) {
    const long rate = sysconf(_SC_CLK_TCK);
    timespec now{};
    if (rate <= 0 || nkw::host::clock::monotonic(&now) != 0) {
        NKW_LOGE("SYS", "Failed to get clock time \n");
        return static_cast<uint32_t>(NKW_PAL_FAIL);
    }
    const long ticks = static_cast<long>(now.tv_sec) / rate;
    NKW_LOGI("SYS", "System uptime ticks: %ld\n \n", ticks);
    return static_cast<uint32_t>(ticks);
}

int32_t nkw_pal_getSysSec(void) {
    timespec now{};
    if (nkw::host::clock::monotonic(&now) != 0) {
        NKW_LOGE("SYS", "Failed to get clock time \n");
        return NKW_PAL_FAIL;
    }
    NKW_LOGI("SYS", "System uptime sec: %ld seconds\n \n", static_cast<long>(now.tv_sec));
    return static_cast<int32_t>(now.tv_sec);
}

}  // extern "C"
