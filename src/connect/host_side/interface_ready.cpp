// Interface readiness, judged from what `ip` prints.
#include "connect/host_side/interface_ready.h"

#include <cstdio>
#include <cstring>

#include "connect/tag.h"
#include "diag/log.h"
#include "host/connect.h"

namespace {

constexpr size_t kNameSize = 32;
constexpr size_t kCommandSize = 128;
constexpr size_t kLineSize = 256;

// 1 when the pipeline prints a line, 0 when it prints none, -1 when the
// pipe cannot be opened.
int pipeline_prints(const char *format, const char *ifname) {
    char command[kCommandSize];
    std::memset(command, 0, sizeof command);
    std::snprintf(command, sizeof command, format, ifname);
    FILE *pipe = nkw::host::open_pipe(command);
    if (pipe == nullptr) return -1;
    char line[kLineSize];
    bool printed = std::fgets(line, sizeof line, pipe) != nullptr;
    nkw::host::close_pipe(pipe);
    return printed ? 1 : 0;
}

}  // namespace

int32_t nkw_pal_is_net_interface_ready(int32_t n) {
    char ifname[kNameSize];
    std::memset(ifname, 0, sizeof ifname);
    std::snprintf(ifname, sizeof ifname, "ccmni%d", n);

    if (pipeline_prints(nkw::host::commands::kLinkRunning, ifname) != 1) return -1;

    int has_address = pipeline_prints(nkw::host::commands::kHasIpv4, ifname);
    if (has_address < 0) {
        NKW_LOGI(nkw::connect::kTag, "Failed to open pipe for ip addr show command\n \n");
        return -1;
    }
    return has_address == 1 ? 0 : -1;
}
