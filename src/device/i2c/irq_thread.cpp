// The interrupt thread: waits on the mail socket and calls the handle's
// callback after every receive.
#include <linux/netlink.h>
#include <pthread.h>
#include <sys/socket.h>

#include <cstring>

#include "device/i2c/i2c_handle.h"
#include "diag/log.h"

using nkw::i2c::kTag;

namespace {

constexpr size_t kReceiveMax = 272;
constexpr size_t kTextMax = 255;
constexpr size_t kHeader = NLMSG_HDRLEN;
static_assert(kHeader == 16 && kHeader + kTextMax <= kReceiveMax, "message layout");

void mark_stopped(void *handle) {
    sem_post(&static_cast<nkw_pal_i2c_handle *>(handle)->irq_stopped);
}

}  // namespace

void *nkw_pal_i2c_irq_thread_cb(void *param) {
    auto *handle = static_cast<nkw_pal_i2c_handle *>(param);
    // Cancellation is taken only while blocked in the receive, so close never
    // ends the thread halfway through the callback or a log line.
    int previous = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &previous);
    pthread_cleanup_push(mark_stopped, handle);
    sem_post(&handle->irq_running);
    for (;;) {
        char received[kReceiveMax] = {};
        char text[kTextMax + 1] = {};
        sockaddr_nl source{};
        source.nl_family = AF_NETLINK;
        socklen_t source_len = sizeof source;

        pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &previous);
        // The result is not examined: the callback follows every wake-up.
        (void)recvfrom(handle->mail_fd, received, sizeof received, MSG_TRUNC | MSG_WAITALL,
                       reinterpret_cast<sockaddr *>(&source), &source_len);
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &previous);

        // A handle without a callback (allowed outside master mode) only logs.
        if (handle->callback != nullptr) handle->callback();
        std::memcpy(text, received + kHeader, kTextMax);
        NKW_LOGI(kTag, "i2c irq receive kernel message: %s \n", text);
    }
    pthread_cleanup_pop(0);
    return nullptr;
}
