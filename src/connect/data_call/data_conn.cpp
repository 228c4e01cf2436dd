// Data call activation: the modem call, then the host side around it.
#include <cstring>

#include "connect/data_call/host_config.h"
#include "connect/tag.h"
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/connect.h"

using nkw::connect::kTag;

static_assert(sizeof(nkw_pal_data_conn_info_t) == 150, "connection record is 150 bytes");
static_assert(offsetof(nkw_pal_data_conn_info_t, data_call_id) == 0, "id at 0");
static_assert(offsetof(nkw_pal_data_conn_info_t, interface_id) == 4, "interface at 4");
static_assert(offsetof(nkw_pal_data_conn_info_t, apn) == 8, "APN at 8");
static_assert(offsetof(nkw_pal_data_conn_info_t, pdp_type) == 109, "PDP type at 109");
static_assert(offsetof(nkw_pal_data_conn_info_t, v4_addr) == 110, "IPv4 at 110");
static_assert(offsetof(nkw_pal_data_conn_info_t, v6_addr) == 114, "IPv6 at 114");
static_assert(offsetof(nkw_pal_data_conn_info_t, v4_dns) == 130, "IPv4 DNS at 130");
static_assert(offsetof(nkw_pal_data_conn_info_t, v6_dns) == 134, "IPv6 DNS at 134");

namespace {

constexpr uint32_t kFallbackType = 0;
constexpr uint32_t kAllOptions = 0xFFFFFFFF;

void fill_info(nkw_pal_data_conn_info_t *out, const mipc_data_call_act_struct &call) {
    out->data_call_id = call.id;
    out->interface_id = call.interface_id;
    // Characters only: the caller zeroed the record.
    std::memcpy(out->apn, call.apn, strnlen(call.apn, sizeof out->apn));
    out->pdp_type = call.pdp_type;
    std::memcpy(out->v4_addr, call.v4_addr, sizeof out->v4_addr);
    std::memcpy(out->v6_addr, call.v6_addr, sizeof out->v6_addr);
    std::memcpy(out->v4_dns, call.v4_dns_primary, sizeof out->v4_dns);
    std::memcpy(out->v6_dns, call.v6_dns_primary, sizeof out->v6_dns);
}

void log_addresses(const mipc_data_call_act_struct &c) {
    const uint8_t *a = c.v4_addr;
    NKW_LOGI(kTag, "[connection_manage]: v4 addr=%d.%d.%d.%d\n \n", a[0], a[1], a[2], a[3]);
    a = c.v4_dns_primary;
    NKW_LOGI(kTag, "[connection_manage]: v4 p dns addr=%d.%d.%d.%d\n \n", a[0], a[1], a[2], a[3]);
    a = c.v4_dns_secondary;
    NKW_LOGI(kTag, "[connection_manage]: v4 s dns addr=%d.%d.%d.%d\n \n", a[0], a[1], a[2], a[3]);
    a = c.v6_addr;
    NKW_LOGI(kTag,
             "[connection_manage]: v6 addr[0]=%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%"
             "02x:%02x%02x:%02x%02x\n \n",
             a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12], a[13],
             a[14], a[15]);
    a = c.v6_dns_primary;
    NKW_LOGI(kTag,
             "[connection_manage]: dns v6 addr[0]=%02x%02x:%02x%02x:%02x%02x:%02x%02x:%02x%02x:%"
             "02x%02x:%02x%02x:%02x%02x\n \n",
             a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12], a[13],
             a[14], a[15]);
}

}  // namespace

extern "C" int32_t nkw_pal_data_conn_sync(const nkw_pal_data_conn_req_t *req,
                                          nkw_pal_data_conn_info_t *out) {
    if (req == nullptr || out == nullptr) {
        NKW_LOGE(kTag, "[connection_manage]: act data_call failed for param \n");
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "[connection_manage]: data call apn:%s, usrname:%s, password:%s \n", req->apn,
             req->username, req->password);

    mipc_data_call_act_struct call;
    std::memset(&call, 0, sizeof call);
    int32_t result = mipc_data_call_act_sync(
        MIPC_PS_ALL, &call, req->apn, req->apn_type, req->pdp_type, req->roaming_pdp_type,
        req->auth_type, req->username, req->password, kFallbackType, kAllOptions);
    if (result != 0) {
        NKW_LOGE(kTag, "[connection_manage] act data call failed for result:%d \n", result);
        return NKW_PAL_FAIL;
    }
    if (call.result_code != 0) {
        NKW_LOGE(kTag, "[connection_manage]: operater success, but excute result:%d \n",
                 call.result_code);
        return NKW_PAL_FAIL;
    }

    fill_info(out, call);
    pdp_ip_type = call.pdp_type;
    nkw_pal_configure_after_data_call(call.interface_id);

    NKW_LOGI(kTag,
             "[connection_manage]: act data_call success! apn:%s, data_call id : %d, interfaciid: "
             "%d \n",
             call.apn, call.id, call.interface_id);
    log_addresses(call);
    nkw::connect::write_dns_servers(call);
    return NKW_PAL_OK;
}
