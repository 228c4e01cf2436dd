// Start and stop requests to the adaptor.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "location/local_socket.h"
#include "nkw_pal/location.h"

namespace {

constexpr size_t kCommandSize = 128;

bool send_request(int fd, const char *command) {
    char text[kCommandSize];
    std::memset(text, 0, sizeof text);
    std::snprintf(text, sizeof text, "%s=\r\n", command);
    if (nkw::location::write_to_peer(fd, text, std::strlen(text)) == -1) {
        // The message text goes where the tag belongs and the error text
        // where the format belongs; the latter is passed through "%s" so
        // that nothing in it is taken for a conversion.
        if (nkw::diag::enabled(NKW_PAL_LOG_INFO)) {
            nkw_pal_logi("[location_srv]write() failed, reason=[%s]%d.", "%s",
                         std::strerror(errno));
        }
        return false;
    }
    return true;
}

}  // namespace

extern "C" {

bool nkw_pal_gnss_start_request(int fd) {
    return send_request(fd, "AT+ELCSSTART");
}

bool nkw_pal_gnss_stop_request(int fd) {
    return send_request(fd, "AT+ELCSSTOP");
}

bool nkw_pal_gnss_ops_start_gnss(void) {
    const int fd = nkw_pal_gnss_info.fd;
    NKW_LOGI("GNSS", "[location_srv]start gnss fd:%d. \n", fd);
    if (!nkw_pal_gnss_start_request(fd)) {
        NKW_LOGE("GNSS", "[location_srv]start gnss failed. \n");
        return false;
    }
    NKW_LOGI("GNSS", "[location_srv]start gnss sucessful. \n");
    return true;
}

bool nkw_pal_gnss_ops_stop_gnss(void) {
    if (!nkw_pal_gnss_stop_request(nkw_pal_gnss_info.fd)) {
        NKW_LOGE("GNSS", "[location_srv]stop gnss failed. \n");
        return false;
    }
    NKW_LOGI("GNSS", "[location_srv]stop gnss sucessful. \n");
    return true;
}

}  // extern "C"
