// Base64 encoding, twelve input bits per table lookup.
#include <cstring>

#include "codec/base64_alphabet.h"
#include "diag/log.h"
#include "nkw_pal/codec.h"

namespace {

constexpr const char *kTag = "CODETRANS";

// Two output characters for every 12-bit value: half the lookups of a
// character-at-a-time encoder.
struct PairTable {
    char pair[4096][2];
};

constexpr PairTable make_pair_table() {
    PairTable table{};
    for (int v = 0; v < 4096; ++v) {
        table.pair[v][0] = nkw::codec::kBase64Alphabet[v >> 6];
        table.pair[v][1] = nkw::codec::kBase64Alphabet[v & 63];
    }
    return table;
}

constexpr PairTable kPairs = make_pair_table();

// 4 * ceil(n / 3), in the form existing callers compute it.
uint32_t text_length(uint32_t n) {
    uint32_t length = n * 4 / 3;
    if (n % 3 == 1) length += 3;
    if (n % 3 == 2) length += 2;
    return length;
}

void encode_group(uint32_t bits, char *out) {
    std::memcpy(out, kPairs.pair[bits >> 12], 2);
    std::memcpy(out + 2, kPairs.pair[bits & 0xFFF], 2);
}

uint32_t group_bits(const uint8_t *in) {
    return static_cast<uint32_t>(in[0]) << 16 | static_cast<uint32_t>(in[1]) << 8 | in[2];
}

}  // namespace

extern "C" int32_t nkw_pal_base64_encode(char *out, uint32_t size, const uint8_t *in, uint32_t n) {
    if (n == 0 || in == nullptr || out == nullptr || n > NKW_PAL_BASE64_ENCODE_MAX) {
        NKW_LOGE(kTag, "input num error \n");
        return -1;
    }
    const uint32_t length = text_length(n);
    // length == size passes; the terminator then takes index size.
    if (length > size) {
        NKW_LOGE(kTag, "dsize too small \n");
        return -1;
    }

    uint32_t i = 0;
    char *at = out;
    for (; n - i >= 6; i += 6, at += 8) {
        encode_group(group_bits(in + i), at);
        encode_group(group_bits(in + i + 3), at + 4);
    }
    for (; n - i >= 3; i += 3, at += 4) encode_group(group_bits(in + i), at);

    const uint32_t rest = n - i;
    if (rest != 0) {
        uint8_t last[3] = {in[i], rest == 2 ? in[i + 1] : uint8_t{0}, 0};
        encode_group(group_bits(last), at);
        at[3] = nkw::codec::kBase64Pad;
        if (rest == 1) at[2] = nkw::codec::kBase64Pad;
    }
    out[length] = '\0';
    return static_cast<int32_t>(length);
}
