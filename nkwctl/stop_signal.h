// Commands that run until interrupted (monitor, data connect --hold) wait for
// SIGINT or SIGTERM synchronously rather than in a handler.
#pragma once

#include <ctime>

namespace nkwctl {

// Call before the modem session starts: the signals are blocked in every
// thread the modem library creates, so only stop_requested() takes them.
// A shell's background job inherits SIGINT ignored, and an ignored signal
// never becomes pending: both are taken back first.
void take_stop_signals();

// Waits up to `timeout` for SIGINT or SIGTERM; true when one arrived.
bool stop_requested(const timespec &timeout);

}  // namespace nkwctl
