// IPv6 address of an active data call.
#include <cstring>

#include "connect/data_call/host_config.h"
#include "connect/tag.h"
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/connect.h"

using nkw::connect::kTag;

extern "C" int32_t nkw_pal_data_call_get_sync(uint8_t data_call_id, uint8_t ipv6_addr[16]) {
    if (ipv6_addr == nullptr) {
        NKW_LOGE(kTag, "[connection_manage]: ipv6_addr is NULL \n");
        return NKW_PAL_FAIL;
    }
    mipc_data_call_act_struct call;
    std::memset(&call, 0, sizeof call);
    // Only the call's own return is judged, not the record's result code.
    if (mipc_data_call_get_sync(MIPC_PS_ALL, &call, data_call_id) != 0) {
        NKW_LOGE(kTag, "[connection_manage]: mipc_data_call_get_sync get info fail \n");
        return NKW_PAL_FAIL;
    }
    std::memcpy(ipv6_addr, call.v6_addr, sizeof call.v6_addr);
    char text[nkw::connect::kIpv6TextSize] = {};
    nkw::connect::ipv6_text(text, call.v6_addr);
    NKW_LOGI(kTag, "[connection_manage]: data call id:%d, ipv6 addr:%s \n", data_call_id, text);
    return NKW_PAL_OK;
}
