// Pieces the typed-call models share.
#pragma once

#include <cstdint>

#include "core.h"

namespace mipc_sim::core {

// Takes the next fault queued for `function`. kReturn and kNoConfirmation
// end the call (true, with what to return in *early); kResultCode goes into
// *code for the record.
bool take_call_fault(const char *function, uint32_t *code, mipc_result_enum *early);

// Records handed over at registration live as long as the process, as with
// the real library; kept reachable here so leak checks agree.
void keep_for_process(void *record);

}  // namespace mipc_sim::core
