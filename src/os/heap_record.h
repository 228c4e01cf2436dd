// HeapRecord<T>: sole owner of one block from the heap wrappers.
//
// Every allocation the library makes is logged at the call site ("malloc %p
// %d" after it, "free %p" before the free, tag MEM, under the allocating
// function's name and line). Holding the block in a HeapRecord makes both
// lines and the free happen on every path, including early returns.
#pragma once

#include <cstdint>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/os.h"

namespace nkw {

template <typename T>
class HeapRecord {
   public:
    HeapRecord() = default;

    // Allocates `size` bytes (sizeof(T) by default), zeroed when `zeroed`.
    static HeapRecord allocate(uint32_t size = sizeof(T), bool zeroed = true,
                               const char *function = __builtin_FUNCTION(),
                               int line = __builtin_LINE()) {
        HeapRecord record(function, line);
        record.block_ = static_cast<T *>(nkw_pal_malloc(size));
        if (diag::enabled(NKW_PAL_LOG_INFO)) {
            nkw_pal_logi("MEM", "[%s:%d]-malloc %p %d\n", function, line,
                         static_cast<void *>(record.block_), static_cast<int>(size));
        }
        if (record.block_ != nullptr && zeroed) std::memset(record.block_, 0, size);
        return record;
    }

    // Takes over a block that was allocated elsewhere (a handle being deleted).
    static HeapRecord adopt(T *block, const char *function = __builtin_FUNCTION(),
                            int line = __builtin_LINE()) {
        HeapRecord record(function, line);
        record.block_ = block;
        return record;
    }

    HeapRecord(HeapRecord &&other) noexcept
        : block_(other.block_), function_(other.function_), line_(other.line_) {
        other.block_ = nullptr;
    }
    HeapRecord &operator=(HeapRecord &&other) noexcept {
        if (this != &other) {
            reset();
            block_ = other.block_;
            function_ = other.function_;
            line_ = other.line_;
            other.block_ = nullptr;
        }
        return *this;
    }
    HeapRecord(const HeapRecord &) = delete;
    HeapRecord &operator=(const HeapRecord &) = delete;
    ~HeapRecord() { reset(); }

    explicit operator bool() const { return block_ != nullptr; }
    T *get() const { return block_; }
    T *operator->() const { return block_; }
    T &operator*() const { return *block_; }

    // Frees now, where the order of log lines matters.
    void reset() {
        if (block_ == nullptr) return;
        if (diag::enabled(NKW_PAL_LOG_INFO)) {
            nkw_pal_logi("MEM", "[%s:%d]-free %p\n", function_, line_, static_cast<void *>(block_));
        }
        nkw_pal_free(block_);
        block_ = nullptr;
    }

    // Hands the block to a longer-lived owner (a caller's handle variable, the
    // modem library for an asynchronous request).
    [[nodiscard]] T *release() {
        T *block = block_;
        block_ = nullptr;
        return block;
    }

   private:
    HeapRecord(const char *function, int line) : function_(function), line_(line) {}

    T *block_ = nullptr;
    const char *function_ = "";
    int line_ = 0;
};

}  // namespace nkw
