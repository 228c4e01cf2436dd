// Named semaphores over POSIX sem_open.
#include <fcntl.h>
#include <semaphore.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/deadline.h"
#include "os/heap_record.h"

struct sem_info {
    sem_t *sem_id;
    char *start_addr;  // full POSIX name, kept for the unlink in deinit
};

namespace {

constexpr const char *kTag = "SEM";
constexpr uint32_t kDomainSize = 128;  // "/TOLV_Openwrt_" + 64 + ".sem" fits
constexpr const char *kDomainFormat = "/TOLV_Openwrt_%s.sem";
constexpr mode_t kSemMode = 0770;

bool usable(const sem_info *handle) {
    return handle != nullptr && handle->sem_id != nullptr;
}

int32_t wait_untimed(sem_info *handle) {
    if (sem_wait(handle->sem_id) == 0) return 0;
    int err = errno;
    NKW_LOGE(kTag, "wait sem_id: %p failed cause: %d %s \n", static_cast<void *>(handle->sem_id),
             err, strerror(err));
    return -1;
}

int32_t wait_once(sem_info *handle) {
    if (sem_trywait(handle->sem_id) == 0) return 0;
    int err = errno;
    NKW_LOGE(kTag, "wait sem_id: %p failed cause: %d %s \n", static_cast<void *>(handle->sem_id),
             err, strerror(err));
    return -1;
}

int32_t wait_until(sem_info *handle, uint32_t ms) {
    timespec deadline = nkw::os::deadline_after_ms(ms);
    int rc;
    do {
        rc = sem_timedwait(handle->sem_id, &deadline);
    } while (rc != 0 && errno == EINTR);
    if (rc == 0) return 0;
    int err = errno;
    if (err == ETIMEDOUT) {
        NKW_LOGE(kTag, "wait sem_id: %p timeout cause: %d %s \n",
                 static_cast<void *>(handle->sem_id), err, strerror(err));
        return NKW_PAL_OS_TIMEOUT;
    }
    NKW_LOGE(kTag, "wait sem_id: %p failed cause: %d %s \n", static_cast<void *>(handle->sem_id),
             err, strerror(err));
    return -1;
}

}  // namespace

extern "C" {

int32_t nkw_pal_sem_init(sem_info **out, const char *name, uint32_t max_value,
                         uint32_t init_value) {
    if (out == nullptr || name == nullptr) {
        NKW_LOGE(kTag, "The input parameters is incorrect \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    if (strnlen(name, NKW_PAL_SEM_NAME_MAX + 1) > NKW_PAL_SEM_NAME_MAX) {
        NKW_LOGE(kTag, "the input name len is too long \n");
        return NKW_PAL_OS_NAME_TOO_LONG;
    }
    char short_name[NKW_PAL_SEM_NAME_MAX + 1] = {};
    std::strncpy(short_name, name, NKW_PAL_SEM_NAME_MAX);
    if (max_value < init_value) {
        NKW_LOGE(kTag, "the input max_value len is less than init_value \n");
        return NKW_PAL_INVALID_ARG;
    }

    auto record = nkw::HeapRecord<sem_info>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "malloc sem_info failed! \n");
        return -1;
    }
    auto domain = nkw::HeapRecord<char>::allocate(kDomainSize);
    if (!domain) {
        record.reset();
        NKW_LOGE(kTag, "malloc openwrt_sem_domain failed! \n");
        return -1;
    }
    std::snprintf(domain.get(), kDomainSize, kDomainFormat, short_name);

    // No O_EXCL: a name already open elsewhere is shared, count and all.
    sem_t *sem = sem_open(domain.get(), O_CREAT | O_RDWR, kSemMode, init_value);
    if (sem == SEM_FAILED) {
        record.reset();
        domain.reset();
        NKW_LOGE(kTag, "The sem_open failed \n");
        return -1;
    }
    record->sem_id = sem;
    record->start_addr = domain.release();
    NKW_LOGI(kTag, "sem: %s create success \n", short_name);
    *out = record.release();
    return 0;
}

int32_t nkw_pal_sem_post(sem_info *handle) {
    if (!usable(handle)) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    if (sem_post(handle->sem_id) == 0) {
        NKW_LOGI(kTag, "post sem_id: %p success \n", static_cast<void *>(handle->sem_id));
        return 0;
    }
    int err = errno;
    NKW_LOGE(kTag, "post sem_id: %p failed cause: %d %s \n", static_cast<void *>(handle->sem_id),
             err, strerror(err));
    return err == EOVERFLOW ? NKW_PAL_SEM_AT_MAXIMUM : -1;
}

int32_t nkw_pal_sem_wait(sem_info *handle, const uint32_t *timeout_ms) {
    if (!usable(handle)) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    int32_t result;
    if (timeout_ms == nullptr) {
        result = wait_untimed(handle);
    } else if (*timeout_ms == 0) {
        result = wait_once(handle);
    } else {
        result = wait_until(handle, *timeout_ms);
    }
    if (result == 0) {
        NKW_LOGI(kTag, "wait sem_id: %p success \n", static_cast<void *>(handle->sem_id));
    }
    return result;
}

int32_t nkw_pal_sem_deinit(sem_info **handle) {
    // A null address is answered like a null handle rather than crashing.
    sem_info *info = handle != nullptr ? *handle : nullptr;
    if (info == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    if (info->sem_id == nullptr || info->start_addr == nullptr) {
        NKW_LOGE(kTag, "The sem_info->sem_id or start_addr is NULL \n");
        return NKW_PAL_SEM_HALF_BUILT;
    }
    auto record = nkw::HeapRecord<sem_info>::adopt(info);
    auto domain = nkw::HeapRecord<char>::adopt(info->start_addr);
    sem_close(info->sem_id);
    sem_unlink(info->start_addr);
    domain.reset();
    info->start_addr = nullptr;
    record.reset();
    *handle = nullptr;
    return 0;
}

}  // extern "C"
