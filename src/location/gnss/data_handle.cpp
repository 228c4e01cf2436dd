// Reading the adaptor and splitting what arrived into notification lines.
#include <unistd.h>

#include <cstring>

#include "diag/log.h"
#include "nkw_pal/location.h"

namespace {

constexpr size_t kReadSize = 8192;
constexpr size_t kLineSize = 3456;

// A line runs to the next line feed; one that is only "\r\n" opens a
// notification and runs on to the line feed after it. Returns the line's
// last byte, or null when the data ends first.
const char *line_end(const char *cursor, const char *end, bool *unexpected) {
    const char *lf = static_cast<const char *>(std::memchr(cursor, '\n', end - cursor));
    if (lf == nullptr) return nullptr;
    if (lf - cursor == 1 && cursor[0] == '\r') {
        lf = static_cast<const char *>(std::memchr(lf + 1, '\n', end - lf - 1));
        if (lf == nullptr) *unexpected = true;
    }
    return lf;
}

}  // namespace

extern "C" {

bool nkw_pal_gnss_gnss_data_handle(int fd) {
    // One byte more than is read keeps the data terminated for the log.
    char data[kReadSize + 1];
    std::memset(data, 0, sizeof data);
    const ssize_t got = read(fd, data, kReadSize);
    if (got <= 0) {
        NKW_LOGE("GNSS",
                 "[location_srv]tolv_gnss_data_handle() the connection between EM and GNSS "
                 "Adaptor is broken \n");
        close(fd);
        return false;
    }
    // The received text goes where the format belongs; it is passed through
    // "%s" so that nothing in it is taken for a conversion.
    if (nkw::diag::enabled(NKW_PAL_LOG_INFO)) {
        nkw_pal_logi("[location_srv]gps receive data %s", "%s", data);
    }

    const char *cursor = data;
    const char *end = data + got;
    while (cursor < end) {
        bool unexpected = false;
        const char *last = line_end(cursor, end, &unexpected);
        if (unexpected) {
            NKW_LOGE("GNSS", "[location_srv]unexpected data \n");
            nkw_pal_gnss_dump_buff(reinterpret_cast<const unsigned char *>(data), 2);
            break;
        }
        if (last == nullptr) break;
        // Lines longer than the line buffer are cut; the rest is dropped.
        char line[kLineSize];
        std::memset(line, 0, sizeof line);
        size_t length = static_cast<size_t>(last - cursor) + 1;
        if (length > sizeof line - 1) length = sizeof line - 1;
        std::memcpy(line, cursor, length);
        nkw_pal_gnss_at_client_parser(line);
        cursor = last + 1;
    }
    return true;
}

}  // extern "C"
