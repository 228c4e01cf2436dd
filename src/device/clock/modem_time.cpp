// The modem's idea of the time, with the uptime as the fall-back.
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/device.h"
#include "os/heap_record.h"

extern "C" {

uint32_t nkw_pal_get_sys_time(void) {
    auto record = nkw::HeapRecord<mipc_sys_time_struct>::allocate();
    if (!record || mipc_sys_time_get_sync(MIPC_PS_ALL, record.get()) != MIPC_RESULT_SUCCESS) {
        const int32_t uptime = nkw_pal_getSysSec();
        NKW_LOGI("SYS", "[platform] linux_time:%d \n", uptime);
        return static_cast<uint32_t>(uptime);
    }
    // The record's result code is deliberately not judged.
    NKW_LOGI("SYS", "[platform] sys_time:%d,%d,%d,%d \n", static_cast<int>(record->time_ms),
             static_cast<int>(record->tz_offset_min), static_cast<int>(record->dst),
             static_cast<int>(record->time_source));
    return static_cast<uint32_t>(record->time_ms / 1000u);
}

}  // extern "C"
