// Tracking of concatenated GSM message parts across decoder calls.
#pragma once

#include <cstdint>

namespace nkw::sms {

// Records part `curnum` of `maxnum` of concatenation `refnum`, whose text is
// `text` (`length` bytes, NUL-terminated). The state is process-wide and
// unlocked. The joined text only reaches the log; returns 0.
int32_t SplicingPdu(uint8_t refnum, uint8_t maxnum, uint8_t curnum, const char *text,
                    uint32_t length);

}  // namespace nkw::sms
