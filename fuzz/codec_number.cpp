// Decimal text to numbers (strtoint32, strtouint32, strtoint32_range, atoi)
// on arbitrary text, checked against the C library.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "nkw_pal.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t n) {
    if (n > 256) return 0;
    const std::string text(reinterpret_cast<const char *>(data), n);
    const char *s = text.c_str();

    char *end = nullptr;
    const long want = std::strtol(s, &end, 10);
    const bool whole = *end == '\0';
    int32_t value = 7;
    const int32_t status = nkw_pal_strtoint32(s, &value);
    if (status != (whole ? 0 : -1)) __builtin_trap();
    if (whole && value != static_cast<int32_t>(static_cast<uint32_t>(want))) __builtin_trap();

    uint32_t uvalue = 7;
    const unsigned long uwant = std::strtoul(s, &end, 10);
    if (nkw_pal_strtouint32(s, &uvalue) != (*end == '\0' ? 0 : -1)) __builtin_trap();
    if (*end == '\0' && uvalue != static_cast<uint32_t>(uwant)) __builtin_trap();

    int32_t ranged = 7;
    nkw_pal_strtoint32_range(s, -1000, 1000, &ranged);
    if (ranged != 7 && (ranged < -1000 || ranged > 1000)) __builtin_trap();

    nkw_pal_atoi(s);
    char digits[NKW_PAL_ITOA_BUF_SIZE];
    for (int32_t radix : {2, 10, 16, 36}) {
        if (nkw_pal_itoa(nkw_pal_atoi(s), digits, radix) != digits) __builtin_trap();
    }
    return 0;
}
