// Asking the modem to resynchronise the MBIM status.
#include "diag/log.h"
#include "modem/indication/subscription.h"
#include "nkw_pal/modem.h"

using nkw::modem::indication::kTag;

extern "C" int32_t nkw_pal_quarn_mbim_status_sync(void) {
    static constexpr char kCommand[] = "AT+GTMBIMSYNC\r";
    char response[40] = {};
    uint32_t response_len = 0;
    if (nkw_pal_at_send(kCommand, sizeof kCommand - 1, response, sizeof response, &response_len) !=
        NKW_PAL_OK) {
        NKW_LOGE(kTag, "quarn_mbim_statu sync failed \n");
        return NKW_PAL_FAIL;
    }
    return NKW_PAL_OK;
}
