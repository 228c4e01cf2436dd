// AT command model of the simulated modem.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mipc_sim.h"

namespace mipc_sim {

// How the modem answers an AT command.
struct AtReply {
    uint32_t result_code = 0;  // 0: OK
    std::string response;      // the response text, as the modem gives it
    uint32_t delay_ms = 0;     // the answer comes this much later
    bool confirmed = true;     // false: no answer at all (sync: time-out)
};

// Answer for AT commands starting with `prefix` (the longest prefix wins).
// The commands the library sends itself have answers from the start, which
// these replace; any other command is answered result 0 and "OK".
void set_at_reply(const std::string &prefix, uint32_t result_code, const std::string &response);
void set_at_reply(const std::string &prefix, const AtReply &reply);

// The answer the modem would give to `command` now.
AtReply at_reply_for(const std::string &command);

// TLV of a forwarded custom command that holds the command line.
constexpr uint16_t kAtCommandLineTlv = 256;

// The modem forwards a custom AT command, typed on its side, to the handler
// registered for `cmd_id`: TLV 256 holds `line` (NUL-terminated), followed by
// `extra`. Waits for the handler and returns its result; -1 when no handler
// is registered for the id.
int send_custom_at(uint32_t cmd_id, const std::string &line, std::vector<Tlv> extra = {});

// The library's answers, with their TLVs: replies_to(cmd_id) (mipc_sim.h).

}  // namespace mipc_sim
