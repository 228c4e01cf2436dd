// Hex rendering of decoded SMS data for the log.
#pragma once

#include <cstdint>

namespace nkw::sms {

// A new heap string (nkw_pal_malloc) of 2 x `length` upper-case hex digits
// and a terminator; the caller frees it. Null when the allocation fails.
char *tolv_HextoChar(const uint8_t *data, uint32_t length);

}  // namespace nkw::sms
