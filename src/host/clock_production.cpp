// Production clocks: the C library's.
#include "host/clock.h"

namespace nkw::host::clock {

int get_time_of_day(timeval *now) {
    return gettimeofday(now, nullptr);
}

int set_time_of_day(const timeval *to) {
    return settimeofday(to, nullptr);
}

int monotonic(timespec *now) {
    return clock_gettime(CLOCK_MONOTONIC, now);
}

}  // namespace nkw::host::clock
