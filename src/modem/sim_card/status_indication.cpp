// SIM status and state indications handed on to the caller's callback.
#include "diag/log.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "modem/sim_card/status_code.h"
#include "nkw_pal/info.h"
#include "os/heap_record.h"

using nkw::info::kTag;

namespace {

// 16 bytes; lives for the rest of the process once registered.
struct sim_status_ind_info {
    nkw_pal_sim_status_cb callback;
    void *user;
};

void nkw_pal_mipc_sim_status_ind_cb(mipc_sim_ps_id_enum, mipc_sim_status_struct *result_ptr,
                                    void *cb_priv_ptr) {
    if (result_ptr == nullptr) {
        NKW_LOGE(kTag, "sim_status_ind_cb result_ptr is invalid \n");
        return;
    }
    if (cb_priv_ptr == nullptr || result_ptr->result_code != 0) {
        NKW_LOGE(kTag, "mipc_sim_status_ind_cb result_code=%d \n", result_ptr->result_code);
        return;
    }
    NKW_LOGI(kTag, "mipc_sim_status_ind_cb sim_id=%d, sim_status=%d \n", result_ptr->sim_id,
             result_ptr->sim_status);
    int32_t code = nkw::info::status_code(result_ptr->sim_status, true);
    const auto *info = static_cast<const sim_status_ind_info *>(cb_priv_ptr);
    if (code != nkw::info::kNoCode && info->callback != nullptr) {
        info->callback(result_ptr->sim_id, code, info->user);
    }
}

void nkw_pal_mipc_sim_state_ind_cb(mipc_sim_ps_id_enum, mipc_sim_state_struct *result_ptr,
                                   void *cb_priv_ptr) {
    if (result_ptr == nullptr) {
        NKW_LOGE(kTag, "sim_state_ind_cb result_ptr is invalid \n");
        return;
    }
    if (cb_priv_ptr == nullptr || result_ptr->result_code != 0) {
        NKW_LOGE(kTag, "mipc_sim_state_ind_cb result_code=%d \n", result_ptr->result_code);
        return;
    }
    NKW_LOGI(kTag, "mipc_sim_state_ind_cb sim_id=%d, sim_state=%d \n", result_ptr->sim_id,
             result_ptr->sim_state);
    const auto *info = static_cast<const sim_status_ind_info *>(cb_priv_ptr);
    if (result_ptr->sim_state == nkw::info::kSimStateReported && info->callback != nullptr) {
        info->callback(result_ptr->sim_id, nkw::info::kStateCode, info->user);
    }
}

}  // namespace

extern "C" int32_t nkw_pal_sim_status_indication_register(nkw_pal_sim_status_cb callback,
                                                          void *user) {
    if (callback == nullptr) {
        NKW_LOGE(kTag, "callback is null \n");
        return NKW_PAL_FAIL;
    }
    auto info = nkw::HeapRecord<sim_status_ind_info>::allocate();
    if (!info) {
        NKW_LOGE(kTag, "malloc info_p, not enough memory \n");
        return NKW_PAL_FAIL;
    }
    info->callback = callback;
    info->user = user;
    // In this order, stopping at the first refusal; those already made stay.
    if (mipc_sim_state_register(MIPC_PS0, nkw_pal_mipc_sim_state_ind_cb, info.get()) != 0) {
        NKW_LOGE(kTag, "API_SIM0 mipc_sim_state_register failed \n");
        return NKW_PAL_FAIL;
    }
    if (mipc_sim_state_register(MIPC_PS1, nkw_pal_mipc_sim_state_ind_cb, info.get()) != 0) {
        NKW_LOGE(kTag, "API_SIM1 mipc_sim_state_register failed \n");
        return NKW_PAL_FAIL;
    }
    if (mipc_sim_status_register(MIPC_PS0, nkw_pal_mipc_sim_status_ind_cb, info.get()) != 0) {
        NKW_LOGE(kTag, "API_SIM0 mipc_sim_status_register failed \n");
        return NKW_PAL_FAIL;
    }
    if (mipc_sim_status_register(MIPC_PS1, nkw_pal_mipc_sim_status_ind_cb, info.get()) != 0) {
        NKW_LOGE(kTag, "API_SIM1 mipc_sim_status_register failed \n");
        return NKW_PAL_FAIL;
    }
    (void)info.release();  // the modem library holds it from now on
    return NKW_PAL_OK;
}
