// The adaptor's AT notifications: command names and quoted strings.
#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "location/gnss/parsers.h"
#include "nkw_pal/location.h"

namespace {

constexpr int kPayloadSize = 512;

bool is_space(char c) {
    return c == ' ' || (c >= 9 && c <= 13);
}

// What may follow a command name; anything else means a longer name.
bool ends_command(char c) {
    return c == '\0' || c == '\t' || c == '\n' || c == '\r' || c == ' ' || c == ':' || c == '=';
}

char *skip_space(char *p) {
    while (is_space(*p)) ++p;
    return p;
}

}  // namespace

bool nkw_pal_gnss_at_gnss_nmea_notify_parser(char **cursor) {
    char payload[kPayloadSize];
    std::memset(payload, 0, sizeof payload);
    if (!nkw_pal_gnss_at_parse_string(cursor, payload, sizeof payload)) {
        NKW_LOGE("GNSS", "[location_srv]MTK_GNSS_AT_NMEA failed. \n");
        return false;
    }
    nkw_pal_gnss_parse_location_from_nmea(payload, &nkw_pal_gnss_info.location);
    return true;
}

bool nkw_pal_gnss_at_gnss_nmea_end_notify_parser(char ** /*cursor*/) {
    NKW_LOGI("GNSS", "[location_srv]================================================== \n");
    std::fputs("\r\n", stdout);
    return true;
}

extern "C" {

bool nkw_pal_gnss_at_client_parser(char *line) {
    if (line == nullptr) return false;
    char *cursor = line;
    if (nkw_pal_gnss_at_parse_cmd(&cursor, "\r\n+ELCSNMEA")) {
        if (nkw_pal_gnss_at_gnss_nmea_notify_parser(&cursor)) return true;
    } else if (nkw_pal_gnss_at_parse_cmd(&cursor, "\r\n+ELCSNMEAEND")) {
        return nkw_pal_gnss_at_gnss_nmea_end_notify_parser(&cursor);
    }
    NKW_LOGE("GNSS", "[location_srv]wrong at_cmd=[%s]. \n", line);
    return false;
}

bool nkw_pal_gnss_at_parse_cmd(char **cursor, const char *cmd) {
    if (cursor == nullptr || *cursor == nullptr || cmd == nullptr) return false;
    const size_t length = std::strlen(cmd);
    char *p = *cursor;
    if (std::strncmp(p, cmd, length) != 0 || !ends_command(p[length])) return false;
    p += length;
    if (*p != '\0') ++p;  // never past the terminator
    *cursor = skip_space(p);
    return true;
}

bool nkw_pal_gnss_at_parse_string(char **cursor, char *out, int out_size) {
    if (cursor == nullptr || *cursor == nullptr || out == nullptr) return false;
    char *p = *cursor;
    if (*p == ',') {  // an empty field
        *cursor = skip_space(p + 1);
        return false;
    }
    for (; *p != '"'; ++p) {
        if (*p == '\0') {
            *cursor = p;
            return false;
        }
        if (*p == ',') {  // an unquoted field: skip it
            *cursor = skip_space(p + 1);
            return false;
        }
    }
    char *content = p + 1;
    char *closing = std::strchr(content, '"');
    if (closing == nullptr) {
        *cursor = content + std::strlen(content);
        return false;
    }
    const int length = static_cast<int>(closing - content);
    if (length + 1 >= out_size) {
        NKW_LOGE("GNSS", "[location_srv]mtk_at_parse_string() len=%d > output_size=%d \n", length,
                 out_size);
        return false;
    }
    std::memcpy(out, content, static_cast<size_t>(length));
    out[length] = '\0';
    p = closing + 1;
    char *comma = std::strchr(p, ',');
    *cursor = skip_space(comma != nullptr ? comma + 1 : p);
    return true;
}

}  // extern "C"
