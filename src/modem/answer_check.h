// The checks every modem query repeats: the argument is there, and the
// answer is good twice over (the call itself, then the modem's result code).
// Each logs under the calling query's name, so callers pass their __func__.
#pragma once

#include <cstdint>

#include "modem/mipc.h"

namespace nkw::info {

// Most queries log "result: %d"; the cell-list and bearer ones "result:%d".
enum class Spacing : uint8_t { kSpaced, kTight };

// False, after "get <what> failed for param", when `argument` is null.
bool argument_given(const void *argument, const char *func, const char *what);

// False, after "get <what> failed for result: %d" or "operater success, but
// excute result: %d", unless both the call and the modem succeeded.
bool answer_ok(const char *func, const char *what, mipc_result_enum result, uint32_t result_code,
               Spacing spacing = Spacing::kSpaced);

// How the queries that name the modem call label its result code.
enum class CodeLabel : uint8_t { kResult, kResultCode };

// The same judgement for the queries that log the modem call's own name:
// "<call> failed, api_result=%d. ", then "<call> result=%d. " (or
// "result_code=%d. ").
bool call_ok(const char *func, const char *call, mipc_result_enum result, uint32_t result_code,
             CodeLabel label);

// Sends `command` through the modem's AT channel into `record` (zeroed
// first) and judges the answer as answer_ok does.
bool at_answer(const char *func, const char *what, const char *command, mipc_sys_at_struct &record);

}  // namespace nkw::info
