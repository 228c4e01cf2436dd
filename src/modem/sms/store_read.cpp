// Reading one stored message by index and handing back its decoded text.
#include <cstring>

#include "diag/log.h"
#include "modem/sms/store.h"
#include "nkw_pal/sms.h"
#include "os/heap_record.h"

using nkw::sms::free_result;
using nkw::sms::kStoreTag;

namespace {

using ReadRecord = nkw::HeapRecord<mipc_sms_read_struct>;

constexpr uint16_t kOnePdu = 1;
constexpr uint32_t kPduFormat = 0;
// Octets a stored message has beyond its TPDU, as the dump counts them.
constexpr uint32_t kStoredExtra = 9;
// The caller's buffer holds at least this much; neither the dump nor the
// copy goes further.
constexpr uint32_t kTextSize = NKW_PAL_SMS_DATA_SIZE;

}  // namespace

extern "C" int32_t nkw_pal_sms_get_message_request(uint32_t sim_id, uint32_t message_index,
                                                   char *sms_buf, uint32_t *sms_len) {
    (void)sim_id;  // the store is the modem's, whatever the SIM
    if (sms_buf == nullptr) {
        NKW_LOGE(kStoreTag, "fail,sms_buf is NULL \n");
        return NKW_PAL_INVALID_ARG;
    }
    sms_decoded_msg decoded;
    std::memset(&decoded, 0, sizeof decoded);
    auto record = ReadRecord::allocate();
    if (!record) {
        NKW_LOGE(kStoreTag, "malloc failed, result_ptr is NULL \n");
        return NKW_PAL_FAIL;
    }
    record->sms_pdu_count = kOnePdu;
    NKW_LOGI(kStoreTag, "sms message index:%d \n", message_index);

    if (mipc_sms_read_sync(nkw::sms::kStorePs, record.get(), nkw::sms::kStoreFlag,
                           static_cast<uint16_t>(message_index),
                           kPduFormat) != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kStoreTag, "fail,mipc_sms_read_sync \n");
        return free_result(record, NKW_PAL_FAIL);
    }
    if (record->result_code != 0) {
        NKW_LOGI(kStoreTag, "sms read result code:0x%x \n", record->result_code);
        return free_result(record, NKW_PAL_FAIL);
    }
    NKW_LOGI(kStoreTag,
             "result_code:0x%x, sms_pdu_count:%d, message_index:%d, pdu_len[TPDU]:%d, status:%d, "
             "sms_class:%d \n",
             record->result_code, record->sms_pdu_count, record->message_index, record->pdu_len,
             record->status, record->sms_class);
    uint32_t stored_len = record->pdu_len + kStoredExtra;
    NKW_LOGI(kStoreTag, "origin sms len = %d. \n", stored_len);
    // Diagnostic only: the caller's buffer as it is before the copy.
    uint32_t dumped = stored_len < kTextSize ? stored_len : kTextSize;
    for (uint32_t i = 0; i < dumped; ++i) {
        NKW_LOGI(kStoreTag, "buf[%d] = %02x \n", i, static_cast<signed char>(sms_buf[i]));
    }

    std::memset(&decoded, 0, sizeof decoded);
    if (DecodeGsmPdu(record->pdu, &decoded) != 0) {
        NKW_LOGE(kStoreTag, "DecodeGsmPdu failed.\n \n");
        return free_result(record, NKW_PAL_FAIL);
    }
    const sms_deliver_msg &text = decoded.deliver;
    NKW_LOGI(kStoreTag, "Decode ok, datalen = %d. \n", text.dataLen);
    char shown[kTextSize + 1] = {};  // the text may fill its field unterminated
    std::memcpy(shown, text.data, kTextSize);
    NKW_LOGI(kStoreTag, "type = %d,data= %s, dataLen = %d \n", text.type, shown, text.dataLen);
    // An overlong 7-bit text reports -1 as its length: it is cut at the field.
    uint32_t length = text.dataLen < kTextSize ? text.dataLen : kTextSize;
    std::memcpy(sms_buf, text.data, length);
    if (sms_len != nullptr) *sms_len = length;
    return free_result(record, 0);
}
