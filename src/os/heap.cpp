// Heap wrappers: the library's only way to the C allocator.
#include <cstdlib>

#include "diag/log.h"
#include "nkw_pal/os.h"

namespace {
constexpr const char *kTag = "MEM";
}

extern "C" {

void *nkw_pal_malloc(uint32_t size) {
    if (size == 0) {
        NKW_LOGE(kTag, "input param error! \n");
        return nullptr;
    }
    void *block = std::malloc(size);
    if (block == nullptr) {
        NKW_LOGE(kTag, "malloc failed! \n");
        return nullptr;
    }
    NKW_LOGD(kTag, "malloc: %p %d \n", block, static_cast<int>(size));
    return block;
}

void *nkw_pal_calloc(uint32_t count, uint32_t size) {
    if (count == 0 || size == 0) {
        NKW_LOGE(kTag, "input param error! \n");
        return nullptr;
    }
    void *block = std::calloc(count, size);
    if (block == nullptr) {
        NKW_LOGE(kTag, "calloc failed! \n");
        return nullptr;
    }
    NKW_LOGD(kTag, "calloc: %p %d %d \n", block, static_cast<int>(count), static_cast<int>(size));
    return block;
}

void *nkw_pal_realloc(void *ptr, uint32_t size) {
    if (ptr == nullptr && size == 0) {
        NKW_LOGE(kTag, "input param error! realloc space of size zero \n");
        return nullptr;
    }
    // A zero size goes to the C library as it is; whatever it returns is fine.
    void *block = std::realloc(ptr, size);
    if (block != nullptr || size == 0) {
        NKW_LOGD(kTag, "realloc: %p %d \n", block, static_cast<int>(size));
        return block;
    }
    NKW_LOGE(kTag, "realloc failed! \n");
    return nullptr;
}

void nkw_pal_free(void *ptr) {
    if (ptr == nullptr) {
        NKW_LOGW(kTag, "ptr no need to free! \n");
        return;
    }
    NKW_LOGD(kTag, "free: %p \n", ptr);
    std::free(ptr);
}

int32_t nkw_pal_getHeapInfo(void) {
    return NKW_PAL_HEAP_INFO_UNSUPPORTED;
}

}  // extern "C"
