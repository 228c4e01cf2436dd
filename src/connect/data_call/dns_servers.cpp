// The DNS servers of an activated call, written in the order its PDP type
// dictates.
#include <cstring>

#include "connect/data_call/host_config.h"
#include "connect/tag.h"
#include "diag/log.h"
#include "nkw_pal/connect.h"

namespace nkw::connect {

void write_dns_servers(const mipc_data_call_act_struct &call) {
    char v4_primary[kIpv4TextSize] = {};
    char v4_secondary[kIpv4TextSize] = {};
    char v6_primary[kIpv6TextSize] = {};
    char v6_secondary[kIpv6TextSize] = {};
    ipv4_text(v4_primary, call.v4_dns_primary);
    ipv4_text(v4_secondary, call.v4_dns_secondary);
    ipv6_text(v6_primary, call.v6_dns_primary);
    ipv6_text(v6_secondary, call.v6_dns_secondary);

    // The other family is written even when the call has none (0.0.0.0,
    // all-zero IPv6): resolvers on the module have always seen four lines.
    if (call.pdp_type != NKW_PAL_PDP_TYPE_IPV6) {
        NKW_LOGD(kTag, "[connection_manage]: refresh dns table v4 \n");
        nkw_pal_refresh_dns_table(v4_primary, v4_secondary);
        NKW_LOGD(kTag, "[connection_manage]: add dns table v6 \n");
        nkw_pal_add_dns_table(v6_primary, v6_secondary);
    } else {
        NKW_LOGD(kTag, "[connection_manage]: refresh dns table v6 \n");
        nkw_pal_refresh_dns_table(v6_primary, v6_secondary);
        NKW_LOGD(kTag, "[connection_manage]: add dns table v4 \n");
        nkw_pal_add_dns_table(v4_primary, v4_secondary);
    }
}

}  // namespace nkw::connect
