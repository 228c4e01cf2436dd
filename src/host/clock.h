// The system clocks as the library reaches them. Production builds use the
// C library's clocks; the test build keeps a test clock instead, so setting
// the time never changes the host's.
#pragma once

#include <sys/time.h>
#include <time.h>

namespace nkw::host::clock {

// gettimeofday / settimeofday of the wall clock; 0 or -1 with errno.
int get_time_of_day(timeval *now);
int set_time_of_day(const timeval *to);
// clock_gettime(CLOCK_MONOTONIC); 0 or -1 with errno.
int monotonic(timespec *now);

}  // namespace nkw::host::clock
