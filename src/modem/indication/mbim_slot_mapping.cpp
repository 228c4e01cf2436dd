// MBIM SIM slot mapping events.
#include "diag/log.h"
#include "modem/ack.h"
#include "modem/indication/subscription.h"
#include "nkw_pal/modem.h"

using namespace nkw::modem::indication;

namespace {
constexpr uint32_t kMbimSlotMappingInd = 0x8F59;
}

extern "C" int32_t nkw_pal_mbim_sim_slot_mapping_indication_register(
    nkw_pal_mbim_sim_slot_mapping_cb cb, void *user) {
    return subscribe(reinterpret_cast<void (*)()>(cb), user, false,
                     {kMbimSlotMappingInd, nkw_pal_mbim_sim_slot_mapping_indicate_cb, nullptr},
                     "mbim_sim_slot_mapping_indication_register failed \n");
}

extern "C" mipc_result_enum nkw_pal_mbim_sim_slot_mapping_indicate_cb(mipc_msg_t *msg_ptr,
                                                                      void *info) {
    int32_t option = 0;
    if (!read_i32(msg_ptr, kValue1Tlv, &option)) {
        NKW_LOGE(kTag, "mbim_sim_slot_mapping_indicate_cb val_ptr_1 get failed \n");
        return MIPC_RESULT_FAILURE;
    }
    int32_t sim_id = 0;
    if (!read_i32(msg_ptr, kValue2Tlv, &sim_id)) {
        NKW_LOGE(kTag, "mbim_sim_slot_mapping_indicate_cb val_ptr_2 get failed \n");
        return MIPC_RESULT_FAILURE;
    }
    NKW_LOGI(kTag, "mbim_sim_slot_mapping_indicate_cb opt=%d, sim_id=%d \n", option, sim_id);
    auto *subscription = static_cast<const Subscription *>(info);
    auto cb = callback_of<nkw_pal_mbim_sim_slot_mapping_cb>(subscription);
    if (cb != nullptr) cb(option, sim_id, user_of(subscription));
    nkw::modem::acknowledge(msg_ptr);
    return MIPC_RESULT_SUCCESS;
}
