// Arbitrary CDMA SMS transport messages through the decoder.
#include <cstdlib>
#include <cstring>

#include "nkw_pal.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 255) return -1;
    // Exactly the message's bytes and one record, on the heap, so that any
    // read past the given length or write past the record is caught.
    auto *pdu = static_cast<uint8_t *>(std::malloc(size == 0 ? 1 : size));
    if (size != 0) std::memcpy(pdu, data, size);
    auto *msg = static_cast<sms_decoded_msg *>(std::malloc(sizeof(sms_decoded_msg)));

    if (DecodeCdmaPdu(pdu, static_cast<uint8_t>(size), msg) == 0) {
        uint32_t length = msg->deliver.type == 0 ? msg->deliver.dataLen : msg->submit.dataLen;
        if (msg->deliver.type > 1 || length >= NKW_PAL_SMS_DATA_SIZE) std::abort();
    }
    std::free(msg);
    std::free(pdu);
    return 0;
}
