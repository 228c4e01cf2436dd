// Plain, one-step-at-a-time versions of the optimised codec routines, written
// straight from their definitions, to compare the library against.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace nkw::test::ref {

using Bytes = std::vector<uint8_t>;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline uint16_t crc16_bitwise(const uint8_t *buf, size_t n) {
    uint16_t reg = 0;
    for (size_t i = 0; i < n; ++i) {
        reg ^= static_cast<uint16_t>(buf[i] << 8);
        for (int bit = 0; bit < 8; ++bit) reg = (reg & 0x8000) ? (reg << 1) ^ 0x1021 : reg << 1;
    }
    return reg;
}

// The text without its terminator.
inline std::string base64_encode(const uint8_t *in, size_t n) {
    std::string text;
    uint32_t bits = 0, held = 0;
    for (size_t i = 0; i < n; ++i) {
        bits = bits << 8 | in[i];
        for (held += 8; held >= 6; held -= 6) text += kAlphabet[(bits >> (held - 6)) & 63];
    }
    if (held > 0) text += kAlphabet[(bits << (6 - held)) & 63];
    return text.append((4 - text.size() % 4) % 4, '=');
}

// `out` must hold the terminator wherever it falls: 2 * n + 1 bytes.
inline int32_t base64_decode(uint8_t *out, uint32_t size, const std::string &in) {
    const uint32_t n = static_cast<uint32_t>(in.size());
    if (n == 0 || n % 4 != 0) return -1;
    const uint32_t expected = n * 3 / 4 - (in[n - 1] != '=' ? 0 : in[n - 2] == '=' ? 2 : 1);
    if (expected > size) return -1;
    auto value = [](char c) -> int {
        const char *at = c == '\0' ? nullptr : std::strchr(kAlphabet, c);
        return c == '=' ? 64 : at == nullptr ? -1 : static_cast<int>(at - kAlphabet);
    };
    uint32_t accepted = 0, pads = 0;
    for (uint32_t i = 0; i < n; ++i) {
        uint32_t blanks = 0;
        for (; i < n && in[i] == ' '; ++i) ++blanks;
        if (i == n) break;
        if ((n - i >= 2 && in[i] == '\r' && in[i + 1] == '\n') || in[i] == '\n') continue;
        int v = value(in[i]);
        if (blanks != 0 || v < 0 || (v == 64 && ++pads > 2) || (v < 64 && pads != 0)) return -1;
        ++accepted;
    }
    if (accepted == 0) return 0;
    uint32_t at = 0, bits = 0, chars = 0, group = 3;
    for (char c : in) {
        if (c == ' ' || c == '\r' || c == '\n') continue;
        group -= c == '=';
        bits = bits << 6 | (value(c) & 63);
        if (++chars % 4 != 0) continue;
        for (uint32_t k = 0; k < group; ++k) out[at++] = static_cast<uint8_t>(bits >> (16 - 8 * k));
    }
    out[at + expected] = 0;
    return static_cast<int32_t>(expected);
}

// 7-bit packing septet by septet, 16-bit counters (n and size below 65536);
// `out` holds size + 1.
inline uint32_t septets_encode(const uint8_t *chars, uint32_t n, uint8_t *out, uint32_t size) {
    uint16_t count = 0, s = 0;
    uint8_t carry = 0;
    bool any = false;
    for (uint16_t i = 0; i < n && count < size; ++i, any = true) {
        if ((s = i % 8) == 0) {
            out[count] = carry = chars[i];
            continue;
        }
        out[count++] = static_cast<uint8_t>(chars[i] << (8 - s) | carry);
        carry = chars[i] >> s;
        if (s < 7) out[count] = carry;
    }
    if ((n + 1) % 8 == 0) out[count] |= 0x1A;
    return count + (any && s < 7 ? 1 : 0);
}

inline uint32_t septets_decode(const uint8_t *packed, uint32_t n, uint8_t *out, uint32_t size) {
    uint32_t count = 0, shift = 0;
    uint8_t carry = 0;
    for (uint32_t i = 0; i < n && count < size; ++i) {
        out[count++] = ((packed[i] << shift) & 0x7F) | (carry & 0x7F);
        carry = packed[i] >> (7 - shift);
        if (++shift == 7) out[count++] = carry, shift = carry = 0;
    }
    return count;
}

inline Bytes random_bytes(std::mt19937 &rng, size_t n, uint8_t mask = 0xFF) {
    Bytes bytes(n);
    for (uint8_t &b : bytes) b = static_cast<uint8_t>(rng()) & mask;
    return bytes;
}

}  // namespace nkw::test::ref
