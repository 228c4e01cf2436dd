// Runs one data call activation with the production library, for the
// namespace test: real `ip` and `route`, the real /etc/resolv.conf path.
// It refuses to run unless it sits in network and mount namespaces other
// than its parent's, where those can change nothing outside.
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "mipc_sim.h"
#include "mipc_sim_data_call.h"
#include "nkw_pal.h"

namespace {

std::string namespace_of(const char *kind) {
    char link[64] = {};
    std::string path = std::string("/proc/self/ns/") + kind;
    if (readlink(path.c_str(), link, sizeof link - 1) < 0) return "";
    return link;
}

}  // namespace

// The library's lines go to stderr, never to the host's system log (the
// library calls syslog() only; fortified builds reach __syslog_chk).
extern "C" void syslog(int, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
}
extern "C" void __syslog_chk(int, int, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
}

int main(int argc, char **argv) {
    if (argc != 3 || namespace_of("net").empty() || namespace_of("net") == argv[1] ||
        namespace_of("mnt") == argv[2]) {
        std::fprintf(stderr,
                     "usage: %s <parent net ns> <parent mnt ns>, run in private "
                     "network and mount namespaces\n",
                     argv[0]);
        return 3;
    }
    mipc_sim::DataCallAnswer answer;
    answer.id = 1;
    answer.interface_id = 0;
    answer.addresses_set = true;
    answer.v4_addr = {10, 0, 0, 2};
    answer.v4_dns_primary = {192, 0, 2, 53};
    answer.v4_dns_secondary = {192, 0, 2, 54};
    answer.v6_dns_primary = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x53};
    mipc_sim::set_data_call_answer("internet", answer);

    nkw_pal_modem_msg_init("netns_helper");
    nkw_pal_data_conn_req_t req = {};
    std::strcpy(req.apn, "internet");
    req.pdp_type = 3;
    nkw_pal_data_conn_info_t info = {};
    int32_t result = nkw_pal_data_conn_sync(&req, &info);
    nkw_pal_modem_msg_deinit();
    std::printf("activation=%d\n", result);
    return result == 0 ? 0 : 1;
}
