// The timer seam: the test executable defines timer_create and timer_settime
// and forwards them to the C library, recording what the library asked for.
// Build machines have no alarm-capable clock, so tests that need a timer to
// run substitute an equivalent clock for the alarm clock at this boundary.
#pragma once

#include <signal.h>
#include <time.h>

#include <vector>

namespace nkw::test {

struct TimerCreateCall {
    clockid_t clock;
    int notify;
    void *value;
    void (*function)(sigval);
    void *attributes;
};

// Until the end of the test: the alarm clock becomes CLOCK_BOOTTIME.
void substitute_timer_clock();
// The next timer_create fails with `error` without reaching the C library.
void fail_next_timer_create(int error);

std::vector<TimerCreateCall> timer_create_calls();
std::vector<itimerspec> timer_settime_calls();
void reset_timer_seam();

}  // namespace nkw::test
