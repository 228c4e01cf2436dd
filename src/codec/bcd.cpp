// Telephony BCD: dialled digits with '*', '#', pause, wait and '+', two a
// byte, low nibble first, 0xF as the filler that ends a number.
#include "diag/log.h"
#include "nkw_pal/codec.h"

namespace {

constexpr const char *kTag = "UTILS";

constexpr char kBcdDigits[] = "0123456789*#pw+";
constexpr uint8_t kFiller = 0x0F;
constexpr int kInvalid = -1;

char bcd_char(uint8_t nibble) {
    return kBcdDigits[nibble];
}

int bcd_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    switch (c) {
        case '*':
            return 10;
        case '#':
            return 11;
        case 'P':
        case 'p':
            return 12;
        case 'W':
        case 'w':
            return 13;
        case '+':
            return 14;
        default:
            return kInvalid;
    }
}

}  // namespace

extern "C" {

int32_t nkw_pal_bcd_to_ascii(const uint8_t *bcd, uint32_t count, char *text, uint32_t size,
                             uint32_t *len_out) {
    if (count == 0) {
        NKW_LOGE(kTag, "len is 0 \n");
        return -1;
    }
    if (len_out == nullptr) {
        NKW_LOGE(kTag, "outlen is NULL \n");
        return -1;
    }
    if (text == nullptr) {
        NKW_LOGE(kTag, "ascii is NULL \n");
        return -1;
    }
    if (bcd == nullptr) {
        NKW_LOGE(kTag, "bcd is NULL \n");
        return -1;
    }
    uint32_t at = 0;
    // One size test a byte, before both of its characters: callers' buffers
    // hold size + 2 bytes.
    for (uint32_t i = 0; i < count && at < size; ++i) {
        const uint8_t low = bcd[i] & 0x0F;
        const uint8_t high = bcd[i] >> 4;
        if (low == kFiller) {
            NKW_LOGE(kTag, "invalid bcd %c \n", bcd[i]);
            return -1;
        }
        text[at++] = bcd_char(low);
        if (high == kFiller) break;
        text[at++] = bcd_char(high);
    }
    text[at] = '\0';
    *len_out = at;
    return 0;
}

int32_t nkw_pal_ascii_to_bcd(const char *text, uint32_t len, uint8_t *bcd, uint32_t size,
                             uint32_t *count_out) {
    if (len == 0) {
        NKW_LOGE(kTag, "len is 0 \n");
        return -1;
    }
    if (count_out == nullptr) {
        NKW_LOGE(kTag, "outlen is NULL \n");
        return -1;
    }
    if (bcd == nullptr) {
        NKW_LOGE(kTag, "bcd is NULL \n");
        return -1;
    }
    if (text == nullptr) {
        NKW_LOGE(kTag, "ascii is NULL \n");
        return -1;
    }
    uint32_t completed = 0;
    for (uint32_t i = 0; i < len && completed < size; ++i) {
        const int value = bcd_value(text[i]);
        if (value == kInvalid) {
            NKW_LOGE(kTag, "invalid %c \n", text[i]);
            return -1;
        }
        if (i % 2 == 0) {
            bcd[i / 2] = static_cast<uint8_t>(kFiller << 4 | value);
        } else {
            bcd[i / 2] = static_cast<uint8_t>((bcd[i / 2] & 0x0F) | value << 4);
            ++completed;
        }
    }
    // The full count even when `size` cut the output short.
    *count_out = len / 2 + len % 2;
    return 0;
}

}  // extern "C"
