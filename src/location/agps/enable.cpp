// AGPS on or off in the GNSS adaptor.
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "diag/log.h"
#include "host/gnss.h"
#include "location/local_socket.h"
#include "nkw_pal/location.h"

namespace {

constexpr size_t kReplySize = 80;
constexpr size_t kJoinedSize = 96;

bool has_ok(const char *reply) {
    return std::strstr(reply, "\r\nok\r\n") != nullptr ||
           std::strstr(reply, "\r\nOK\r\n") != nullptr;
}

// Reads one reply into a zeroed buffer of kReplySize + 1 bytes, so that it
// stays terminated.
ssize_t read_reply(int fd, char *reply) {
    std::memset(reply, 0, kReplySize + 1);
    return read(fd, reply, kReplySize);
}

}  // namespace

extern "C" {

int nkw_pal_agps_enable(unsigned char enable) {
    const char *command =
        enable != 0 ? "AT+ELCSAGPSMODE=,,,,,,,1\r\n" : "AT+ELCSAGPSMODE=,,,,,,,0\r\n";
    const char *name = nkw::host::gnss::adaptor_socket_name();
    NKW_LOGI("AGPS",
             "[tolvaro]tolvaro_socket_tcp_client_connect_local, GNSSADP_AT_SOCKET = %s\n \n", name);
    NKW_LOGI("AGPS", "tolvaro_socket_tcp_client_connect_local, name = %s\n \n", name);
    const nkw::location::LocalConnect c = nkw::location::connect_local(true, name);
    if (c.step == nkw::location::LocalConnect::kSocketFailed) {
        NKW_LOGE("AGPS", "socket_tcp_client_connect_local() socket() failed, reason=[%s]%d \n",
                 std::strerror(c.err), c.err);
    } else if (c.step == nkw::location::LocalConnect::kConnectFailed) {
        NKW_LOGE("AGPS",
                 "socket_tcp_client_connect_local() connect() failed, abstract=%d name=[%s] "
                 "reason=[%s]%d \n",
                 1, name, std::strerror(c.err), c.err);
    }
    const int fd = c.fd;
    if (fd <= 0) {
        // Descriptor 0 counts as a failure too (it would stand in for stdin).
        if (fd == 0) close(fd);
        NKW_LOGE("AGPS", "socket_tcp_client_connect_local fail, g_gnssadp_fd = %d \n \n", fd);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI("AGPS",
             "tolvaro_socket_tcp_client_connect_local create g_gnssadp_fd ok, g_gnssadp_fd = %d "
             "\n \n",
             fd);
    // Only the low 8 bits of the write result are kept, and only logged.
    const uint8_t written =
        static_cast<uint8_t>(nkw::location::write_to_peer(fd, command, std::strlen(command)));
    NKW_LOGI("AGPS", "tolvaro_socket_tcp_client_connect_local, ret_wtite_fd = %d\n \n", written);

    // The adaptor answers "\r\nOK\r\n", possibly in two pieces; a second
    // read without it is a refusal. Nothing at all to read is consent.
    char reply[kReplySize + 1];
    const ssize_t got = read_reply(fd, reply);
    NKW_LOGI("AGPS", "read output,size: %d\n \n", static_cast<int>(got));
    if (got <= 0) {
        NKW_LOGW("AGPS", "fail to read, g_gnssadp_fd is %d\n \n", fd);
    } else {
        NKW_LOGI("AGPS", "[gpio4]buffer: %s\n \n", reply);
        if (has_ok(reply)) {
            NKW_LOGI("AGPS", "send cmd return ok\n \n");
        } else {
            char joined[kJoinedSize];
            std::memset(joined, 0, sizeof joined);
            std::strncpy(joined, reply, sizeof joined - 1);
            const ssize_t more = read_reply(fd, reply);
            if (more <= 0) {
                NKW_LOGE("AGPS", "2nd read fail, size is %d\n \n", static_cast<int>(more));
                close(fd);
                return NKW_PAL_FAIL;
            }
            // Two replies can exceed the joined buffer; the excess is cut.
            std::strncat(joined, reply, sizeof joined - 1 - std::strlen(joined));
            NKW_LOGI("AGPS", "[gpio4]tmp_buffer: %s\n \n", joined);
            if (!has_ok(joined)) {
                NKW_LOGE("AGPS", "send cmd return error.\n \n");
                NKW_LOGE("AGPS", "agps config fail.\n \n");
                close(fd);
                return NKW_PAL_FAIL;
            }
            NKW_LOGI("AGPS", "send cmd return ok\n \n");
        }
    }
    NKW_LOGI("AGPS", "agps config success enable:1 disable:0. current:%d\n \n", enable);
    const int closed = close(fd);
    NKW_LOGI("AGPS", "g_gnssadp_fd = %d, ret_wtite_fd =%d, result =%d\n \n", fd, written, closed);
    return NKW_PAL_OK;
}

}  // extern "C"
