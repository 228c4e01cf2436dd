// Detached threads over pthreads, ended by cancellation.
#include <pthread.h>
#include <unistd.h>

#include <cstring>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/heap_record.h"

struct thread_info {
    pthread_t *thread_id;
    thread_attr attr;
    void *stackaddr;  // written by the new thread: a point near the top of its stack
    nkw_pal_thread_fn callback;
    void *arg;
};

namespace {

constexpr const char *kTag = "THREAD";
constexpr uint32_t kSmallestStack = 16383;  // a stack must be larger than this
constexpr uint32_t kLowestPriority = 1;
constexpr uint32_t kHighestPriority = 99;
constexpr int kPriorityOutOfRange = 8;

// pthread_t is printed as the lower 32 bits, as the log readers expect.
unsigned shown(pthread_t id) {
    return static_cast<unsigned>(id);
}

// Every size above kSmallestStack is accepted; where the C library's own
// minimum is higher (glibc on aarch64 asks for 128 KiB) the stack is raised
// to it rather than the thread refused.
size_t platform_stack_size(uint32_t requested) {
    long platform_min = sysconf(_SC_THREAD_STACK_MIN);
    if (platform_min > 0 && static_cast<unsigned long>(platform_min) > requested) {
        return static_cast<size_t>(platform_min);
    }
    return requested;
}

void *nkw_pal_thread_callbackInner(void *param) {
    auto *info = static_cast<thread_info *>(param);
    if (info == nullptr) {
        NKW_LOGE(kTag, "thread_info is NULL \n");
        return nullptr;
    }
    int top_of_stack = 0;
    info->stackaddr = &top_of_stack;
    NKW_LOGI(kTag, "thread_callback_in thread_info->stackaddr is %p \n", info->stackaddr);
    if (info->callback == nullptr) {
        NKW_LOGE(kTag, "thread_info->callback is NULL \n");
        return nullptr;
    }
    info->callback(info->arg);
    return nullptr;
}

}  // namespace

