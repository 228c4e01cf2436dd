// The absolute deadline of the OS services' time-out convention.
#pragma once

#include <cstdint>
#include <ctime>

namespace nkw::os {

// CLOCK_REALTIME now plus `ms`. The nanoseconds are deliberately not carried
// into the seconds: callers have long relied on a wait failing at once with
// EINVAL when they reach a whole second, rather than sleeping.
inline timespec deadline_after_ms(uint32_t ms) {
    timespec deadline{};
    clock_gettime(CLOCK_REALTIME, &deadline);
    if (ms > 999) deadline.tv_sec += ms / 1000;
    deadline.tv_nsec += static_cast<long>(ms % 1000) * 1000000L;
    return deadline;
}

}  // namespace nkw::os
