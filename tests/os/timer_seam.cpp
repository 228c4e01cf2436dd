#include "os/timer_seam.h"

#include <dlfcn.h>

#include <cerrno>

nkw::test::TimerSeam nkw::test::timer_seam;

extern "C" {

int timer_create(clockid_t clock, sigevent *event, timer_t *id) {
    auto &seam = nkw::test::timer_seam;
    ++seam.creates;
    seam.clock = clock;
    seam.event = event != nullptr ? *event : sigevent{};
    if (seam.fail_next_create != 0) {
        errno = seam.fail_next_create;
        seam.fail_next_create = 0;
        return -1;
    }
    if (seam.substitute_clock && clock == CLOCK_BOOTTIME_ALARM) clock = CLOCK_BOOTTIME;
    using Create = int (*)(clockid_t, sigevent *, timer_t *);
    return reinterpret_cast<Create>(dlsym(RTLD_NEXT, "timer_create"))(clock, event, id);
}

int timer_settime(timer_t id, int flags, const itimerspec *setting, itimerspec *old) {
    auto &seam = nkw::test::timer_seam;
    seam.setting = *setting;
    if (seam.fail_next_settime != 0) {
        errno = seam.fail_next_settime;
        seam.fail_next_settime = 0;
        return -1;
    }
    using SetTime = int (*)(timer_t, int, const itimerspec *, itimerspec *);
    return reinterpret_cast<SetTime>(dlsym(RTLD_NEXT, "timer_settime"))(id, flags, setting, old);
}

}  // extern "C"