extern "C" {

int32_t nkw_pal_thread_create(thread_info **out, const char *name, const thread_attr *attr,
                              nkw_pal_thread_fn callback, void *arg) {
    if (out == nullptr || name == nullptr) {
        NKW_LOGE(kTag, "the th or name or attr is NULL! \n");
        return NKW_PAL_INVALID_ARG;
    }
    if (strnlen(name, NKW_PAL_THREAD_NAME_MAX + 1) > NKW_PAL_THREAD_NAME_MAX) {
        NKW_LOGE(kTag, "the name is too long! \n");
        return NKW_PAL_OS_NAME_TOO_LONG;
    }
    char thread_name[NKW_PAL_THREAD_NAME_MAX + 1] = {};
    std::strncpy(thread_name, name, NKW_PAL_THREAD_NAME_MAX);

    auto record = nkw::HeapRecord<thread_info>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "malloc thread_info failed. \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    auto id_cell = nkw::HeapRecord<pthread_t>::allocate();
    if (!id_cell) {
        record.reset();
        NKW_LOGE(kTag, "malloc thread_id failed. \n");
        return -1;
    }
    record->thread_id = id_cell.get();
    record->callback = callback;
    record->arg = arg;

    // The steps run here rather than in a helper so that their lines carry
    // this function's name, as every line of the call does.
    int code = 0;
    if (attr != nullptr) {
        record->attr = *attr;
        do {
            pthread_attr_t attributes;
            if (pthread_attr_init(&attributes) != 0) {
                NKW_LOGE(kTag, "The attr_init failed \n");
                code = NKW_PAL_THREAD_ATTR_INIT_FAILED;
                break;
            }
            if (record->attr.stack_size == 0 || record->attr.stack_size <= kSmallestStack) {
                pthread_attr_destroy(&attributes);
                NKW_LOGE(kTag, "The stack size is less than PTHREAD_STACK_MIN bytes. \n");
                code = NKW_PAL_THREAD_STACK_TOO_SMALL;
                break;
            }
            if (pthread_attr_setstacksize(&attributes,
                                          platform_stack_size(record->attr.stack_size)) != 0) {
                pthread_attr_destroy(&attributes);
                NKW_LOGE(kTag, "The setstacksize failed \n");
                code = -1;
                break;
            }
            // Fresh attributes report SCHED_OTHER, so the priority is never
            // applied today; the order of these calls is kept for when that
            // changes.
            int policy = SCHED_OTHER;
            pthread_attr_getschedpolicy(&attributes, &policy);
            if (policy == SCHED_OTHER) {
                NKW_LOGD(kTag, "The current scheduling policy does not support priority \n");
            } else if (record->attr.priority < kLowestPriority ||
                       record->attr.priority > kHighestPriority) {
                NKW_LOGE(kTag, "The priority parameter is out of range \n");
                code = kPriorityOutOfRange;
                break;
            } else {
                sched_param param{};
                param.sched_priority = static_cast<int>(record->attr.priority);
                if (pthread_attr_setschedparam(&attributes, &param) != 0) {
                    pthread_attr_destroy(&attributes);
                    NKW_LOGE(kTag, "The setschedparam failed \n");
                    code = NKW_PAL_THREAD_SCHEDPARAM_FAILED;
                    break;
                }
            }
            if (pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED) != 0) {
                pthread_attr_destroy(&attributes);
                NKW_LOGE(kTag, "The setdetachstate failed \n");
                code = -1;
                break;
            }
            code = pthread_create(record->thread_id, &attributes, nkw_pal_thread_callbackInner,
                                  record.get());
            pthread_attr_destroy(&attributes);
        } while (false);
    } else {
        code =
            pthread_create(record->thread_id, nullptr, nkw_pal_thread_callbackInner, record.get());
        if (code == 0 && pthread_detach(*record->thread_id) != 0) {
            NKW_LOGW(kTag, "The pthread_detach failed. \n");
        }
    }
    if (code != 0) {
        NKW_LOGE(kTag, "%s thread create failed ret: %d  \n", thread_name, code);
        return -1;  // the cell and the record are freed on the way out
    }
    // From here the record belongs to the running thread and to the handle.
    pthread_t id = *id_cell.release();
    NKW_LOGI(kTag, "%s thread create success, thread_id: 0x%x \n", thread_name, shown(id));
    *out = record.release();
    return 0;
}

int32_t nkw_pal_thread_delete(thread_info **handle) {
    // A null address is answered like a null handle rather than crashing.
    thread_info *info = handle != nullptr ? *handle : nullptr;
    if (info == nullptr || info->thread_id == nullptr) {
        NKW_LOGE(kTag, "th is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    pthread_t id = *info->thread_id;
    NKW_LOGI(kTag, "delete thread_id: 0x%x \n", shown(id));
    if (pthread_cancel(id) != 0) {
        NKW_LOGE(kTag, "delete thread_id: 0x%x failed. \n", shown(id));
        return NKW_PAL_THREAD_CANCEL_REFUSED;
    }
    NKW_LOGI(kTag, "delete thread_id: 0x%x success. \n", shown(id));
    auto record = nkw::HeapRecord<thread_info>::adopt(info);
    nkw::HeapRecord<pthread_t>::adopt(info->thread_id).reset();
    info->thread_id = nullptr;
    record.reset();
    *handle = nullptr;
    return 0;
}

int32_t nkw_pal_thread_msleep(uint32_t ms) {
    // The product is taken in 32 bits: callers know that values above
    // 4294967 ms wrap.
    return usleep(static_cast<useconds_t>(ms * 1000u));
}

int32_t nkw_pal_thread_suspend(void *) {
    return NKW_PAL_THREAD_UNSUPPORTED;
}

int32_t nkw_pal_thread_resume(void *) {
    return NKW_PAL_THREAD_UNSUPPORTED;
}

pthread_t nkw_pal_thread_id(thread_info *handle) {
    if (handle == nullptr || handle->thread_id == nullptr) {
        NKW_LOGE(kTag, "the th is NULL \n");
        return 0;
    }
    pthread_t id = *handle->thread_id;
    NKW_LOGI(kTag, "get thread_id: 0x%x \n", shown(id));
    return id;
}

}  // extern "C"
