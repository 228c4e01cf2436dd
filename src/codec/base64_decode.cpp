// Base64 decoding: a validation pass over the whole text, then a decoding
// pass, so that an invalid text leaves the output untouched.
#include "codec/base64_alphabet.h"
#include "diag/log.h"
#include "nkw_pal/codec.h"

namespace {

using nkw::codec::kBase64DecodeMap;
using nkw::codec::kBase64Invalid;
using nkw::codec::kBase64Pad;
using nkw::codec::kBase64PadValue;

constexpr const char *kTag = "CODETRANS";
constexpr uint32_t kMaxPads = 2;
constexpr uint32_t kGroupChars = 4;

uint8_t map_of(char c) {
    return kBase64DecodeMap.value[static_cast<uint8_t>(c)];
}

bool is_data(char c) {
    return map_of(c) < kBase64PadValue;
}

// Length of the leading run of data characters, eight at a time: any pad,
// invalid or non-ASCII character sets bit 6 of the OR of their map values.
uint32_t data_prefix(const char *in, uint32_t n) {
    uint32_t i = 0;
    for (; n - i >= 8; i += 8) {
        uint8_t any = 0;
        for (uint32_t k = 0; k < 8; ++k) any |= map_of(in[i + k]);
        if (any >= kBase64PadValue) break;
    }
    while (i < n && is_data(in[i])) ++i;
    return i;
}

// Counts the accepted characters of in[from..n), or returns -1 for an
// invalid text. Blanks may only end a line or the text; lines end in CR LF
// or LF; at most two pads, and no data after a pad.
int64_t count_valid(const char *in, uint32_t from, uint32_t n) {
    int64_t accepted = from;
    uint32_t pads = 0;
    for (uint32_t i = from; i < n; ++i) {
        uint32_t blanks = 0;
        while (i < n && in[i] == ' ') {
            ++i;
            ++blanks;
        }
        if (i == n) break;
        if (n - i >= 2 && in[i] == '\r' && in[i + 1] == '\n') continue;
        if (in[i] == '\n') continue;
        if (blanks != 0) return -1;
        uint8_t value = map_of(in[i]);
        if (value == kBase64PadValue && ++pads > kMaxPads) return -1;
        if (value == kBase64Invalid) return -1;
        if (value < kBase64PadValue && pads != 0) return -1;
        ++accepted;
    }
    return accepted;
}

// The whole-group run of data characters; returns the bytes written.
uint32_t decode_data_groups(const char *in, uint32_t chars, uint8_t *out) {
    uint8_t *at = out;
    for (uint32_t i = 0; i < chars; i += kGroupChars, at += 3) {
        uint32_t bits = static_cast<uint32_t>(map_of(in[i])) << 18 |
                        static_cast<uint32_t>(map_of(in[i + 1])) << 12 |
                        static_cast<uint32_t>(map_of(in[i + 2])) << 6 | map_of(in[i + 3]);
        at[0] = static_cast<uint8_t>(bits >> 16);
        at[1] = static_cast<uint8_t>(bits >> 8);
        at[2] = static_cast<uint8_t>(bits);
    }
    return static_cast<uint32_t>(at - out);
}

// The rest of a validated text, from a group boundary: blanks and line
// breaks skipped, each pad shortening its group by one byte.
uint32_t decode_rest(const char *in, uint32_t from, uint32_t n, uint8_t *out) {
    uint8_t *at = out;
    uint32_t bits = 0;
    uint32_t in_group = 0;
    uint32_t group_bytes = 3;
    for (uint32_t i = from; i < n; ++i) {
        char c = in[i];
        if (c == ' ' || c == '\r' || c == '\n') continue;
        uint8_t value = map_of(c);
        if (value == kBase64PadValue) --group_bytes;
        bits = bits << 6 | (value & 0x3F);
        if (++in_group < kGroupChars) continue;
        in_group = 0;
        if (group_bytes > 0) *at++ = static_cast<uint8_t>(bits >> 16);
        if (group_bytes > 1) *at++ = static_cast<uint8_t>(bits >> 8);
        if (group_bytes > 2) *at++ = static_cast<uint8_t>(bits);
    }
    return static_cast<uint32_t>(at - out);
}

uint32_t expected_length(const char *in, uint32_t n) {
    uint32_t expected = n * 3 / 4;
    if (in[n - 1] == kBase64Pad) expected -= (in[n - 2] == kBase64Pad) ? 2 : 1;
    return expected;
}

}  // namespace

extern "C" int32_t nkw_pal_base64_decode(uint8_t *out, uint32_t size, const char *in, uint32_t n) {
    if (n == 0 || n % kGroupChars != 0 || in == nullptr || out == nullptr ||
        n > NKW_PAL_BASE64_DECODE_MAX) {
        NKW_LOGE(kTag, "The input parameters is incorrect \n");
        return -1;
    }
    const uint32_t expected = expected_length(in, n);
    if (expected > size) {
        NKW_LOGE(kTag, "dsize too small \n");
        return -1;
    }

    const uint32_t prefix = data_prefix(in, n);
    const int64_t accepted = count_valid(in, prefix, n);
    if (accepted < 0) return -1;
    if (accepted == 0) return 0;

    // Whole groups never make more bytes than `expected`, so they fit `size`.
    const uint32_t fast_chars = prefix - prefix % kGroupChars;
    uint32_t written = decode_data_groups(in, fast_chars, out);
    written += decode_rest(in, fast_chars, n, out + written);

    // Existing callers get the zero `expected` bytes past the decoded ones;
    // it is written only where the caller's buffer has room for it.
    if (static_cast<uint64_t>(written) + expected < size) out[written + expected] = 0;
    return static_cast<int32_t>(expected);
}
