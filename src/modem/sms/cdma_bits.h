// Bit-field access for CDMA SMS transport messages: fields are packed most
// significant bit first and need not start on an octet.
#pragma once

#include <cstdint>

namespace nkw::sms {

// Reads fields of up to 16 bits. Octets at or past `size` read as zero, so a
// field count that overstates the message never leaves the caller's buffer.
class BitReader {
   public:
    BitReader(const uint8_t *source, uint32_t size) : source_(source), size_(size) {}

    uint32_t read(uint32_t bits);
    // Moves to octet `position` and drops the bits held.
    void seek(uint32_t position);
    uint32_t position() const { return position_; }

   private:
    uint8_t next_octet();

    const uint8_t *source_;
    uint32_t size_;
    uint32_t position_ = 0;
    uint32_t held_value_ = 0;
    uint32_t held_bits_ = 0;
};

// Packs fields of up to 16 bits into a buffer of `capacity` octets; a field
// that would not fit is logged and dropped.
class BitWriter {
   public:
    BitWriter(uint8_t *destination, uint32_t capacity)
        : destination_(destination), capacity_(capacity) {}

    void WriteBits(uint32_t value, uint32_t bits);
    // Flushes the pending bits, left-aligned, as one more octet.
    void WritePadding();

   private:
    uint8_t *destination_;
    uint32_t capacity_;
    uint32_t position_ = 0;
    uint32_t pending_value_ = 0;
    uint32_t pending_bits_ = 0;
};

}  // namespace nkw::sms
