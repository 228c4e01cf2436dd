#include "os/timer_seam.h"

#include <dlfcn.h>

#include <cerrno>
#include <mutex>

namespace nkw::test {
namespace {

constexpr clockid_t kAlarmClock = CLOCK_BOOTTIME_ALARM;
constexpr clockid_t kEquivalentClock = CLOCK_BOOTTIME;

struct Seam {
    std::mutex lock;
    bool substitute = false;
    int fail_with = 0;
    std::vector<TimerCreateCall> creates;
    std::vector<itimerspec> settimes;
};

Seam &seam() {
    static Seam instance;
    return instance;
}

template <typename Function>
Function next(const char *name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void substitute_timer_clock() {
    std::lock_guard<std::mutex> guard(seam().lock);
    seam().substitute = true;
}

void fail_next_timer_create(int error) {
    std::lock_guard<std::mutex> guard(seam().lock);
    seam().fail_with = error;
}

std::vector<TimerCreateCall> timer_create_calls() {
    std::lock_guard<std::mutex> guard(seam().lock);
    return seam().creates;
}

std::vector<itimerspec> timer_settime_calls() {
    std::lock_guard<std::mutex> guard(seam().lock);
    return seam().settimes;
}

void reset_timer_seam() {
    std::lock_guard<std::mutex> guard(seam().lock);
    seam().substitute = false;
    seam().fail_with = 0;
    seam().creates.clear();
    seam().settimes.clear();
}

}  // namespace nkw::test

extern "C" {

int timer_create(clockid_t clock, sigevent *event, timer_t *id) {
    using nkw::test::seam;
    {
        std::lock_guard<std::mutex> guard(seam().lock);
        sigevent none{};
        const sigevent &e = event != nullptr ? *event : none;
        seam().creates.push_back({clock, e.sigev_notify, e.sigev_value.sival_ptr,
                                  e.sigev_notify_function, e.sigev_notify_attributes});
        if (seam().fail_with != 0) {
            errno = seam().fail_with;
            seam().fail_with = 0;
            return -1;
        }
        if (seam().substitute && clock == nkw::test::kAlarmClock) {
            clock = nkw::test::kEquivalentClock;
        }
    }
    using Create = int (*)(clockid_t, sigevent *, timer_t *);
    return nkw::test::next<Create>("timer_create")(clock, event, id);
}

int timer_settime(timer_t id, int flags, const itimerspec *setting, itimerspec *old) {
    using nkw::test::seam;
    {
        std::lock_guard<std::mutex> guard(seam().lock);
        seam().settimes.push_back(*setting);
    }
    using SetTime = int (*)(timer_t, int, const itimerspec *, itimerspec *);
    return nkw::test::next<SetTime>("timer_settime")(id, flags, setting, old);
}

}  // extern "C"
