// The Base64 alphabet and the decoder's character map, shared by the encoder
// and decoder.
#pragma once

#include <cstdint>

namespace nkw::codec {

constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kBase64Pad = '=';

// Decoder map values: 0-63 data, 64 the pad, 127 anything else (bytes above
// 127 included).
constexpr uint8_t kBase64PadValue = 64;
constexpr uint8_t kBase64Invalid = 127;

struct Base64DecodeMap {
    uint8_t value[256];
};

constexpr Base64DecodeMap make_base64_decode_map() {
    Base64DecodeMap map{};
    for (int c = 0; c < 256; ++c) map.value[c] = kBase64Invalid;
    for (int v = 0; v < 64; ++v) map.value[static_cast<uint8_t>(kBase64Alphabet[v])] = v;
    map.value[static_cast<uint8_t>(kBase64Pad)] = kBase64PadValue;
    return map;
}

inline constexpr Base64DecodeMap kBase64DecodeMap = make_base64_decode_map();

}  // namespace nkw::codec
