// Calls the network ends, reported to the connection manager.
#include "connect/tag.h"
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/connect.h"
#include "os/heap_record.h"

using nkw::connect::kTag;

namespace {

// 16 bytes; the user pointer is kept but never handed back.
struct Listener {
    nkw_pal_data_call_deact_cb callback;
    void *user;
};

void nkw_pal_mipc_data_connection_deact_ind_cb(mipc_sim_ps_id_enum,
                                               mipc_data_call_deact_struct *result_ptr,
                                               void *cb_priv_ptr) {
    if (result_ptr == nullptr) {
        NKW_LOGE(kTag, "[platform] data_connection_deact_ind_cb result_ptr is invalid \n");
        return;
    }
    if (cb_priv_ptr == nullptr) return;
    nkw_pal_data_call_deact_t info = {};
    info.result_code = result_ptr->result_code;
    info.data_call_id = result_ptr->id;
    info.network_cause = result_ptr->network_cause;
    NKW_LOGI(kTag, "[platform] dc_deact_data get, result code: %d, id: %d, network code: %d \n",
             info.result_code, info.data_call_id, info.network_cause);
    const auto *listener = static_cast<const Listener *>(cb_priv_ptr);
    if (listener->callback == nullptr) {
        NKW_LOGE(kTag,
                 "[platform] data_connection_deact_ind_cb info_p is invalid, callback to cntmgr "
                 "fail \n");
        return;
    }
    listener->callback(&info);
}

}  // namespace

extern "C" int32_t nkw_pal_data_connection_deactivated_regisetr(nkw_pal_data_call_deact_cb callback,
                                                                void *user) {
    auto listener = nkw::HeapRecord<Listener>::allocate();
    if (!listener) {
        NKW_LOGE(kTag, "[platform] malloc deactivated ind info_p fail, not enough memory \n");
        return NKW_PAL_NO_MEMORY;
    }
    listener->callback = callback;
    listener->user = user;
    // From here the record belongs to the modem library, refused or not.
    Listener *held = listener.release();
    if (mipc_data_call_deact_register(MIPC_PS_ALL, nkw_pal_mipc_data_connection_deact_ind_cb,
                                      held) != 0) {
        NKW_LOGE(kTag, "[platform] mipc_data_call_deact_register callback failed \n");
        return NKW_PAL_FAIL;
    }
    return NKW_PAL_OK;
}
