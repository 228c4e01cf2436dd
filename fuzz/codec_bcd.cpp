// Telephony and raw BCD on arbitrary bytes and text, each output buffer of
// exactly its documented capacity.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "nkw_pal.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t n) {
    if (n < 1 || n > 4096) return 0;
    const uint8_t *in = data + 1;
    const uint32_t len = static_cast<uint32_t>(n - 1);
    const uint32_t size = data[0] % 2 == 0 ? 2 * len : len / 2 + data[0] % 5;

    // BCD to text: capacity size + 2.
    std::unique_ptr<char[]> text(new char[size + 2]);
    uint32_t text_len = 0;
    if (nkw_pal_bcd_to_ascii(in, len, text.get(), size, &text_len) == 0 &&
        (text_len > size + 1 || std::strlen(text.get()) != text_len)) {
        __builtin_trap();
    }

    // Text to BCD and back: capacity size; the round trip is exact for
    // valid texts that fit.
    const char *chars = reinterpret_cast<const char *>(in);
    std::unique_ptr<uint8_t[]> bcd(new uint8_t[size]);
    uint32_t count = 0;
    if (nkw_pal_ascii_to_bcd(chars, len, bcd.get(), size, &count) == 0) {
        if (count != (len + 1) / 2) __builtin_trap();
        if (count <= size && count > 0) {
            std::unique_ptr<char[]> back(new char[2 * count + 2]);
            uint32_t back_len = 0;
            if (nkw_pal_bcd_to_ascii(bcd.get(), count, back.get(), 2 * count, &back_len) != 0)
                __builtin_trap();
            // 'P' and 'W' come back in lower case.
            for (uint32_t i = 0; i < len; ++i) {
                char c = chars[i] == 'P' ? 'p' : chars[i] == 'W' ? 'w' : chars[i];
                if (back_len != len || back[i] != c) __builtin_trap();
            }
        }
    }

    // Raw BCD: capacities 2 * count and size + 1; the text must be terminated.
    const uint8_t raw_count = static_cast<uint8_t>(len);
    std::unique_ptr<char[]> hex(new char[2 * raw_count]);
    nkw_pal_decode_rawbcd_to_ascii(in, hex.get(), raw_count);
    const std::string terminated(chars, len);
    const uint8_t raw_size = data[0];
    std::unique_ptr<uint8_t[]> raw(new uint8_t[raw_size + 1u]);
    nkw_pal_encode_ascii_to_rawbcd(terminated.c_str(), raw.get(), raw_size);
    return 0;
}
