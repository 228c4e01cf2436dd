// GSM 7-bit packing of arbitrary bytes against the plain reference, with
// output buffers of exactly the documented capacity (size + 1).
#include <cstdint>
#include <cstring>
#include <memory>

#include "../tests/codec/codec_reference.h"
#include "nkw_pal.h"

namespace ref = nkw::test::ref;

namespace {

using Codec = int32_t (*)(const uint8_t *, uint32_t, uint8_t *, uint32_t, uint32_t *);

template <typename Reference>
void compare(Codec codec, Reference reference, const uint8_t *in, uint32_t n, uint32_t size) {
    std::unique_ptr<uint8_t[]> out(new uint8_t[size + 1]);
    ref::Bytes want(size + 1, 0xA5);
    std::memset(out.get(), 0xA5, size + 1);
    uint32_t count = 0;
    if (codec(in, n, out.get(), size, &count) != 0) __builtin_trap();
    if (count != reference(in, n, want.data(), size)) __builtin_trap();
    if (std::memcmp(out.get(), want.data(), size + 1) != 0) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t n) {
    if (n < 1 || n > 2048) return 0;
    const uint8_t *in = data + 1;
    const uint32_t len = static_cast<uint32_t>(n - 1);
    // First byte: the output size, as a share of what the input needs.
    const uint32_t size = len * 9 / 8 * data[0] / 255;
    compare(nkw_pal_7bit_encode, ref::septets_encode, in, len, size);
    compare(nkw_pal_7bit_decode, ref::septets_decode, in, len, size);
    return 0;
}
