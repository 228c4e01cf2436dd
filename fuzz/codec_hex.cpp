// Hex text to bytes (hex2bin, hex2str) on arbitrary text, output buffers of
// exactly `size` bytes; hex2bin's output is checked against a byte-by-byte
// reading of the text.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "nkw_pal.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

namespace {

int hex_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t n) {
    if (n < 1 || n > 4096) return 0;
    const char *hex = reinterpret_cast<const char *>(data + 1);
    const uint32_t len = static_cast<uint32_t>(n - 1);
    const uint32_t size = len / 2 + data[0] % 4;  // sometimes one short for hex2str

    std::unique_ptr<uint8_t[]> out(new uint8_t[size]);
    const int32_t status = nkw_pal_hex2bin(hex, len, out.get(), size);
    if (len % 2 != 0 || size < len / 2) {
        if (status != -1) __builtin_trap();
    } else {
        uint32_t i = 0;
        for (; i < len && hex_value(hex[i]) >= 0; ++i) {
        }
        if (status != (i == len ? 0 : -1)) __builtin_trap();
        for (uint32_t b = 0; b < size; ++b) {
            const uint32_t hi = 2 * b, lo = 2 * b + 1;
            const int want =
                (hi < i ? hex_value(hex[hi]) << 4 : 0) | (lo < i ? hex_value(hex[lo]) : 0);
            if (out[b] != want) __builtin_trap();
        }
    }

    std::unique_ptr<char[]> text(new char[size]);
    std::memset(text.get(), 0, size);
    const int32_t count = nkw_pal_hex2str(hex, len, text.get(), size);
    const bool ok = len != 0 && len % 2 == 0 && size >= len / 2 + 1;
    if (count != (ok ? static_cast<int32_t>(len / 2) : -1)) __builtin_trap();
    if (ok && text[len / 2] != '\0') __builtin_trap();
    return 0;
}
