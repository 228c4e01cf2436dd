// Equality of buffers and texts, by length first.
#include <strings.h>

#include <cstring>

#include "nkw_pal/codec.h"

namespace {

constexpr int32_t kEqual = 1;
constexpr int32_t kDifferent = 0;

// Lengths that describe no readable bytes settle the answer before any read.
bool usable(const void *a, int32_t len_a, const void *b, int32_t len_b) {
    return len_a == len_b && len_a >= 0 && (len_a == 0 || (a != nullptr && b != nullptr));
}

}  // namespace

extern "C" {

int32_t nkw_pal_mem_equal(const void *a, int32_t len_a, const void *b, int32_t len_b) {
    if (!usable(a, len_a, b, len_b)) return kDifferent;
    if (len_a == 0) return kEqual;
    return std::memcmp(a, b, static_cast<size_t>(len_a)) == 0 ? kEqual : kDifferent;
}

int32_t nkw_pal_nstr_equal(const char *a, int32_t len_a, const char *b, int32_t len_b,
                           uint8_t case_sensitive) {
    if (!usable(a, len_a, b, len_b)) return kDifferent;
    if (len_a == 0) return kEqual;
    size_t n = static_cast<size_t>(len_a);
    int diff = case_sensitive != 0 ? std::strncmp(a, b, n) : strncasecmp(a, b, n);
    return diff == 0 ? kEqual : kDifferent;
}

int32_t nkw_pal_str_equal(const char *a, const char *b, uint8_t case_sensitive) {
    if (a == nullptr || b == nullptr) return a == b ? kEqual : kDifferent;
    int diff = case_sensitive != 0 ? std::strcmp(a, b) : strcasecmp(a, b);
    return diff == 0 ? kEqual : kDifferent;
}

}  // extern "C"
