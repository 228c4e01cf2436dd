// Named message queues over POSIX mq_open.
#include <fcntl.h>
#include <mqueue.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/deadline.h"
#include "os/heap_record.h"

struct mq_info {
    char name[NKW_PAL_MQ_NAME_MAX + 1];  // the short name the log lines show
    mqd_t queue_id;
    char *start_addr;  // full POSIX name, kept for the unlink in delete
};

namespace {

constexpr const char *kTag = "MQ";
constexpr uint32_t kDomainSize = 128;  // "/TOLV_Openwrt_" + 64 + ".queue" fits
constexpr const char *kDomainFormat = "/TOLV_Openwrt_%s.queue";
constexpr mode_t kQueueMode = 0770;
constexpr unsigned kNoPriority = 0;

bool usable(const mq_info *handle) {
    return handle != nullptr && handle->start_addr != nullptr;
}

// Rewrites the blocking mode of the open queue description, which every
// thread using this handle shares.
int32_t nkw_pal_mq_setFlags(mqd_t id, long flags) {
    if (id <= 0) {
        NKW_LOGE(kTag, "The input parameter is incorrect. \n");
        return NKW_PAL_INVALID_ARG;
    }
    mq_attr attributes{};
    if (mq_getattr(id, &attributes) != 0) {
        int err = errno;
        NKW_LOGE(kTag, "mq getattr failed! cause: %s %d \n", strerror(err), err);
        return -1;
    }
    attributes.mq_flags = flags;
    if (mq_setattr(id, &attributes, nullptr) != 0) {
        int err = errno;
        NKW_LOGE(kTag, "mq setattr failed! cause: %s %d \n", strerror(err), err);
        return -1;
    }
    return 0;
}

// A pointed-to 0 means "do not wait"; any other value waits with a deadline.
long flags_for(const uint32_t *timeout_ms) {
    return (timeout_ms != nullptr && *timeout_ms == 0) ? O_NONBLOCK : 0;
}

}  // namespace

extern "C" {

int32_t nkw_pal_mq_create(uint32_t maxmsg, uint32_t msgsize, const char *name, mq_info **out) {
    if (name == nullptr || out == nullptr) {
        NKW_LOGE(kTag, "the mq or name is NULL \n");
        return NKW_PAL_INVALID_ARG;
    }
    auto record = nkw::HeapRecord<mq_info>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "malloc message queue info failed. \n");
        return NKW_PAL_NO_MEMORY;
    }
    if (strnlen(name, NKW_PAL_MQ_NAME_MAX + 1) > NKW_PAL_MQ_NAME_MAX) {
        // The length is judged after the allocation and the record is not
        // given back on this path; long-standing behaviour that is kept.
        static_cast<void>(record.release());
        NKW_LOGE(kTag, "the input name len is too long. \n");
        return NKW_PAL_OS_NAME_TOO_LONG;
    }
    std::memset(record.get(), 0, sizeof(mq_info));
    std::strncpy(record->name, name, NKW_PAL_MQ_NAME_MAX);

    auto domain = nkw::HeapRecord<char>::allocate(kDomainSize);
    if (!domain) {
        record.reset();
        NKW_LOGE(kTag, "malloc openwrt_queue_domain failed. \n");
        return NKW_PAL_NO_MEMORY;
    }
    std::snprintf(domain.get(), kDomainSize, kDomainFormat, record->name);

    mq_attr attributes{};
    attributes.mq_maxmsg = static_cast<long>(maxmsg);
    attributes.mq_msgsize = static_cast<long>(msgsize);
    // No O_EXCL: an existing queue is shared as it stands, sizes and messages.
    record->queue_id = mq_open(domain.get(), O_CREAT | O_RDWR, kQueueMode, &attributes);
    if (record->queue_id == static_cast<mqd_t>(-1)) {
        int err = errno;
        record.reset();
        domain.reset();
        NKW_LOGE(kTag, "The queue_msgid mq_open failed cause: %d %s \n", err, strerror(err));
        return err == ENOSPC ? NKW_PAL_MQ_NO_SPACE : -1;
    }
    NKW_LOGI(kTag, "mq: %s create success, id: %d \n", record->name,
             static_cast<int>(record->queue_id));
    record->start_addr = domain.release();
    *out = record.release();
    return 0;
}

