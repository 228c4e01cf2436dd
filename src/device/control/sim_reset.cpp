// SIM reset through the modem.
#include <mipc_msg.h>

#include "device/control/control.h"
#include "diag/log.h"

using nkw::device::kTag;

extern "C" int32_t nkw_pal_resetSIM(unsigned char sim) {
    const mipc_sim_ps_id_enum ps_id = sim != 0 ? MIPC_PS1 : MIPC_PS0;
    const int shown = sim;
    // Preset to a failure so that a call that fills nothing is not taken for success.
    mipc_sim_reset_struct result{};
    result.result_code = 2;
    const mipc_result_enum ret = mipc_sim_reset_set_sync(ps_id, &result, 0);
    if (ret == MIPC_RESULT_SUCCESS && result.result_code == 0) {
        NKW_LOGI(kTag, "sim id: %d, mipc_sim_reset_set_sync success \n", shown);
        return 0;
    }
    NKW_LOGE(kTag, "sim id: %d, mipc_sim_reset_set_sync failed, result=%d \n", shown,
             static_cast<int>(ret));
    return NKW_PAL_SIM_RESET_FAILED;
}
