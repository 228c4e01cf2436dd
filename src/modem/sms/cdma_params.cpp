// CDMA SMS transport layer: the parameters of one message and the address
// records they carry.
#include <cstring>

#include "diag/log.h"
#include "modem/sms/cdma_message.h"

namespace nkw::sms {
namespace {

constexpr const char *kTag = "SMS_PDU_DECODE";

enum ParameterId : uint32_t {
    kTeleservice = 0,
    kBroadcastCategory = 1,
    kOriginatingAddress = 2,
    kOriginatingSubaddress = 3,
    kDestinationAddress = 4,
    kDestinationSubaddress = 5,
    kBearerReplyOption = 6,
    kCauseCodes = 7,
    kBearerData = 8,
};

// Digits this small buffer takes are counted in bits, not octets.
constexpr uint32_t kAddressMaxBits = kAddressFieldsSize;

bool ReadParameterSubAddress(BitReader &reader, CdmaSubaddress &subaddress) {
    CdmaSubaddress read{};
    read.type = static_cast<uint8_t>(reader.read(3));
    read.odd = static_cast<uint8_t>(reader.read(1));
    read.field_count = static_cast<uint8_t>(reader.read(8));
    uint32_t bits = read.field_count * 8u;
    if (bits >= kAddressMaxBits) {
        NKW_LOGI(kTag, "Internal buffer of originating subaddress is too small %d \n",
                 static_cast<int>(bits));
        return false;
    }
    for (uint32_t i = 0; i < read.field_count; ++i)
        read.fields[i] = static_cast<uint8_t>(reader.read(8));
    subaddress = read;
    return true;
}

}  // namespace

bool ReadParameterAddress(BitReader &reader, CdmaAddress &address) {
    CdmaAddress read{};
    read.digit_mode = static_cast<uint8_t>(reader.read(1));
    read.number_mode = static_cast<uint8_t>(reader.read(1));
    if (read.digit_mode == 1) {
        read.number_type = static_cast<uint8_t>(reader.read(3));
        if (read.number_mode == 1) read.number_plan = static_cast<uint8_t>(reader.read(4));
    }
    read.field_count = static_cast<uint8_t>(reader.read(8));
    // ASCII characters take 8 bits, DTMF digits 4.
    uint32_t width = read.digit_mode == 1 ? 8 : 4;
    uint32_t bits = read.field_count * width;
    if (bits >= kAddressMaxBits) {
        NKW_LOGI(kTag, "Internal buffer of originating address is too small %d \n",
                 static_cast<int>(bits));
        return false;
    }
    BitWriter writer(read.fields, kAddressFieldsSize);
    for (uint32_t i = 0; i < read.field_count; ++i) writer.WriteBits(reader.read(width), width);
    writer.WritePadding();
    address = read;
    return true;
}

bool ReadParameters(BitReader &reader, uint32_t length, CdmaMessage &message) {
    message.message_type = static_cast<uint8_t>(reader.read(8));
    int32_t remaining = static_cast<int32_t>(length) - 1;
    while (remaining != 0) {
        uint32_t id = reader.read(8);
        uint32_t parameter_length = reader.read(8);
        uint32_t start = reader.position();
        // Lengths that do not add up to the message would walk past it.
        if (remaining < 2 || static_cast<int32_t>(parameter_length) + 2 > remaining) {
            NKW_LOGI(kTag, "Parameter %d of length %d runs past the message (%d bytes) \n",
                     static_cast<int>(id), static_cast<int>(parameter_length),
                     static_cast<int>(length));
            return false;
        }
        switch (id) {
            case kTeleservice:
                if (parameter_length != 2) {
                    NKW_LOGI(kTag, "%d: SMS message parameter length should be 2 \n",
                             static_cast<int>(id));
                    break;
                }
                message.teleservice_id = static_cast<uint16_t>(reader.read(16));
                message.parameter_mask |= kParamTeleservice;
                break;
            case kBroadcastCategory:
                if (parameter_length != 2) {
                    NKW_LOGI(kTag, "%d: SMS message parameter length should be 2 \n",
                             static_cast<int>(id));
                    break;
                }
                message.broadcast_category = static_cast<uint16_t>(reader.read(16));
                message.parameter_mask |= kParamBroadcastCategory;
                break;
            case kOriginatingAddress:
                if (ReadParameterAddress(reader, message.originating))
                    message.parameter_mask |= kParamOriginatingAddress;
                break;
            case kOriginatingSubaddress:
                if (ReadParameterSubAddress(reader, message.originating_sub))
                    message.parameter_mask |= kParamOriginatingSubaddress;
                break;
            case kDestinationAddress:
                if (ReadParameterAddress(reader, message.destination))
                    message.parameter_mask |= kParamDestinationAddress;
                break;
            case kDestinationSubaddress:
                if (ReadParameterSubAddress(reader, message.destination_sub))
                    message.parameter_mask |= kParamDestinationSubaddress;
                break;
            case kBearerReplyOption:
                if (parameter_length != 1) {
                    NKW_LOGI(kTag, "%d: SMS message parameter length should be 1 \n",
                             static_cast<int>(id));
                    break;
                }
                message.bearer_reply_sequence = static_cast<uint8_t>(reader.read(6));
                message.parameter_mask |= kParamBearerReplyOption;
                break;
            case kCauseCodes:
                message.cause_reply_sequence = static_cast<uint8_t>(reader.read(6));
                message.cause_error_class = static_cast<uint8_t>(reader.read(2));
                if (message.cause_error_class != 0)
                    message.cause_code = static_cast<uint8_t>(reader.read(8));
                message.parameter_mask |= kParamCauseCodes;
                break;
            case kBearerData:
                ReadSubParameters(reader, parameter_length, message);
                message.parameter_mask |= kParamBearerData;
                break;
            default:
                NKW_LOGI(kTag, "Do not support this Parameter Id: %d \n", static_cast<int>(id));
                break;
        }
        reader.seek(start + parameter_length);
        remaining -= static_cast<int32_t>(parameter_length) + 2;
    }
    return true;
}

}  // namespace nkw::sms
