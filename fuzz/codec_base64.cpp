// Base64 decode of arbitrary text against the plain reference, and the
// encode/decode round trip of arbitrary bytes. Output buffers are exactly as
// large as the header's capacities so that any overrun is a sanitizer report.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "../tests/codec/codec_reference.h"
#include "nkw_pal.h"

namespace ref = nkw::test::ref;

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t n) {
    if (n < 1 || n > 4096) return 0;
    // First byte: how much smaller than the text the output is.
    const std::string text(reinterpret_cast<const char *>(data + 1), n - 1);
    const uint32_t len = static_cast<uint32_t>(text.size());
    const uint32_t size = len > data[0] % 16 ? len - data[0] % 16 : 0;

    std::unique_ptr<uint8_t[]> out(new uint8_t[size]);
    std::memset(out.get(), 0xA5, size);
    ref::Bytes want(2 * len + 16, 0xA5);
    const int32_t expected = len == 0 ? -1 : ref::base64_decode(want.data(), size, text);
    const int32_t got = nkw_pal_base64_decode(out.get(), size, text.data(), len);
    if (got != expected || std::memcmp(out.get(), want.data(), size) != 0) __builtin_trap();

    // Round trip of the same bytes: exactly L + 1 bytes of text.
    if (len == 0) return 0;
    const std::string encoded = ref::base64_encode(data + 1, len);
    const uint32_t length = static_cast<uint32_t>(encoded.size());
    std::unique_ptr<char[]> textbuf(new char[length + 1]);
    if (nkw_pal_base64_encode(textbuf.get(), length, data + 1, len) !=
            static_cast<int32_t>(length) ||
        encoded.compare(0, length, textbuf.get(), length) != 0 || textbuf[length] != '\0') {
        __builtin_trap();
    }
    std::unique_ptr<uint8_t[]> back(new uint8_t[len]);
    if (nkw_pal_base64_decode(back.get(), len, textbuf.get(), length) !=
            static_cast<int32_t>(len) ||
        std::memcmp(back.get(), data + 1, len) != 0) {
        __builtin_trap();
    }
    return 0;
}
