// The one-TLV acknowledgement the library sends for a message the modem
// pushed to it (a command or an event it must confirm).
#pragma once

#include "modem/mipc.h"

namespace nkw::modem {

// Replies to `received` with TLV 0 holding the 32-bit value 0. The modem
// library's results are not checked: there is nobody to report them to.
// A reply that cannot be made is skipped.
void acknowledge(mipc_msg_t *received);

}  // namespace nkw::modem
