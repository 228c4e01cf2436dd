// CDMA SMS bearer data: the subparameters inside parameter 8, user data
// among them.
#include "diag/log.h"
#include "modem/sms/cdma_message.h"

namespace nkw::sms {
namespace {

constexpr const char *kTag = "SMS_PDU_DECODE";

constexpr uint32_t kAnyLength = 0;

struct SubparameterRule {
    uint8_t id;
    uint8_t length;  // kAnyLength: not checked
    uint32_t mask;   // set once the subparameter is read
};

constexpr uint8_t kMessageIdentifier = 0;
constexpr uint8_t kUserData = 1;
constexpr uint8_t kCallBackNumber = 14;

constexpr SubparameterRule kSubparameters[] = {
    {kMessageIdentifier, 3, kSubMessageIdentifier},
    {kUserData, kAnyLength, kSubUserData},
    {2, 1, 0x4},  // user response code
    {3, 6, kSubTimeStamp},
    {4, 6, 0x10},     // validity period, absolute
    {5, 1, 0x20},     // validity period, relative
    {6, 6, 0x40},     // deferred delivery time, absolute
    {7, 1, 0x80},     // deferred delivery time, relative
    {8, 1, 0x100},    // priority
    {9, 1, 0x200},    // privacy
    {10, 1, 0x400},   // reply option
    {11, 1, 0x800},   // number of messages
    {12, 1, 0x1000},  // alert on delivery
    {13, 1, 0x2000},  // language
    {kCallBackNumber, kAnyLength, 0x4000},
    {15, 1, 0x8000},   // message display mode
    {17, 2, 0x20000},  // message deposit index
    {20, 1, 0x40000},
    {21, 1, 0x80000},
};

const SubparameterRule *find_rule(uint32_t id) {
    for (const SubparameterRule &rule : kSubparameters) {
        if (rule.id == id) return &rule;
    }
    return nullptr;
}

// Bits a character takes in each supported encoding; 0 for the others.
uint32_t field_width(uint8_t encoding) {
    switch (encoding) {
        case kCdmaOctet:
            return 8;
        case kCdmaAscii7Bit:
            return 7;
        case kCdmaUnicode:
            return 16;
        default:
            return 0;
    }
}

// Encodings 1 (extended protocol message) and 10 (GSM data coding) carry a
// message type octet before the count.
constexpr uint8_t kEncodingExtendedProtocol = 1;
constexpr uint8_t kEncodingGsmDataCoding = 10;

bool ReadSubParameterUserData(BitReader &reader, CdmaUserData &user_data) {
    CdmaUserData read{};
    read.encoding = static_cast<uint8_t>(reader.read(5));
    if (read.encoding == kEncodingExtendedProtocol || read.encoding == kEncodingGsmDataCoding)
        read.message_type = static_cast<uint8_t>(reader.read(8));
    read.field_count = static_cast<uint8_t>(reader.read(8));
    uint32_t width = field_width(read.encoding);
    if (width == 0) {
        NKW_LOGI(kTag, "encoding %d not supported \n", read.encoding);
        return false;
    }
    if (read.field_count * width > kUserDataMaxBits) {
        NKW_LOGI(kTag, "Internal buffer of userData is too small %d \n", read.field_count);
        return false;
    }
    BitWriter writer(read.fields, kUserDataFieldsSize);
    for (uint32_t i = 0; i < read.field_count; ++i) writer.WriteBits(reader.read(width), width);
    writer.WritePadding();
    user_data = read;
    return true;
}

void read_octets(BitReader &reader, uint8_t (&out)[6]) {
    for (uint8_t &octet : out) octet = static_cast<uint8_t>(reader.read(8));
}

uint8_t read_field(BitReader &reader, uint32_t bits) {
    return static_cast<uint8_t>(reader.read(bits));
}

// Reads a subparameter whose length was checked; false when it turned out
// unusable (and its mask stays clear).
bool read_subparameter(BitReader &reader, uint32_t id, CdmaMessage &m) {
    switch (id) {
        case kMessageIdentifier:
            m.bearer_message_type = read_field(reader, 4);
            m.message_id = static_cast<uint16_t>(reader.read(16));
            m.header_indication = read_field(reader, 1);
            return true;
        case kUserData:
            return ReadSubParameterUserData(reader, m.user_data);
        case 2:
            m.user_response_code = read_field(reader, 8);
            return true;
        case 3:
            read_octets(reader, m.time_stamp);
            return true;
        case 4:
            read_octets(reader, m.validity_absolute);
            return true;
        case 5:
            m.validity_relative = read_field(reader, 8);
            return true;
        case 6:
            read_octets(reader, m.deferred_absolute);
            return true;
        case 7:
            m.deferred_relative = read_field(reader, 8);
            return true;
        case 8:
            m.priority = read_field(reader, 2);
            return true;
        case 9:
            m.privacy = read_field(reader, 2);
            return true;
        case 10:
            for (uint8_t &flag : m.reply_option) flag = read_field(reader, 1);
            return true;
        case 11:
            m.number_of_messages = read_field(reader, 8);
            return true;
        case 12:
            m.alert_or_language = read_field(reader, 2);
            return true;
        case 13:
            m.alert_or_language = read_field(reader, 8);
            return true;
        case kCallBackNumber:
            return ReadParameterAddress(reader, m.call_back);
        case 15:
            m.display_mode = read_field(reader, 2);
            return true;
        case 17:
            m.deposit_index = static_cast<uint16_t>(reader.read(16));
            return true;
        case 20:
            m.subparameter20[0] = read_field(reader, 2);
            m.subparameter20[1] = read_field(reader, 6);
            return true;
        case 21:
            m.subparameter21 = read_field(reader, 8);
            return true;
        default:
            return false;
    }
}

}  // namespace

void ReadSubParameters(BitReader &reader, uint32_t length, CdmaMessage &message) {
    auto remaining = static_cast<int32_t>(length);
    while (remaining != 0) {
        uint32_t id = reader.read(8);
        uint32_t sub_length = reader.read(8);
        uint32_t start = reader.position();
        // What follows would belong to the next parameter or lie past the
        // message: the rest of the bearer data is dropped.
        if (remaining < 2 || static_cast<int32_t>(sub_length) + 2 > remaining) {
            NKW_LOGI(kTag, "Subparameter %d of length %d runs past the bearer data \n",
                     static_cast<int>(id), static_cast<int>(sub_length));
            return;
        }
        const SubparameterRule *rule = find_rule(id);
        if (rule == nullptr) {
            NKW_LOGI(kTag, "Do not support this subparameter Id: %d \n", static_cast<int>(id));
        } else if (rule->length != kAnyLength && rule->length != sub_length) {
            NKW_LOGI(kTag, "%d: Subparameter length should be %d \n", static_cast<int>(id),
                     rule->length);
        } else if (read_subparameter(reader, id, message)) {
            if (id == kCallBackNumber) {
                message.parameter_mask |= rule->mask;
            } else {
                message.subparameter_mask |= rule->mask;
            }
        }
        reader.seek(start + sub_length);
        remaining -= static_cast<int32_t>(sub_length) + 2;
    }
}

}  // namespace nkw::sms
