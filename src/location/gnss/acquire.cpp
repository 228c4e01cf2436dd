// One GNSS fix from the adaptor, within a caller-given number of seconds.
#include <sys/epoll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "diag/log.h"
#include "host/gnss.h"
#include "nkw_pal/device.h"
#include "nkw_pal/location.h"

static_assert(sizeof(nkw_pal_gnss_info_t) == 48, "the exported state is 48 bytes");
static_assert(offsetof(nkw_pal_gnss_info_t, location) == 8, "descriptors first");
static_assert(sizeof(nkw_pal_gnss_location) == 28, "seven 32-bit fields");
static_assert(offsetof(nkw_pal_gnss_result, timestamp) == 32, "time stamp 8-byte aligned");
static_assert(sizeof(nkw_pal_gnss_result) == 40, "result record layout");

extern "C" {

nkw_pal_gnss_info_t nkw_pal_gnss_info = {0, 0, {0, 0.0f, 0.0f, 0.0f, 0.0f, 0, 0}, {0}};

nkw_pal_gnss_info_t *nkw_pal_gnss_ops_get_gnss_info(void) {
    return &nkw_pal_gnss_info;
}

}  // extern "C"

namespace {

constexpr int kMaxRounds = 2000;
constexpr int kMaxEvents = 10;

long long now_seconds() {
    long long seconds = 0;
    nkw_pal_getTimestamp(&seconds);
    return seconds;
}

void close_both() {
    close(nkw_pal_gnss_info.epfd);
    close(nkw_pal_gnss_info.fd);
}

void hand_back(nkw_pal_gnss_result *out) {
    const nkw_pal_gnss_location &loc = nkw_pal_gnss_info.location;
    out->valid = loc.valid;
    out->latitude = loc.latitude;
    out->longitude = loc.longitude;
    out->altitude = loc.altitude;
    out->radius = loc.radius;
    out->sat_type = loc.sat_type;
    out->sat_num = loc.sat_num;
    out->timestamp = now_seconds();
}

}  // namespace

extern "C" {

int nkw_pal_gnss_info_acquire(unsigned int acquisition_duration, nkw_pal_gnss_result *out) {
    if (out == nullptr) {
        NKW_LOGE("GNSS", "[location_srv]output record is NULL. \n");
        return NKW_PAL_FAIL;
    }
    nkw_pal_gnss_info.epfd = -1;
    nkw_pal_gnss_info.location.valid = 0;
    NKW_LOGI("GNSS", "[location_srv]Enter get_internel_gps_data. \n");
    NKW_LOGI("GNSS", "[location_srv]acquisition_duration is %d s \n", acquisition_duration);

    const char *name = nkw::host::gnss::adaptor_socket_name();
    nkw_pal_gnss_info.fd = nkw_pal_gnss_socket_tcp_client_connect_local(true, name);
    if (nkw_pal_gnss_info.fd < 0) {  // never true: a failed connect gives 0
        NKW_LOGE("GNSS",
                 "[location_srv]failed,socket_tcp_client_connect_local(true, "
                 "GNSSADP_AT_SOCKET). \n");
        return NKW_PAL_FAIL;
    }
    NKW_LOGI("GNSS", "[location_srv]connect successfully to %s, fd[%d]. \n", name,
             nkw_pal_gnss_info.fd);

    nkw_pal_gnss_info.epfd = epoll_create(10);
    if (nkw_pal_gnss_info.epfd == -1) {
        NKW_LOGE("GNSS", "[location_srv]ERR: event_thread()  epoll_create() fail reason=[%s]. \n",
                 std::strerror(errno));
        return NKW_PAL_FAIL;
    }
    if (!nkw_pal_gnss_epoll_add_fd(nkw_pal_gnss_info.epfd, nkw_pal_gnss_info.fd)) {
        NKW_LOGE("GNSS", "[location_srv]failed,epoll add fd[%d] to epfd[%d]. \n",
                 nkw_pal_gnss_info.fd, nkw_pal_gnss_info.epfd);
    }
    if (!nkw_pal_gnss_ops_start_gnss()) return NKW_PAL_FAIL;

    const long long start = now_seconds();
    epoll_event events[kMaxEvents];
    for (int round = 0; round < kMaxRounds; ++round) {
        if (now_seconds() - start > static_cast<long long>(acquisition_duration)) {
            NKW_LOGI("GNSS",
                     "[location_srv]quarn gps location more than acquisition_duration time. \n");
            break;
        }
        const int ready = epoll_wait(nkw_pal_gnss_info.epfd, events, kMaxEvents, -1);
        if (ready == -1) {
            if (errno == EINTR) continue;
            NKW_LOGE("GNSS",
                     "[location_srv]ERR: event_thread()  epoll_wait failure reason=[%s]. \n",
                     std::strerror(errno));
            return NKW_PAL_FAIL;
        }
        for (int i = 0; i < ready; ++i) {
            const int fd = nkw_pal_gnss_info.fd;
            if (events[i].data.fd != fd || (events[i].events & EPOLLIN) == 0) continue;
            if (!nkw_pal_gnss_gnss_data_handle(fd) || nkw_pal_gnss_info.location.valid != 1) {
                continue;
            }
            NKW_LOGI("GNSS", "[location_srv]handle gnss data success. \n");
            nkw_pal_gnss_ops_stop_gnss();
            close_both();
            hand_back(out);
            NKW_LOGI("GNSS", "[location_srv]current time %lld \n",
                     static_cast<long long>(out->timestamp));
            return NKW_PAL_OK;
        }
    }
    nkw_pal_gnss_ops_stop_gnss();
    close_both();
    return NKW_PAL_FAIL;
}

}  // extern "C"
