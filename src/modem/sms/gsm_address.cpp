// GSM address fields: swapped BCD digits with an "F" filler, or packed
// alphanumeric text.
#include "modem/sms/gsm_address.h"

#include "diag/log.h"
#include "modem/sms/gsm_text.h"

namespace nkw::sms {
namespace {

constexpr const char *kTag = "SMS_PDU_DECODE";
constexpr uint8_t kToaKindMask = 0xF0;
constexpr uint8_t kToaAlphanumeric = 0xD0;
constexpr uint8_t kToaInternational = 0x91;

// Two hex digits an octet, high nibble first. Returns the digit count, or -1
// when they and a terminator would not fit in `size`.
int32_t tolv_hex_BinaryToString(const uint8_t *pdu, uint8_t start, uint32_t octets, char *out,
                                uint32_t size) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    if (octets * 2 >= size) {
        NKW_LOGI(kTag, "Hex string array (%u) is too small to convert (%u) bytes \n", size, octets);
        return -1;
    }
    for (uint32_t i = 0; i < octets; ++i) {
        uint8_t octet = pdu[static_cast<uint8_t>(start + i)];
        out[2 * i] = kDigits[octet >> 4];
        out[2 * i + 1] = kDigits[octet & 0x0F];
    }
    out[2 * octets] = '\0';
    return static_cast<int32_t>(octets * 2);
}

// Semi-octets come low nibble first: swap each pair. The "F" filler of an
// odd-length number lands in the second place and ends the text there.
void swap_semi_octets(char *digits, uint32_t count) {
    for (uint32_t i = 0; i + 1 < count; i += 2) {
        char high = digits[i];
        digits[i] = digits[i + 1];
        digits[i + 1] = high == 'F' ? '\0' : high;
    }
}

uint8_t read_numeric(const uint8_t *pdu, uint8_t a, uint8_t semi_octets, uint8_t toa,
                     char (&address)[kGsmAddressSize]) {
    uint32_t octets = (semi_octets + 1u) / 2;
    char digits[kGsmAddressSize] = {};
    int32_t count =
        tolv_hex_BinaryToString(pdu, static_cast<uint8_t>(a + 2), octets, digits, sizeof digits);
    if (count < 0) return static_cast<uint8_t>(a - 1);
    swap_semi_octets(digits, static_cast<uint32_t>(count));
    // Whatever stands in place of the filler, an odd count ends the number.
    if (semi_octets & 1) digits[semi_octets] = '\0';

    uint32_t out = 0;
    if (toa == kToaInternational) address[out++] = '+';
    for (uint32_t i = 0; digits[i] != '\0' && out < kGsmAddressSize; ++i)
        address[out++] = digits[i];
    return static_cast<uint8_t>(a + 2 + octets);
}

}  // namespace

AddressStatus read_gsm_address(const uint8_t *pdu, uint8_t a, char (&address)[kGsmAddressSize],
                               uint8_t *next) {
    uint8_t semi_octets = pdu[a];
    uint8_t toa = pdu[static_cast<uint8_t>(a + 1)];
    if ((toa & kToaKindMask) != kToaAlphanumeric) {
        *next = read_numeric(pdu, a, semi_octets, toa, address);
        return AddressStatus::kOk;
    }
    uint32_t septets = ((semi_octets & ~1u) * 4) / 7;
    if (septets == 0) return AddressStatus::kEmptyAlphanumeric;
    // Longer names are cut at the field's size.
    unpack_septets(pdu, static_cast<uint8_t>(a + 2), septets, address, kGsmAddressSize);
    *next = static_cast<uint8_t>(a + 2 + semi_octets / 2 + (semi_octets & 1));
    return AddressStatus::kOk;
}

}  // namespace nkw::sms
