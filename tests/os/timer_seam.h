// The timer seam: the test executable defines timer_create and timer_settime
// and forwards them to the C library, recording what the library asked for.
// Build machines have no alarm-capable clock, so tests that need a timer to
// run substitute an equivalent clock for the alarm clock at this boundary.
#pragma once

#include <signal.h>
#include <time.h>

namespace nkw::test {

// Touched only from the test's own thread (callbacks never create or arm).
struct TimerSeam {
    bool substitute_clock = false;  // the alarm clock becomes CLOCK_BOOTTIME
    int fail_next_create = 0;       // errno for the next timer_create, which fails
    int fail_next_settime = 0;      // errno for the next timer_settime, which fails
    int creates = 0;
    clockid_t clock = -1;  // of the last timer_create
    sigevent event{};
    itimerspec setting{};  // of the last timer_settime
};
extern TimerSeam timer_seam;

}  // namespace nkw::test
