// The GSM 7-bit default alphabet as 8-bit text, and the septet unpacker that
// reads it out of a PDU.
#pragma once

#include <cstdint>

namespace nkw::sms {

// Maps one septet to its ISO 8859-1 byte. An escape (27) takes the septet
// that follows it into the extension table.
char gsm_septet_to_text(uint8_t septet);
char gsm_extension_to_text(uint8_t septet);
constexpr uint8_t kGsmEscape = 27;

// Unpacks `septets` septets that start at octet `start` of a 256-byte PDU
// buffer (positions wrap at 256) into `out`, one character each, escapes
// folded into their extension character. Returns the number of characters
// written, or -1 when the output already held `size` characters and another
// was due.
int32_t unpack_septets(const uint8_t *pdu, uint8_t start, uint32_t septets, char *out,
                       uint32_t size);

}  // namespace nkw::sms
