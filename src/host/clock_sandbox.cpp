// Test-build clocks. The wall clock is a test clock: it reads the host's
// time until a test (or the library) sets it, then runs on from the value
// set, or stands still when the test froze it. The monotonic clock can be
// pinned too. Nothing here ever sets the host's clock.
#include <cerrno>
#include <cstdint>
#include <mutex>

#include "host/clock.h"
#include "nkw_pal/common.h"

namespace {

constexpr int64_t kMicro = 1000000;

// Seconds and microseconds kept apart so that any time_t a test sets (even
// one no calendar can hold) survives.
struct Instant {
    int64_t sec = 0;
    int64_t usec = 0;  // 0..999999
};

Instant normalised(int64_t sec, int64_t usec) {
    sec += usec / kMicro;
    usec %= kMicro;
    if (usec < 0) {
        usec += kMicro;
        --sec;
    }
    return {sec, usec};
}

struct TestClock {
    bool wall_set = false;
    bool wall_running = true;
    Instant wall_offset;  // running: test time minus host time
    Instant wall_frozen;  // frozen: the time itself
    bool uptime_pinned = false;
    timespec uptime{};
    int fail_errno[3] = {};  // next get, set, monotonic
};

enum Which { kGet = 0, kSet = 1, kMonotonic = 2 };

std::mutex &lock() {
    static std::mutex instance;
    return instance;
}

TestClock &test_clock() {
    static TestClock instance;
    return instance;
}

Instant host_now() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return {now.tv_sec, now.tv_usec};
}

// Takes a failure queued for `which`: -1 with errno set, else 0.
int take_failure(Which which) {
    int &err = test_clock().fail_errno[which];
    if (err == 0) return 0;
    errno = err;
    err = 0;
    return -1;
}

void set_wall(Instant to, bool running) {
    TestClock &c = test_clock();
    const Instant host = host_now();
    c.wall_set = true;
    c.wall_running = running;
    c.wall_frozen = to;
    c.wall_offset = normalised(to.sec - host.sec, to.usec - host.usec);
}

Instant wall() {
    const TestClock &c = test_clock();
    if (!c.wall_set) return host_now();
    if (!c.wall_running) return c.wall_frozen;
    const Instant host = host_now();
    return normalised(host.sec + c.wall_offset.sec, host.usec + c.wall_offset.usec);
}

}  // namespace

namespace nkw::host::clock {

int get_time_of_day(timeval *now) {
    std::lock_guard<std::mutex> guard(lock());
    if (take_failure(kGet) != 0) return -1;
    const Instant at = wall();
    now->tv_sec = static_cast<time_t>(at.sec);
    now->tv_usec = static_cast<suseconds_t>(at.usec);
    return 0;
}

int set_time_of_day(const timeval *to) {
    std::lock_guard<std::mutex> guard(lock());
    if (take_failure(kSet) != 0) return -1;
    if (to->tv_usec < 0 || to->tv_usec >= kMicro) {
        errno = EINVAL;
        return -1;
    }
    set_wall({static_cast<int64_t>(to->tv_sec), static_cast<int64_t>(to->tv_usec)},
             test_clock().wall_running);
    return 0;
}

int monotonic(timespec *now) {
    std::lock_guard<std::mutex> guard(lock());
    if (take_failure(kMonotonic) != 0) return -1;
    if (test_clock().uptime_pinned) {
        *now = test_clock().uptime;
        return 0;
    }
    return clock_gettime(CLOCK_MONOTONIC, now);
}

}  // namespace nkw::host::clock

// Test-only controls, exported by the sandbox build.
extern "C" {

// Sets the test wall clock; it runs on from there unless `running` is 0.
NKW_PAL_API void nkw_pal_sandbox_clock_set(int64_t sec, int64_t usec, int running) {
    std::lock_guard<std::mutex> guard(lock());
    set_wall(normalised(sec, usec), running != 0);
}

// Reads the test wall clock as the library sees it.
NKW_PAL_API void nkw_pal_sandbox_clock_get(int64_t *sec, int64_t *usec) {
    std::lock_guard<std::mutex> guard(lock());
    const Instant at = wall();
    *sec = at.sec;
    *usec = at.usec;
}

// Pins the monotonic clock at the given uptime.
NKW_PAL_API void nkw_pal_sandbox_uptime_set(int64_t sec, int64_t nsec) {
    std::lock_guard<std::mutex> guard(lock());
    test_clock().uptime_pinned = true;
    test_clock().uptime.tv_sec = static_cast<time_t>(sec);
    test_clock().uptime.tv_nsec = static_cast<long>(nsec);
}

// The next read (0), set (1) or monotonic read (2) fails with `err`.
NKW_PAL_API void nkw_pal_sandbox_clock_fail_next(int which, int err) {
    std::lock_guard<std::mutex> guard(lock());
    if (which >= kGet && which <= kMonotonic) test_clock().fail_errno[which] = err;
}

}  // extern "C"
