// New-message and storage-full events of the modem's SMS store.
#include "diag/log.h"
#include "modem/sms/store.h"
#include "nkw_pal/sms.h"
#include "os/heap_record.h"

using nkw::sms::kStoreTag;

namespace {

// Handed to the modem IPC library with the registration; lives for the rest
// of the process, there being no unsubscription.
struct StoreIndication {
    nkw_pal_sms_store_cb callback;
    void *user;
};
static_assert(sizeof(void *) != 8 || sizeof(StoreIndication) == 16,
              "indication record is 16 bytes");

// The event carries store flag 2 for both kinds, not the modem's bit.
constexpr uint32_t kEventStoreFlag = 2;

void tolv_mipc_store_status_ind_cb(mipc_sim_ps_id_enum, mipc_sms_status_struct *result,
                                   void *priv) {
    if (result == nullptr) {
        NKW_LOGE(kStoreTag, "register_state_ind_cb result_ptr is invalid. \n");
        return;
    }
    NKW_LOGI(kStoreTag, "cb, result_code:0x%x,store_flag_btmp:%d,message_index:%d. \n",
             result->result_code, result->store_flag_btmp, result->message_index);
    auto *indication = static_cast<StoreIndication *>(priv);
    if (indication == nullptr || result->result_code != 0) {
        NKW_LOGE(kStoreTag, "register_state_ind_cb failed, result=%d. \n", result->result_code);
        return;
    }
    sms_store_event event{0, kEventStoreFlag, result->message_index};
    if (result->store_flag_btmp == MIPC_SMS_STORE_FLAG_NEW_MSG) {
        NKW_LOGI(kStoreTag, "receive a new unread message. \n");
        event.event = NKW_PAL_SMS_EVENT_NEW_MESSAGE;
    } else if (result->store_flag_btmp == MIPC_SMS_STORE_FLAG_FULL) {
        NKW_LOGI(kStoreTag, "sms storage is full. \n");
        event.event = NKW_PAL_SMS_EVENT_STORAGE_FULL;
    } else {
        NKW_LOGI(kStoreTag, "invaild store_flag_btmp. \n");
        return;
    }
    if (indication->callback != nullptr) indication->callback(event, indication->user);
}

}  // namespace

extern "C" int32_t nkw_pal_sms_store_state_indication_register(nkw_pal_sms_store_cb callback,
                                                               void *user) {
    auto indication = nkw::HeapRecord<StoreIndication>::allocate();
    if (!indication) {
        NKW_LOGE(kStoreTag, "malloc info_p, not enough memory \n");
        return NKW_PAL_NO_MEMORY;
    }
    indication->callback = callback;
    indication->user = user;
    if (mipc_sms_store_status_register(nkw::sms::kStorePs, tolv_mipc_store_status_ind_cb,
                                       indication.get()) != MIPC_RESULT_SUCCESS) {
        indication.reset();
        NKW_LOGE(kStoreTag, "mipc_sms_store_status_register failed. \n");
        return NKW_PAL_FAIL;
    }
    (void)indication.release();  // now the modem IPC library's, for good
    NKW_LOGI(kStoreTag, "mipc_sms_store_status_register success. \n");
    return 0;
}
