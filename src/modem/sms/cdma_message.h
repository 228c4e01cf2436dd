// The parsed form of a CDMA SMS transport message, between the parameter
// reader and the conversion into the decoded record.
#pragma once

#include <cstdint>

#include "modem/sms/cdma_bits.h"

namespace nkw::sms {

// Parameter mask bits.
constexpr uint32_t kParamTeleservice = 0x1;
constexpr uint32_t kParamOriginatingAddress = 0x2;
constexpr uint32_t kParamDestinationAddress = 0x4;
constexpr uint32_t kParamBroadcastCategory = 0x8;
constexpr uint32_t kParamOriginatingSubaddress = 0x10;
constexpr uint32_t kParamDestinationSubaddress = 0x20;
constexpr uint32_t kParamBearerReplyOption = 0x40;
constexpr uint32_t kParamBearerData = 0x80;
constexpr uint32_t kParamCauseCodes = 0x100;
// The call-back number is a bearer-data subparameter, yet flagged here.
constexpr uint32_t kParamCallBackNumber = 0x4000;

// Subparameter mask bits the conversion looks at.
constexpr uint32_t kSubMessageIdentifier = 0x1;
constexpr uint32_t kSubUserData = 0x2;
constexpr uint32_t kSubTimeStamp = 0x8;

constexpr uint32_t kAddressFieldsSize = 50;
constexpr uint32_t kUserDataFieldsSize = 140;
constexpr uint32_t kUserDataMaxBits = kUserDataFieldsSize * 8;

struct CdmaAddress {
    uint8_t digit_mode;
    uint8_t number_mode;
    uint8_t number_type;
    uint8_t number_plan;
    uint8_t field_count;
    uint8_t fields[kAddressFieldsSize];
};

struct CdmaSubaddress {
    uint8_t type;
    uint8_t odd;
    uint8_t field_count;
    uint8_t fields[kAddressFieldsSize];
};

enum CdmaEncoding : uint8_t { kCdmaOctet = 0, kCdmaAscii7Bit = 2, kCdmaUnicode = 4 };

struct CdmaUserData {
    uint8_t encoding;
    uint8_t message_type;
    uint8_t field_count;
    uint8_t fields[kUserDataFieldsSize];
};

struct CdmaMessage {
    uint8_t message_type;  // the transport layer's, not the bearer data's
    uint32_t parameter_mask;
    uint16_t teleservice_id;
    uint16_t broadcast_category;
    CdmaAddress originating;
    CdmaAddress destination;
    CdmaAddress call_back;
    CdmaSubaddress originating_sub;
    CdmaSubaddress destination_sub;
    uint8_t bearer_reply_sequence;
    uint8_t cause_reply_sequence;
    uint8_t cause_error_class;
    uint8_t cause_code;

    // Bearer data.
    uint32_t subparameter_mask;
    uint8_t bearer_message_type;  // 1 deliver, 2 submit
    uint16_t message_id;
    uint8_t header_indication;
    CdmaUserData user_data;
    uint8_t user_response_code;
    uint8_t time_stamp[6];
    uint8_t validity_absolute[6];
    uint8_t validity_relative;
    uint8_t deferred_absolute[6];
    uint8_t deferred_relative;
    uint8_t priority;
    uint8_t privacy;
    uint8_t reply_option[4];
    uint8_t number_of_messages;
    uint8_t alert_or_language;  // subparameters 12 and 13 share it
    uint8_t display_mode;
    uint16_t deposit_index;
    uint8_t subparameter20[2];
    uint8_t subparameter21;
};

// Reads the message type octet and every parameter of a `length`-octet
// message. False when a parameter runs past the message.
bool ReadParameters(BitReader &reader, uint32_t length, CdmaMessage &message);

// Reads the bearer data's subparameters, `length` octets from the reader's
// position.
void ReadSubParameters(BitReader &reader, uint32_t length, CdmaMessage &message);

// An address record (originating, destination, call-back number). False,
// and `address` untouched, when its digits would not fit.
bool ReadParameterAddress(BitReader &reader, CdmaAddress &address);

}  // namespace nkw::sms
