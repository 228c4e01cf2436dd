// The adaptor connection and its registration with epoll.
#include <sys/epoll.h>

#include <cerrno>
#include <cstring>

#include "diag/log.h"
#include "location/local_socket.h"
#include "nkw_pal/location.h"

extern "C" {

// 0 on failure, not -1: callers have always tested for a negative value, so
// a failed connection carries on with descriptor 0. Kept for them.
int nkw_pal_gnss_socket_tcp_client_connect_local(bool abstract, const char *name) {
    if (name == nullptr) name = "";
    const nkw::location::LocalConnect c = nkw::location::connect_local(abstract, name);
    switch (c.step) {
        case nkw::location::LocalConnect::kSocketFailed:
            NKW_LOGE("GNSS",
                     "[location_srv]socket_tcp_client_connect_local() socket() failed, "
                     "reason=[%s]%d. \n",
                     std::strerror(c.err), c.err);
            return 0;
        case nkw::location::LocalConnect::kConnectFailed:
            NKW_LOGE("GNSS",
                     "[location_srv]socket_tcp_client_connect_local() connect() failed, "
                     "abstract=%d name=[%s] reason=[%s]%d. \n",
                     abstract ? 1 : 0, name, std::strerror(c.err), c.err);
            return 0;
        case nkw::location::LocalConnect::kConnected:
            break;
    }
    return c.fd;
}

bool nkw_pal_gnss_epoll_add_fd(int epfd, int fd) {
    epoll_event event;
    std::memset(&event, 0, sizeof event);
    event.events = EPOLLIN;
    event.data.fd = fd;
    if (epoll_ctl(epfd, EPOLL_CTL_ADD, fd, &event) == -1) {
        const int err = errno;
        NKW_LOGE("GNSS",
                 "[location_srv]epoll_add_fd() epoll_ctl() failed reason=[%s]%d epfd=%d fd=%d \n",
                 std::strerror(err), err, epfd, fd);
        return false;
    }
    return true;
}

}  // extern "C"
