// The client side of the simulated modem's control socket, shared by the
// standalone sim-inject tool and `nkwctl sim-inject`: events are JSON objects
// as in a scenario timeline (without "t"), one a line, each answered "ok" or
// "error <why>".
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace nkw::inject {

// Sends each of `events`, or each non-blank line of `in` when there are none,
// to the control socket at `path`. A refused event, an unreachable socket or
// a lost connection is reported on `err` as "<name>: <what>: <why>".
// Returns the exit status: 0, or 1 when anything failed.
int send_events(const std::string &path, const std::vector<std::string> &events, std::istream &in,
                std::ostream &err, const std::string &name);

}  // namespace nkw::inject
