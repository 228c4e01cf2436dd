// Originating/destination addresses of GSM TPDUs as text.
#pragma once

#include <cstdint>

namespace nkw::sms {

constexpr uint32_t kGsmAddressSize = 18;

enum class AddressStatus { kOk, kEmptyAlphanumeric };

// Renders the address field at octet `a` (length in semi-octets, type of
// address, value) into `address` and sets `next` to the octet after it.
// Numeric addresses too long for the text are left empty and `next` becomes
// a - 1. An alphanumeric address without a single septet is refused.
AddressStatus read_gsm_address(const uint8_t *pdu, uint8_t a, char (&address)[kGsmAddressSize],
                               uint8_t *next);

}  // namespace nkw::sms
