// The resolver file, rewritten through the shell one server line at a time.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "connect/tag.h"
#include "diag/log.h"
#include "host/connect.h"
#include "host/host.h"
#include "nkw_pal/connect.h"

using nkw::connect::kTag;

namespace {

// The command buffer the module's build uses; the test build adds the room
// its longer resolver path takes.
constexpr size_t kCommandSize = 100;
constexpr size_t kCommandRoom = kCommandSize + nkw::host::kPathMax;
// Longest address text: an IPv6 address with an embedded IPv4 tail.
constexpr size_t kServerMax = 45;

// The server text lands unquoted between single quotes on a shell command
// line, so only the characters of an address may pass.
bool is_address_text(const char *text) {
    size_t len = std::strlen(text);
    if (len == 0 || len > kServerMax) return false;
    for (size_t i = 0; i < len; ++i) {
        char c = text[i];
        bool hex = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (!hex && c != '.' && c != ':') return false;
    }
    return true;
}

void write_server(const char *redirect_format, const char *server, const char *resolv) {
    char command[kCommandRoom];
    std::memset(command, 0, sizeof command);
    size_t limit = kCommandSize + std::strlen(resolv) - std::strlen(nkw::host::paths::kResolvConf);
    std::snprintf(command, limit, redirect_format, server, resolv);
    nkw::host::run_shell(command);
    NKW_LOGI(kTag, "[connection_manage] set dns table:%s \n", server);
}

// Both servers or neither: a refused text leaves the file as it was.
void write_table(const char *first_format, char *dns1, char *dns2) {
    nkw::host::Path resolv(nkw::host::paths::kResolvConf);
    // Only makes sure the file exists; the shell does the writing.
    int fd = open(resolv.c_str(), O_RDWR | O_CREAT, 0666);
    if (fd < 0) {
        NKW_LOGE(kTag, "[connection_manage] fatal error!!!, open file failed, fp:%d\n \n", fd);
        return;
    }
    write_server(first_format, dns1, resolv.c_str());
    write_server(nkw::host::commands::kDnsAppend, dns2, resolv.c_str());
    close(fd);
}

bool server_acceptable(const char *server) {
    if (is_address_text(server)) return true;
    NKW_LOGE(kTag, "[connection_manage] refused dns server text:%s \n", server);
    return false;
}

bool servers_acceptable(const char *dns1, const char *dns2) {
    return server_acceptable(dns1) && server_acceptable(dns2);
}

}  // namespace

void nkw_pal_refresh_dns_table(char *dns1, char *dns2) {
    if (dns1 == nullptr || dns2 == nullptr) return;
    NKW_LOGI(kTag, "[connection_manage] begin to refresh dns table \n");
    if (!servers_acceptable(dns1, dns2)) return;
    write_table(nkw::host::commands::kDnsReplace, dns1, dns2);
}

void nkw_pal_add_dns_table(char *dns1, char *dns2) {
    if (dns1 == nullptr || dns2 == nullptr) return;
    NKW_LOGI(kTag, "[connection_manage] begin to add dns table \n");
    if (!servers_acceptable(dns1, dns2)) return;
    write_table(nkw::host::commands::kDnsAppend, dns1, dns2);
}
