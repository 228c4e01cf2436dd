// Registration-state indications handed on to the caller's callback.
#include "connect/registration/reg_state.h"
#include "connect/tag.h"
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/connect.h"
#include "os/heap_record.h"

using nkw::connect::kTag;

namespace {

// 16 bytes; lives for the rest of the process once registered.
struct Listener {
    nkw_pal_register_state_cb callback;
    void *user;
};

void nkw_pal_mipc_register_state_ind_cb(mipc_sim_ps_id_enum, mipc_nw_reg_state_struct *result_ptr,
                                        void *cb_priv_ptr) {
    if (result_ptr == nullptr) {
        NKW_LOGE(kTag, "[platform] register_state_ind_cb result_ptr is invalid \n");
        return;
    }
    if (cb_priv_ptr == nullptr || result_ptr->result_code != 0) {
        NKW_LOGE(kTag, "[platform] register_state_ind_cb failed, result=%d \n",
                 result_ptr->result_code);
        return;
    }
    NKW_LOGI(kTag, "[platform] register_state_ind_cb network_error=%d, ps_state=%d, cs_state=%d \n",
             result_ptr->network_error, result_ptr->ps_state, result_ptr->cs_state);
    uint32_t mapped = NKW_PAL_REG_NOT_REGISTERED;
    nkw::connect::map_reg_state(result_ptr->ps_state, &mapped);
    const auto *listener = static_cast<const Listener *>(cb_priv_ptr);
    if (listener->callback != nullptr) listener->callback(mapped, listener->user);
}

}  // namespace

extern "C" int32_t nkw_pal_register_state_indication_register(nkw_pal_register_state_cb callback,
                                                              void *user) {
    auto listener = nkw::HeapRecord<Listener>::allocate();
    if (!listener) {
        NKW_LOGE(kTag, "[platform] malloc info_p, not enough memory \n");
        return NKW_PAL_NO_MEMORY;
    }
    listener->callback = callback;
    listener->user = user;
    if (mipc_nw_register_state_register(MIPC_PS_ALL, nkw_pal_mipc_register_state_ind_cb,
                                        listener.get()) != 0) {
        listener.reset();
        NKW_LOGE(kTag, "[platform] mipc_nw_register_state_register failed \n");
        return NKW_PAL_FAIL;
    }
    (void)listener.release();  // the modem library holds it from now on
    return NKW_PAL_OK;
}
