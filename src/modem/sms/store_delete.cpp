// Deleting stored messages: one by index, or all of them with a raw request.
// Both report success to the caller once the request was made; what the
// modem answered reaches only the log.
#include <cstring>

#include "diag/log.h"
#include "modem/sms/store.h"
#include "nkw_pal/sms.h"
#include "os/heap_record.h"

using nkw::sms::free_result;
using nkw::sms::kStoreTag;

namespace {

using ResultCell = nkw::HeapRecord<mipc_sms_delete_struct>;

constexpr uint16_t kDeleteAllMsg = 0x609;
constexpr uint16_t kDeleteAllTlv = 0x100;
constexpr uint8_t kDeleteAllValue = 0;
constexpr uint16_t kResultTlv = 0;
constexpr uint32_t kNoResult = 0xFFFFFFFF;  // -1: no confirmation or no result in it
// The delete-all lines always show -1, whatever the modem answered.
constexpr int kShownRet = -1;
// The delete-by-index line always shows 0; the next line tells the outcome.
constexpr int kShownResultCode = 0;

// TLV 0 of the confirmation, or -1 when it is missing or short.
uint32_t confirmed_result(mipc_msg_t *confirmation) {
    uint16_t length = 0;
    const void *value = mipc_msg_get_val_ptr(confirmation, kResultTlv, &length);
    uint32_t result = kNoResult;
    if (value != nullptr && length >= sizeof result) std::memcpy(&result, value, sizeof result);
    return result;
}

}  // namespace

extern "C" int32_t nkw_pal_sms_delete_by_index(uint32_t sim_id, uint32_t message_index) {
    (void)sim_id;  // the store is the modem's, whatever the SIM
    auto cell = ResultCell::allocate();
    if (!cell) {
        NKW_LOGE(kStoreTag, "malloc failed, result_ptr is NULL \n");
        return NKW_PAL_FAIL;
    }
    mipc_result_enum ret = mipc_sms_delete_sync(
        nkw::sms::kStorePs, cell.get(), nkw::sms::kStoreFlag, static_cast<uint16_t>(message_index));
    if (ret != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kStoreTag, "mipc_sms_delete_sync failed, ret = %d. \n", ret);
    } else {
        NKW_LOGI(kStoreTag, "mipc_sms_delete_sync, result_ptr->result_code = %d. \n",
                 kShownResultCode);
        if (cell->result_code != 0) {
            NKW_LOGE(kStoreTag, "mipc_sms_delete_sync failed, result code error. \n");
        } else {
            NKW_LOGI(kStoreTag, "mipc_sms_delete_sync success. \n");
        }
    }
    return free_result(cell, 0);
}

extern "C" int32_t nkw_pal_sms_delete_all(void) {
    auto cell = ResultCell::allocate();
    if (!cell) {
        NKW_LOGE(kStoreTag, "malloc failed, result_ptr is NULL \n");
        return NKW_PAL_FAIL;
    }
    mipc_msg_t *request = mipc_msg_init(kDeleteAllMsg, nkw::sms::kStorePs);
    if (request == nullptr) {
        NKW_LOGE(kStoreTag, "mipc_msg_init failed, msg_req_ptr is NULL \n");
        cell.reset();
        return NKW_PAL_FAIL;
    }
    mipc_msg_add_tlv(request, kDeleteAllTlv, sizeof kDeleteAllValue, &kDeleteAllValue);
    mipc_msg_t *confirmation = mipc_msg_sync_timeout(request);
    mipc_msg_deinit(request);

    if (confirmation == nullptr) {
        NKW_LOGE(kStoreTag, "msg_cnf_ptr is NULL \n");
        cell->result_code = kNoResult;
        NKW_LOGE(kStoreTag, "mipc_sms_delete_all_sync failed, ret = %d. \n", kShownRet);
        return free_result(cell, 0);
    }
    cell->result_code = confirmed_result(confirmation);
    mipc_msg_deinit(confirmation);
    if (cell->result_code == kNoResult) {
        NKW_LOGE(kStoreTag, "mipc_sms_delete_all_sync failed, ret = %d. \n", kShownRet);
    } else {
        NKW_LOGI(kStoreTag, "mipc_sms_delete_all_sync, result_ptr->result_code = %d. \n",
                 kShownRet);
        if (cell->result_code != 0) {
            NKW_LOGE(kStoreTag, "mipc_sms_delete_all_sync failed, result code error. \n");
        } else {
            NKW_LOGI(kStoreTag, "mipc_sms_delete_all_sync success. \n");
        }
    }
    return free_result(cell, 0);
}
