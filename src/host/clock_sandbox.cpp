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

struct TestClock {
    bool wall_set = false;
    bool wall_running = true;
    int64_t wall_offset_us = 0;  // running: test time minus host time
    int64_t wall_frozen_us = 0;  // frozen: the time itself
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

int64_t host_now_us() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return now.tv_sec * kMicro + now.tv_usec;
}

// Takes a failure queued for `which`: -1 with errno set, else 0.
int take_failure(Which which) {
    int &err = test_clock().fail_errno[which];
    if (err == 0) return 0;
    errno = err;
    err = 0;
    return -1;
}

void set_wall_us(int64_t us, bool running) {
    TestClock &c = test_clock();
    c.wall_set = true;
    c.wall_running = running;
    c.wall_frozen_us = us;
    c.wall_offset_us = us - host_now_us();
}

int64_t wall_us() {
    const TestClock &c = test_clock();
    if (!c.wall_set) return host_now_us();
    return c.wall_running ? host_now_us() + c.wall_offset_us : c.wall_frozen_us;
}

}  // namespace

namespace nkw::host::clock {

int get_time_of_day(timeval *now) {
    std::lock_guard<std::mutex> guard(lock());
    if (take_failure(kGet) != 0) return -1;
    int64_t us = wall_us();
    now->tv_sec = static_cast<time_t>(us / kMicro);
    now->tv_usec = static_cast<suseconds_t>(us % kMicro);
    return 0;
}

int set_time_of_day(const timeval *to) {
    std::lock_guard<std::mutex> guard(lock());
    if (take_failure(kSet) != 0) return -1;
    if (to->tv_usec < 0 || to->tv_usec >= kMicro) {
        errno = EINVAL;
        return -1;
    }
    set_wall_us(static_cast<int64_t>(to->tv_sec) * kMicro + to->tv_usec,
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
    set_wall_us(sec * kMicro + usec, running != 0);
}

// Reads the test wall clock as the library sees it.
NKW_PAL_API void nkw_pal_sandbox_clock_get(int64_t *sec, int64_t *usec) {
    std::lock_guard<std::mutex> guard(lock());
    int64_t us = wall_us();
    *sec = us / kMicro;
    *usec = us % kMicro;
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
