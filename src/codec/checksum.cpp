// Block checksums: the XOR check character and CRC-16/XMODEM.
#include <cstring>

#include "nkw_pal/codec.h"

namespace {

constexpr uint16_t kPolynomial = 0x1021;
constexpr int kSlices = 8;

// kCrc.table[k][b]: the register after byte b followed by k zero bytes,
// starting from zero. Eight bytes then cost eight lookups and no shifts of
// the running register between them.
struct CrcTables {
    uint16_t table[kSlices][256];
};

constexpr CrcTables make_crc_tables() {
    CrcTables crc{};
    for (int b = 0; b < 256; ++b) {
        uint16_t reg = static_cast<uint16_t>(b << 8);
        for (int bit = 0; bit < 8; ++bit) {
            reg = static_cast<uint16_t>((reg & 0x8000) ? (reg << 1) ^ kPolynomial : reg << 1);
        }
        crc.table[0][b] = reg;
    }
    for (int k = 1; k < kSlices; ++k) {
        for (int b = 0; b < 256; ++b) {
            uint16_t prev = crc.table[k - 1][b];
            crc.table[k][b] = static_cast<uint16_t>((prev << 8) ^ crc.table[0][prev >> 8]);
        }
    }
    return crc;
}

constexpr CrcTables kCrc = make_crc_tables();

uint16_t crc_byte(uint16_t reg, uint8_t b) {
    return static_cast<uint16_t>((reg << 8) ^ kCrc.table[0][(reg >> 8) ^ b]);
}

}  // namespace

extern "C" {

uint32_t nkw_pal_bcc(const uint8_t *buf, int32_t n) {
    if (buf == nullptr || n <= 0) return 0;
    const size_t count = static_cast<size_t>(n);
    uint64_t folded = 0;
    size_t i = 0;
    for (; count - i >= sizeof(folded); i += sizeof(folded)) {
        uint64_t word;
        std::memcpy(&word, buf + i, sizeof(word));
        folded ^= word;
    }
    folded ^= folded >> 32;
    folded ^= folded >> 16;
    folded ^= folded >> 8;
    uint8_t sum = static_cast<uint8_t>(folded);
    for (; i < count; ++i) sum ^= buf[i];
    return sum;
}

uint32_t nkw_pal_crc16(const uint8_t *buf, int32_t n) {
    if (buf == nullptr || n <= 0) return 0;
    const size_t count = static_cast<size_t>(n);
    uint16_t reg = 0;
    size_t i = 0;
    for (; count - i >= kSlices; i += kSlices) {
        const uint8_t *p = buf + i;
        reg = static_cast<uint16_t>(
            kCrc.table[7][(reg >> 8) ^ p[0]] ^ kCrc.table[6][(reg & 0xFF) ^ p[1]] ^
            kCrc.table[5][p[2]] ^ kCrc.table[4][p[3]] ^ kCrc.table[3][p[4]] ^ kCrc.table[2][p[5]] ^
            kCrc.table[1][p[6]] ^ kCrc.table[0][p[7]]);
    }
    for (; i < count; ++i) reg = crc_byte(reg, buf[i]);
    return reg;
}

}  // extern "C"
