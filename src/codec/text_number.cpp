// Decimal and radix conversions between text and 32-bit numbers.
#include <cmath>
#include <cstdlib>

#include "diag/log.h"
#include "nkw_pal/codec.h"

namespace {

constexpr const char *kCodeTag = "CODETRANS";
constexpr const char *kUtilsTag = "UTILS";

constexpr char kDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr int32_t kMinRadix = 2;
constexpr int32_t kMaxRadix = 36;
constexpr int kDecimal = 10;

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Digits least significant first, then reversed in place; returns the end.
char *write_unsigned(uint32_t value, uint32_t radix, char *at) {
    char *first = at;
    do {
        *at++ = kDigits[value % radix];
        value /= radix;
    } while (value != 0);
    for (char *lo = first, *hi = at - 1; lo < hi; ++lo, --hi) {
        char swap = *lo;
        *lo = *hi;
        *hi = swap;
    }
    return at;
}

// Both arguments of a text-to-number conversion; false, once the missing
// one is logged under the caller's name.
bool arguments_given(const char *func, const char *text, const void *result) {
    if (text == nullptr) {
        NKW_LOGE_IN(func, kUtilsTag, "str is null \n");
        return false;
    }
    if (result == nullptr) {
        NKW_LOGE_IN(func, kUtilsTag, "result is null \n");
        return false;
    }
    return true;
}

}  // namespace

extern "C" {

int32_t nkw_pal_atoi(const char *text) {
    if (text == nullptr) {
        NKW_LOGE(kCodeTag, "src is NULL \n");
        return -1;
    }
    while (*text == ' ') ++text;
    bool negative = false;
    if (*text == '-' || *text == '+') negative = (*text++ == '-');
    // Unsigned so that an over-long number wraps instead of overflowing.
    uint32_t value = 0;
    while (is_digit(*text)) value = value * kDecimal + static_cast<uint32_t>(*text++ - '0');
    // Existing callers see this line for "0" as well; it is kept.
    if (value == 0) NKW_LOGE(kCodeTag, "there are no numbers in the string \n");
    return static_cast<int32_t>(negative ? 0u - value : value);
}

char *nkw_pal_itoa(int32_t value, char *buf, int32_t radix) {
    if (radix == 0) {
        NKW_LOGE(kCodeTag, "The input radix is NULL \n");
        return nullptr;
    }
    if (radix < kMinRadix || radix > kMaxRadix) {
        NKW_LOGE(kCodeTag, "The input radix is invalid %d \n", radix);
        return nullptr;
    }
    if (buf == nullptr) {
        NKW_LOGE(kCodeTag, "The output buffer is NULL \n");
        return nullptr;
    }
    char *at = buf;
    uint32_t magnitude = static_cast<uint32_t>(value);
    // Only decimal carries a sign; other radices show the 32-bit pattern.
    if (radix == kDecimal && value < 0) {
        *at++ = '-';
        magnitude = 0u - magnitude;
    }
    *write_unsigned(magnitude, static_cast<uint32_t>(radix), at) = '\0';
    return buf;
}

int32_t nkw_pal_strtoint32(const char *text, int32_t *result) {
    if (!arguments_given(__func__, text, result)) return -1;
    char *end = nullptr;
    long value = std::strtol(text, &end, kDecimal);
    if (*end != '\0') {
        NKW_LOGE(kUtilsTag, "invalid int str:%s \n", text);
        return -1;
    }
    *result = static_cast<int32_t>(static_cast<uint32_t>(value));
    return 0;
}

int32_t nkw_pal_strtouint32(const char *text, uint32_t *result) {
    if (!arguments_given(__func__, text, result)) return -1;
    char *end = nullptr;
    unsigned long value = std::strtoul(text, &end, kDecimal);
    if (*end != '\0') {
        NKW_LOGE(kUtilsTag, "invalid int str:%s \n", text);
        return -1;
    }
    *result = static_cast<uint32_t>(value);
    return 0;
}

int32_t nkw_pal_strtoint32_range(const char *text, int32_t min, int32_t max, int32_t *result) {
    int32_t value = 0;
    int32_t status = nkw_pal_strtoint32(text, &value);
    if (value < min || value > max) {
        NKW_LOGE(kUtilsTag, "int out of range: val=%u, min=%u, max=%u \n",
                 static_cast<uint32_t>(value), static_cast<uint32_t>(min),
                 static_cast<uint32_t>(max));
        return -1;
    }
    // Checked only here, so the conversion and range messages come first.
    if (result == nullptr) {
        NKW_LOGE(kUtilsTag, "result is null \n");
        return -1;
    }
    // A failed conversion leaves 0, which is stored when 0 is in range.
    *result = value;
    return status;
}

int64_t nkw_pal_pow(int32_t base, int32_t exponent) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    double value = std::pow(static_cast<double>(base), static_cast<double>(exponent));
    if (std::isnan(value)) return 0;
    if (value >= kLimit) return INT64_MAX;
    if (value <= -kLimit) return INT64_MIN;
    return static_cast<int64_t>(value);
}

}  // extern "C"
