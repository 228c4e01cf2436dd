// CDMA SMS decoder: a transport-layer message into the decoded record.
#include <cstring>

#include "diag/log.h"
#include "modem/sms/cdma_message.h"
#include "modem/sms/hex.h"
#include "nkw_pal/sms.h"
#include "os/heap_record.h"

namespace {

using nkw::sms::CdmaAddress;
using nkw::sms::CdmaMessage;

constexpr const char *kTag = "SMS_PDU_DECODE";

constexpr uint8_t kMessageTypeDeliver = 1;
constexpr uint8_t kMessageTypeSubmit = 2;

constexpr uint32_t kAddressSize = NKW_PAL_SMS_ADDRESS_SIZE;
constexpr uint32_t kDataSize = NKW_PAL_SMS_DATA_SIZE;
constexpr uint32_t kTimestampSize = NKW_PAL_SMS_TIMESTAMP_SIZE;
// The rendered date needs more room than the record's time stamp field.
constexpr int32_t kDateTextLength = 25;

// Number types a data-network address (number mode 1) may carry.
constexpr uint8_t kNumberTypeInternetProtocol = 1;
constexpr uint8_t kNumberTypeInternetEmail = 2;

constexpr char kDtmfDigits[] = "D1234567890*#ABC";

int32_t GetCdmaMessageType(const CdmaMessage &message, uint8_t *type) {
    if (!(message.parameter_mask & nkw::sms::kParamBearerData)) {
        NKW_LOGI(kTag, "No Bearer data in the message \n");
        return -1;
    }
    if (!(message.subparameter_mask & nkw::sms::kSubMessageIdentifier)) {
        NKW_LOGI(kTag, "No message identifier in the message \n");
        return -1;
    }
    *type = message.bearer_message_type;
    return 0;
}

int32_t DecodeAddressParameter(const CdmaAddress &address, char *out) {
    if (address.field_count > kAddressSize) {
        NKW_LOGI(kTag, "Buffer overflow will occur (%d>%u) \n", address.field_count, kAddressSize);
        return -1;
    }
    char text[kAddressSize] = {};
    if (address.digit_mode == 1) {
        if (address.number_mode == 1 && address.number_type != kNumberTypeInternetProtocol &&
            address.number_type != kNumberTypeInternetEmail) {
            NKW_LOGI(kTag, "Do not support this number type %d \n", address.number_type);
            return -1;
        }
        std::memcpy(text, address.fields, address.field_count);
    } else {
        for (uint32_t i = 0; i < address.field_count; ++i) {
            uint8_t octet = address.fields[i / 2];
            uint8_t code = (i % 2 == 0) ? octet >> 4 : octet & 0x0F;
            if (code == 0) {
                NKW_LOGI(kTag, "%d digit code is not possible \n", code);
                return -1;
            }
            text[i] = kDtmfDigits[code];
        }
    }
    // Unterminated when all 18 bytes are used; the record was zeroed.
    std::memcpy(out, text, address.field_count);
    return 0;
}

bool GetCdmaMessageOA(const CdmaMessage &message, char *address) {
    if (!(message.parameter_mask & nkw::sms::kParamOriginatingAddress)) {
        NKW_LOGI(kTag, "No origination address in the message \n");
        return false;
    }
    return DecodeAddressParameter(message.originating, address) == 0;
}

bool GetCdmaMessageDA(const CdmaMessage &message, char *address) {
    if (!(message.parameter_mask & nkw::sms::kParamDestinationAddress)) {
        NKW_LOGI(kTag, "No destination address in the message \n");
        return false;
    }
    return DecodeAddressParameter(message.destination, address) == 0;
}

// The date text takes 25 characters, more than the record's time stamp
// field holds: a time stamp is recognised but never written.
void DecodeDate(uint32_t size) {
    NKW_LOGI(kTag, "Buffer overflow will occur (%d>%u) \n", kDateTextLength, size);
}

void GetCdmaMessageServiceCenterTimeStamp(const CdmaMessage &message) {
    if (!(message.subparameter_mask & nkw::sms::kSubTimeStamp)) {
        NKW_LOGI(kTag, "No service center time stamp in the message \n");
        return;
    }
    DecodeDate(kTimestampSize);
}

int32_t GetCdmaMessageData(const CdmaMessage &message, char *out, uint32_t *length) {
    if (!(message.parameter_mask & nkw::sms::kParamBearerData)) {
        NKW_LOGI(kTag, "No Bearer data in the message \n");
        return -1;
    }
    if (!(message.subparameter_mask & nkw::sms::kSubUserData)) {
        NKW_LOGI(kTag, "No data in the message \n");
        return -1;
    }
    const nkw::sms::CdmaUserData &user_data = message.user_data;
    uint32_t count = user_data.field_count;
    switch (user_data.encoding) {
        case nkw::sms::kCdmaAscii7Bit: {
            std::memset(out, 0, kDataSize);
            nkw::sms::BitReader reader(user_data.fields, nkw::sms::kUserDataFieldsSize);
            for (uint32_t i = 0; i < count; ++i) {
                if (i == kDataSize) {
                    NKW_LOGI(kTag, "Overflow occur when decoding user data \n");
                    return -1;
                }
                out[i] = static_cast<char>(reader.read(7));
            }
            *length = count;
            return 0;
        }
        case nkw::sms::kCdmaUnicode:
            NKW_LOGI(kTag, "fieldsNumber %d/%d \n", static_cast<int>(count),
                     static_cast<int>(kDataSize));
            if (count * 2 >= kDataSize) {
                NKW_LOGI(kTag, "Overflow occurs when decoding user data \n");
                return -1;
            }
            std::memcpy(out, user_data.fields, count * 2);
            *length = count * 2;
            return 0;
        case nkw::sms::kCdmaOctet:
            if (count >= kDataSize) {
                NKW_LOGI(kTag, "Overflow occur when decoding user data \n");
                return -1;
            }
            std::memcpy(out, user_data.fields, count);
            *length = count;
            return 0;
        default:
            NKW_LOGI(kTag, "Do not support %d encoding \n", user_data.encoding);
            return -1;
    }
}

// Renders the text as hex and frees it again; the free is logged under the
// caller's name.
void render_hex(const char *data, uint32_t length, const char *function = __builtin_FUNCTION(),
                int line = __builtin_LINE()) {
    auto hex = nkw::HeapRecord<char>::adopt(
        nkw::sms::tolv_HextoChar(reinterpret_cast<const uint8_t *>(data), length), function, line);
    hex.reset();
}

}  // namespace