int32_t nkw_pal_mq_delete(mq_info **handle) {
    // A null address is answered like a null handle rather than crashing.
    mq_info *info = handle != nullptr ? *handle : nullptr;
    if (info == nullptr) {
        NKW_LOGE(kTag, "the mq is NULL \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    if (info->start_addr == nullptr) {
        NKW_LOGE(kTag, "The mq_info->start_addr is NULL \n");
        return NKW_PAL_MQ_HALF_BUILT;
    }
    NKW_LOGI(kTag, "mq: %s, id: %d delete. \n", info->name, static_cast<int>(info->queue_id));
    auto record = nkw::HeapRecord<mq_info>::adopt(info);
    auto domain = nkw::HeapRecord<char>::adopt(info->start_addr);
    mq_close(info->queue_id);
    mq_unlink(info->start_addr);
    domain.reset();
    info->start_addr = nullptr;
    record.reset();
    *handle = nullptr;
    return 0;
}

int32_t nkw_pal_mq_put(mq_info *handle, const void *msg, uint32_t len, const uint32_t *timeout_ms) {
    if (!usable(handle) || msg == nullptr || len == 0) {
        NKW_LOGE(kTag, "The input parameter is incorrect. \n");
        return NKW_PAL_INVALID_ARG;
    }
    int32_t status = nkw_pal_mq_setFlags(handle->queue_id, flags_for(timeout_ms));
    if (status != 0) {
        NKW_LOGE(kTag, "mq: %s, id: %d setFlags failed. \n", handle->name,
                 static_cast<int>(handle->queue_id));
        return status;
    }
    const char *bytes = static_cast<const char *>(msg);
    int rc;
    if (timeout_ms == nullptr) {
        rc = mq_send(handle->queue_id, bytes, len, kNoPriority);
    } else {
        timespec deadline = nkw::os::deadline_after_ms(*timeout_ms);
        rc = mq_timedsend(handle->queue_id, bytes, len, kNoPriority, &deadline);
    }
    if (rc != 0) {
        int err = errno;
        NKW_LOGE(kTag, "mq: %s, id: %d put failed! cause: %d %s \n", handle->name,
                 static_cast<int>(handle->queue_id), err, strerror(err));
        return -1;
    }
    NKW_LOGI(kTag, "mq: %s, id: %d put success. \n", handle->name,
             static_cast<int>(handle->queue_id));
    return 0;
}

int32_t nkw_pal_mq_get(mq_info *handle, void *buf, uint32_t *len_out, const uint32_t *timeout_ms) {
    if (!usable(handle) || buf == nullptr || len_out == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect. \n");
        return NKW_PAL_INVALID_ARG;
    }
    mq_attr attributes{};
    if (mq_getattr(handle->queue_id, &attributes) != 0) {
        NKW_LOGE(kTag, "The queue getattr failed \n");
        return -1;
    }
    int32_t status = nkw_pal_mq_setFlags(handle->queue_id, flags_for(timeout_ms));
    if (status != 0) {
        NKW_LOGE(kTag, "mq: %s, id: %d setFlags failed. \n", handle->name,
                 static_cast<int>(handle->queue_id));
        return status;
    }
    // The caller's buffer holds a whole message of the queue's size.
    char *bytes = static_cast<char *>(buf);
    size_t size = static_cast<size_t>(attributes.mq_msgsize);
    ssize_t received;
    if (timeout_ms == nullptr) {
        received = mq_receive(handle->queue_id, bytes, size, nullptr);
    } else {
        timespec deadline = nkw::os::deadline_after_ms(*timeout_ms);
        received = mq_timedreceive(handle->queue_id, bytes, size, nullptr, &deadline);
    }
    if (received < 0) {
        int err = errno;
        *len_out = 0;
        NKW_LOGE(kTag, "mq: %s, id: %d get failed! cause: %d %s \n", handle->name,
                 static_cast<int>(handle->queue_id), err, strerror(err));
        return -1;
    }
    *len_out = static_cast<uint32_t>(received);
    NKW_LOGI(kTag, "mq: %s, id: %d get success! \n", handle->name,
             static_cast<int>(handle->queue_id));
    return 0;
}

int32_t nkw_pal_mq_info(mq_info *handle, mq_usage *info) {
    if (!usable(handle) || info == nullptr) {
        NKW_LOGE(kTag, "The input parameter is incorrect. \n");
        return NKW_PAL_INVALID_ARG;
    }
    mq_attr attributes{};
    if (mq_getattr(handle->queue_id, &attributes) != 0) {
        int err = errno;
        NKW_LOGE(kTag, "The queue getattr failed cause: %d %s \n", err, strerror(err));
        return -1;
    }
    NKW_LOGI(kTag, "mq: %s, id: %d mq_curmsgs=%lu, mq_maxmsg=%lu, mq_msgsize=%lu \n", handle->name,
             static_cast<int>(handle->queue_id), static_cast<unsigned long>(attributes.mq_curmsgs),
             static_cast<unsigned long>(attributes.mq_maxmsg),
             static_cast<unsigned long>(attributes.mq_msgsize));
    info->curmsgs = static_cast<uint32_t>(attributes.mq_curmsgs);
    info->freemsgs = static_cast<uint32_t>(attributes.mq_maxmsg - attributes.mq_curmsgs);
    return 0;
}

}  // extern "C"
