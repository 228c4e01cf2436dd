// MSB-first bit reader and writer of the CDMA SMS decoder.
#include "modem/sms/cdma_bits.h"

#include "diag/log.h"

namespace nkw::sms {
namespace {
constexpr const char *kTag = "SMS_PDU_DECODE";

constexpr uint32_t mask_of(uint32_t bits) {
    return (1u << bits) - 1u;
}
}  // namespace

uint8_t BitReader::next_octet() {
    uint32_t position = position_++;
    return position < size_ ? source_[position] : 0;
}

uint32_t BitReader::read(uint32_t bits) {
    if (held_bits_ < bits) {
        uint32_t octets = (bits - held_bits_ + 7) / 8;
        for (uint32_t i = 0; i < octets; ++i) {
            held_value_ = (held_value_ << 8) | next_octet();
            held_bits_ += 8;
        }
    }
    held_bits_ -= bits;
    return (held_value_ >> held_bits_) & mask_of(bits);
}

void BitReader::seek(uint32_t position) {
    position_ = position;
    held_value_ = 0;
    held_bits_ = 0;
}

void BitWriter::WriteBits(uint32_t value, uint32_t bits) {
    // Counts the pending bits too, so that the octets this call completes
    // always lie inside the buffer.
    if (position_ + (pending_bits_ + bits) / 8 > capacity_) {
        NKW_LOGI(kTag, "Internal buffer overflow [%d] \n", static_cast<int>(capacity_));
        return;
    }
    uint32_t joined = (pending_value_ << bits) | (value & mask_of(bits));
    uint32_t count = pending_bits_ + bits;
    while (count >= 8) {
        count -= 8;
        destination_[position_++] = static_cast<uint8_t>(joined >> count);
    }
    pending_value_ = joined & mask_of(count);
    pending_bits_ = count;
}

void BitWriter::WritePadding() {
    // An octet of padding alone adds nothing, and after a full buffer it
    // would lie just past the end.
    if (pending_bits_ == 0) return;
    if (position_ >= capacity_) {
        NKW_LOGI(kTag, "Internal buffer overflow [%d] \n", static_cast<int>(capacity_));
    } else {
        destination_[position_++] = static_cast<uint8_t>(pending_value_ << (8 - pending_bits_));
    }
    pending_value_ = 0;
    pending_bits_ = 0;
}

}  // namespace nkw::sms