extern "C" int32_t DecodeCdmaPdu(const uint8_t *pdu, uint8_t length, sms_decoded_msg *msg) {
    if (pdu == nullptr || msg == nullptr) {
        NKW_LOGI(kTag, "input param error! \n");
        return -1;
    }
    CdmaMessage message{};
    nkw::sms::BitReader reader(pdu, length);
    if (!nkw::sms::ReadParameters(reader, length, message)) return -1;

    uint8_t type = 0;
    if (GetCdmaMessageType(message, &type) != 0) return -1;
    std::memset(msg, 0, sizeof *msg);
    NKW_LOGI(kTag, "messageType is %d \n", type);

    switch (type) {
        case kMessageTypeDeliver: {
            sms_deliver_msg &out = msg->deliver;
            out.flags = 0;
            if (GetCdmaMessageOA(message, out.address))
                out.flags |= NKW_PAL_SMS_CDMA_FLAG_ORIGINATOR;
            GetCdmaMessageServiceCenterTimeStamp(message);
            if (GetCdmaMessageData(message, out.data, &out.dataLen) != 0) {
                NKW_LOGI(kTag, "Could not retrieve data \n");
                return -1;
            }
            out.type = NKW_PAL_SMS_TYPE_DELIVER;
            render_hex(out.data, out.dataLen);
            return 0;
        }
        case kMessageTypeSubmit: {
            sms_submit_msg &out = msg->submit;
            if (GetCdmaMessageDA(message, out.address))
                out.flags |= NKW_PAL_SMS_CDMA_FLAG_DESTINATION;
            if (GetCdmaMessageData(message, out.data, &out.dataLen) != 0) {
                NKW_LOGI(kTag, "Could not retrieve data \n");
                return -1;
            }
            out.type = NKW_PAL_SMS_TYPE_SUBMIT;
            return 0;
        }
        default:
            NKW_LOGI(kTag, "Do not support this message type %d \n", type);
            return -1;
    }
}
