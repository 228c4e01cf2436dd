// Packet attach and detach.
#include <cstring>

#include "connect/tag.h"
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/connect.h"

using nkw::connect::kTag;

extern "C" int32_t nkw_pal_ps_attach(int32_t state) {
    // Signed on purpose: negative values are the modem's to judge.
    if (state > 1) {
        NKW_LOGE(kTag, "get ps_state failed for param \n");
        return NKW_PAL_FAIL;
    }
    mipc_nw_attach_state_struct record;
    std::memset(&record, 0, sizeof record);
    int32_t result = mipc_nw_ps_set_sync(MIPC_PS_ALL, &record, static_cast<uint32_t>(state));
    if (result != 0 || record.result_code != 0) {
        NKW_LOGE(kTag, "mipc_nw_ps_set_sync failed, result=%d,code=%d \n", result,
                 record.result_code);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "ps request attach_state: %d, network_error: %d \n", record.attach_state,
             record.network_error);
    return NKW_PAL_OK;
}
