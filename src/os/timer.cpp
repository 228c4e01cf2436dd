// Millisecond timers over POSIX per-process timers on the wake-up alarm clock.
#include <signal.h>
#include <time.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/heap_record.h"

struct timer_info {
    timer_t timer_id;
    nkw_pal_timer_fn callback;
    void *arg;
};

namespace {

constexpr const char *kTag = "TIMER";
// CLOCK_BOOTTIME_ALARM: counts through suspend and wakes the system. There is
// deliberately no fallback clock.
constexpr clockid_t kTimerClock = 9;

void nkw_pal_timer_callbackInner(sigval value) {
    auto *info = static_cast<timer_info *>(value.sival_ptr);
    if (info == nullptr) {
        NKW_LOGE(kTag, "timer_info is NULL \n");
        return;
    }
    if (info->callback == nullptr) return;
    info->callback(info->arg);
}

itimerspec setting_for(uint32_t ms, bool periodic) {
    itimerspec setting{};
    if (ms > 999) setting.it_value.tv_sec = ms / 1000;
    setting.it_value.tv_nsec = static_cast<long>(ms % 1000) * 1000000L;
    if (periodic) setting.it_interval = setting.it_value;
    return setting;
}

// 0, or the errno of a failed timer_settime. The callers log the failure,
// so that the line carries their name.
int set_time(timer_info *handle, const itimerspec &setting) {
    return timer_settime(handle->timer_id, 0, &setting, nullptr) != 0 ? errno : 0;
}

// The remaining time and period: 0, or the errno of a failed timer_gettime
// (logged by the callers, under their name).
int read_time(timer_info *handle, itimerspec *setting) {
    *setting = {};
    return timer_gettime(handle->timer_id, setting) != 0 ? errno : 0;
}

// The remaining time and period of a timer; false, once logged under the
// caller's name, when there is no handle or the time cannot be read.
bool read_setting(const char *func, timer_info *handle, itimerspec *setting) {
    if (handle == nullptr) {
        NKW_LOGE_IN(func, kTag, "The input parameter is incorrect \n");
        return false;
    }
    if (int err = read_time(handle, setting)) {
        NKW_LOGE_IN(func, kTag, "timer_gettime failed cause: %d %s \n", err, strerror(err));
        return false;
    }
    return true;
}

bool nonzero(const timespec &t) {
    return t.tv_sec != 0 || t.tv_nsec != 0;
}

}  // namespace

extern "C" {

int32_t nkw_pal_timer_create(nkw_pal_timer_fn callback, void *arg, const char *name,
                             timer_info **out) {
    if (callback == nullptr || out == nullptr || name == nullptr) {
        NKW_LOGE(kTag, "The input parameters is incorrect \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    auto record = nkw::HeapRecord<timer_info>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "malloc timer_info failed \n");
        return -1;
    }
    record->callback = callback;
    record->arg = arg;

    sigevent notification{};
    notification.sigev_notify = SIGEV_THREAD;
    notification.sigev_value.sival_ptr = record.get();
    notification.sigev_notify_function = nkw_pal_timer_callbackInner;
    notification.sigev_notify_attributes = nullptr;
    if (timer_create(kTimerClock, &notification, &record->timer_id) != 0) {
        int err = errno;
        record.reset();
        NKW_LOGE(kTag, "timer_create failed cause: %d %s \n", err, strerror(err));
        return err == ENOMEM ? NKW_PAL_TIMER_NO_MEMORY : -1;
    }
    // The record's address identifies the timer in the log.
    NKW_LOGI(kTag, "timer: %s create success timer id: 0x%x \n", name,
             static_cast<unsigned>(reinterpret_cast<uintptr_t>(record.get())));
    *out = record.release();
    return 0;
}

int32_t nkw_pal_timer_start(timer_info *handle, uint32_t ms, uint8_t periodic) {
    if (handle == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    if (int err = set_time(handle, setting_for(ms, periodic != 0))) {
        NKW_LOGE(kTag, "timer_settime failed cause: %d %s \n", err, strerror(err));
        return -1;
    }
    return 0;
}

int32_t nkw_pal_timer_stop(timer_info *handle) {
    if (handle == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    if (int err = set_time(handle, itimerspec{})) {
        NKW_LOGE(kTag, "timer_settime failed cause: %d %s \n", err, strerror(err));
        return -1;
    }
    return 0;
}

int32_t nkw_pal_timer_delete(timer_info **handle) {
    // A null address is answered like a null handle rather than crashing.
    timer_info *info = handle != nullptr ? *handle : nullptr;
    if (info == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    if (timer_delete(info->timer_id) != 0) {
        int err = errno;
        NKW_LOGE(kTag, "timer_delete failed cause: %d %s \n", err, strerror(err));
        return -1;
    }
    nkw::HeapRecord<timer_info>::adopt(info).reset();
    *handle = nullptr;
    return 0;
}

int32_t nkw_pal_timer_isRunning(timer_info *handle) {
    itimerspec setting;
    if (!read_setting(__func__, handle, &setting)) return 0;
    return nonzero(setting.it_value) || nonzero(setting.it_interval) ? 1 : 0;
}

int32_t nkw_pal_timer_isPeriodic(timer_info *handle) {
    itimerspec setting;
    if (!read_setting(__func__, handle, &setting)) return 0;
    return nonzero(setting.it_interval) ? 1 : 0;
}

}  // extern "C"
