#include "stop_signal.h"

#include <pthread.h>
#include <signal.h>

namespace nkwctl {

namespace {

sigset_t stop_signals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

}  // namespace

void take_stop_signals() {
    signal(SIGINT, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    const sigset_t set = stop_signals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

bool stop_requested(const timespec &timeout) {
    const sigset_t set = stop_signals();
    return sigtimedwait(&set, nullptr, &timeout) > 0;
}

}  // namespace nkwctl
