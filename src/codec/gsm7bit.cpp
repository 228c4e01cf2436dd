// GSM 7-bit packing of SMS user data: eight septets in seven bytes, the
// first septet in the low bits. Whole blocks of eight go through a 64-bit
// word; the edges (and anything near the size bound) septet by septet.
#include <cstring>

#include "nkw_pal/codec.h"

namespace {

constexpr uint32_t kBlockChars = 8;
constexpr uint32_t kBlockBytes = 7;
constexpr uint8_t kSpareCarriageReturn = 0x0D << 1;  // CR in the top seven bits

uint64_t load_block_bytes(const uint8_t *in) {
    uint64_t word = 0;
    for (uint32_t k = 0; k < kBlockBytes; ++k) word |= static_cast<uint64_t>(in[k]) << (8 * k);
    return word;
}

void store_block_bytes(uint64_t word, uint8_t *out) {
    for (uint32_t k = 0; k < kBlockBytes; ++k) out[k] = static_cast<uint8_t>(word >> (8 * k));
}

// Eight characters ORed in at 7-bit steps; a character with its top bit
// set overlaps the next one, as the septet-by-septet loop also does.
void encode_block(const uint8_t *chars, uint8_t *out) {
    uint64_t word = 0;
    for (uint32_t k = 0; k < kBlockChars; ++k) word |= static_cast<uint64_t>(chars[k]) << (7 * k);
    store_block_bytes(word, out);
}

void decode_block(const uint8_t *packed, uint8_t *out) {
    const uint64_t word = load_block_bytes(packed);
    uint8_t chars[kBlockChars];
    for (uint32_t k = 0; k < kBlockChars; ++k) chars[k] = (word >> (7 * k)) & 0x7F;
    std::memcpy(out, chars, kBlockChars);
}

}  // namespace

extern "C" {

int32_t nkw_pal_7bit_encode(const uint8_t *chars, uint32_t n, uint8_t *out, uint32_t size,
                            uint32_t *count_out) {
    if (chars == nullptr || out == nullptr || count_out == nullptr) {
        if (count_out != nullptr) *count_out = 0;
        return 0;
    }
    uint32_t i = 0;
    uint32_t count = 0;  // bytes counted; also the index of the byte being filled
    // A block is whole when its eighth character still passes the size test.
    while (n - i >= kBlockChars && size >= kBlockBytes && count <= size - kBlockBytes) {
        encode_block(chars + i, out + count);
        i += kBlockChars;
        count += kBlockBytes;
    }

    uint8_t carry = 0;
    uint32_t shift = kBlockChars - 1;  // as left by a whole block
    bool processed = i > 0;
    for (; i < n && count < size; ++i) {
        processed = true;
        shift = i % kBlockChars;
        const uint8_t c = chars[i];
        if (shift == 0) {
            out[count] = c;
            carry = c;
            continue;
        }
        out[count] = static_cast<uint8_t>(c << (kBlockChars - shift) | carry);
        ++count;
        carry = static_cast<uint8_t>(c >> shift);
        if (shift < kBlockChars - 1) out[count] = carry;
    }
    const uint32_t current = count;
    // The byte holding the last septet's carry counts too.
    if (processed && shift < kBlockChars - 1) ++count;
    // Seven spare bits in the last byte: fill them with CR so that the
    // receiver does not read them as an '@'.
    if ((static_cast<uint64_t>(n) + 1) % kBlockChars == 0) out[current] |= kSpareCarriageReturn;
    *count_out = count;
    return 0;
}

int32_t nkw_pal_7bit_decode(const uint8_t *packed, uint32_t n, uint8_t *out, uint32_t size,
                            uint32_t *count_out) {
    if (packed == nullptr || out == nullptr || count_out == nullptr) {
        if (count_out != nullptr) *count_out = 0;
        return 0;
    }
    uint32_t i = 0;
    uint32_t count = 0;
    // A block is whole when its seventh byte still passes the size test; its
    // eighth septet may then take index `size`.
    while (n - i >= kBlockBytes && size >= kBlockBytes && count <= size - kBlockBytes) {
        decode_block(packed + i, out + count);
        i += kBlockBytes;
        count += kBlockChars;
    }

    uint32_t shift = 0;
    uint8_t carry = 0;
    for (; i < n && count < size; ++i) {
        const uint8_t byte = packed[i];
        out[count++] = static_cast<uint8_t>(((byte << shift) & 0x7F) | (carry & 0x7F));
        carry = static_cast<uint8_t>(byte >> (kBlockBytes - shift));
        if (++shift == kBlockBytes) {
            out[count++] = carry;
            shift = 0;
            carry = 0;
        }
    }
    *count_out = count;
    return 0;
}

}  // extern "C"
