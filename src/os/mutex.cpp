// Recursive mutexes over pthreads.
#include <pthread.h>

#include <cerrno>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/heap_record.h"

struct mutex_info {
    pthread_mutex_t *mutex;
    pthread_mutexattr_t mutexattr;  // recursive; kept for the mutex's lifetime
};

namespace {

constexpr const char *kTag = "MUTEX";

}  // namespace

extern "C" {

int32_t nkw_pal_mutex_create(mutex_info **out) {
    if (out == nullptr) {
        NKW_LOGE(kTag, "The input parameters is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    auto record = nkw::HeapRecord<mutex_info>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "malloc mutex_info failed! \n");
        return NKW_PAL_MUTEX_NO_MEMORY;
    }
    auto mutex = nkw::HeapRecord<pthread_mutex_t>::allocate();
    if (!mutex) {
        record.reset();
        NKW_LOGE(kTag, "malloc mutex failed! \n");
        return NKW_PAL_MUTEX_NO_MEMORY;
    }
    pthread_mutexattr_init(&record->mutexattr);
    pthread_mutexattr_settype(&record->mutexattr, PTHREAD_MUTEX_RECURSIVE);
    if (pthread_mutex_init(mutex.get(), &record->mutexattr) != 0) {
        int err = errno;
        mutex.reset();
        record.reset();
        NKW_LOGE(kTag, "mutex create failed cause: %d %s \n", err, strerror(err));
        return NKW_PAL_MUTEX_INIT_FAILED;
    }
    record->mutex = mutex.release();
    *out = record.release();
    return 0;
}

// The failure lines show errno, which is what existing log readers match on.
int32_t nkw_pal_mutex_lock(mutex_info *handle) {
    if (handle == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    NKW_LOGD(kTag, "Lock %p \n", static_cast<void *>(handle->mutex));
    if (pthread_mutex_lock(handle->mutex) != 0) {
        int err = errno;
        NKW_LOGE(kTag, "Lock %p failed cause: %d %s \n", static_cast<void *>(handle->mutex), err,
                 strerror(err));
        return -1;
    }
    return 0;
}

int32_t nkw_pal_mutex_trylock(mutex_info *handle) {
    if (handle == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    NKW_LOGD(kTag, "TryLock %p \n", static_cast<void *>(handle->mutex));
    if (pthread_mutex_trylock(handle->mutex) != 0) {
        // Judged by errno, not by the call's result: callers have always got
        // 203 only when errno happened to hold EBUSY.
        int err = errno;
        int32_t status = err == EBUSY ? NKW_PAL_MUTEX_BUSY : -1;
        NKW_LOGE(kTag, "TryLock %p failed cause %d %s \n", static_cast<void *>(handle->mutex), err,
                 strerror(err));
        return status;
    }
    return 0;
}

int32_t nkw_pal_mutex_unlock(mutex_info *handle) {
    if (handle == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    NKW_LOGD(kTag, "UnLock %p \n", static_cast<void *>(handle->mutex));
    if (pthread_mutex_unlock(handle->mutex) != 0) {
        int err = errno;
        NKW_LOGE(kTag, "UnLock %p failed cause: %d %s \n", static_cast<void *>(handle->mutex), err,
                 strerror(err));
        return -1;
    }
    return 0;
}

int32_t nkw_pal_mutex_delete(mutex_info **handle) {
    // A null address is answered like a null handle rather than crashing.
    mutex_info *info = handle != nullptr ? *handle : nullptr;
    if (info == nullptr || info->mutex == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    NKW_LOGD(kTag, "Delete %p \n", static_cast<void *>(info->mutex));
    if (pthread_mutex_destroy(info->mutex) != 0) {
        NKW_LOGE(kTag, "Delete %p failed! \n", static_cast<void *>(handle));
        return -1;
    }
    auto record = nkw::HeapRecord<mutex_info>::adopt(info);
    nkw::HeapRecord<pthread_mutex_t>::adopt(info->mutex).reset();
    info->mutex = nullptr;
    record.reset();
    *handle = nullptr;
    return 0;
}

}  // extern "C"
