// Arbitrary octets through the GSM SMS decoder. The decoder keeps the state
// of open concatenations between calls, so each input meets whatever earlier
// inputs left open; nothing here resets it.
#include <cstdlib>
#include <cstring>

#include "nkw_pal.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    // Exactly the 256 bytes the decoder may read, and exactly one record, on
    // the heap so that a step past either edge is caught.
    auto *pdu = static_cast<uint8_t *>(std::calloc(NKW_PAL_SMS_GSM_PDU_BUFFER_SIZE, 1));
    auto *msg = static_cast<sms_decoded_msg *>(std::malloc(sizeof(sms_decoded_msg)));
    std::memcpy(pdu, data,
                size < NKW_PAL_SMS_GSM_PDU_BUFFER_SIZE ? size : NKW_PAL_SMS_GSM_PDU_BUFFER_SIZE);

    if (DecodeGsmPdu(pdu, msg) == 0) {
        // The DELIVER layout's length is the text's, or -1 for a 7-bit text
        // cut at the field; a SUBMIT leaves it 0 unless it used that layout.
        uint32_t length = msg->deliver.dataLen;
        if (msg->deliver.type > 1 || (length > NKW_PAL_SMS_DATA_SIZE && length != UINT32_MAX))
            std::abort();
    }
    std::free(msg);
    std::free(pdu);
    return 0;
}
