// GSM SMS decoder: one stored DELIVER or SUBMIT TPDU into the decoded record.
// Positions are 8-bit on purpose: they wrap inside the 256-byte PDU buffer, so
// no length octet can send a read outside it.
#include <cstring>

#include "diag/log.h"
#include "modem/sms/gsm_address.h"
#include "modem/sms/gsm_text.h"
#include "modem/sms/hex.h"
#include "modem/sms/splicing.h"
#include "nkw_pal/sms.h"
#include "os/heap_record.h"

namespace {

using nkw::sms::AddressStatus;
using nkw::sms::kGsmAddressSize;

constexpr const char *kTag = "SMS_PDU_DECODE";

constexpr uint8_t kMtiMask = 0x03;
constexpr uint8_t kMtiDeliver = 0;
constexpr uint8_t kMtiSubmit = 1;
constexpr uint8_t kUdhiMask = 0x40;
constexpr uint8_t kUdhiShift = 6;

// Octets from TP-PID to TP-UDL: PID, DCS and the 7-octet time stamp of a
// DELIVER; PID, DCS and a one-octet relative validity period of a SUBMIT.
constexpr uint8_t kDeliverUdlOffset = 9;
constexpr uint8_t kSubmitUdlOffset = 3;

constexpr uint32_t kDataSize = NKW_PAL_SMS_DATA_SIZE;
constexpr uint32_t kMaxOctetData = kDataSize - 1;

enum Encoding : uint32_t { kGsm7Bit = 0, kEightBit = 1, kUcs2 = 2, kUnsupported = 3 };

constexpr uint8_t kDcsGeneralMax = 0x3F;
constexpr uint8_t kDcsDataClassMin = 0xF0;
constexpr uint8_t kDcsDataClass8Bit = 0x04;

uint32_t DetermineEncoding(uint8_t dcs) {
    if (dcs <= kDcsGeneralMax) return (dcs >> 2) & 3;
    if (dcs >= kDcsDataClassMin) return (dcs & kDcsDataClass8Bit) ? kEightBit : kGsm7Bit;
    NKW_LOGI(kTag, "this encoding is not supported (tpDcs %u) \n", dcs);
    return kUnsupported;
}

// Where the message type keeps its text.
struct DataField {
    char *data;
    uint32_t *length;
};

DataField data_field(sms_decoded_msg *msg, bool deliver) {
    if (deliver) return {msg->deliver.data, &msg->deliver.dataLen};
    return {msg->submit.data, &msg->submit.dataLen};
}

void copy_octets(const uint8_t *pdu, uint8_t start, uint32_t count, char *out) {
    for (uint32_t i = 0; i < count; ++i)
        out[i] = static_cast<char>(pdu[static_cast<uint8_t>(start + i)]);
}

// The header is taken to be 6 octets, one fill bit before the text: the
// first character sits in the upper 7 bits of the octet after the header.
char first_septet_after_fill_bit(uint8_t octet) {
    auto septet = static_cast<uint8_t>(octet >> 1);
    if (septet == nkw::sms::kGsmEscape) return nkw::sms::gsm_extension_to_text(0);
    return nkw::sms::gsm_septet_to_text(septet);
}

// Renders the text as hex and drops it again: the allocation trace is the
// diagnostic, its free logged under the caller's name.
void render_hex(const char *data, uint32_t length, const char *function = __builtin_FUNCTION(),
                int line = __builtin_LINE()) {
    auto hex = nkw::HeapRecord<char>::adopt(
        nkw::sms::tolv_HextoChar(reinterpret_cast<const uint8_t *>(data), length), function, line);
    hex.reset();
}

}  // namespace

extern "C" int32_t DecodeGsmPdu(const uint8_t *pdu, sms_decoded_msg *msg) {
    if (pdu == nullptr || msg == nullptr) {
        NKW_LOGI(kTag, "input param error! \n");
        return -1;
    }
    std::memset(msg, 0, sizeof *msg);
    auto pos = static_cast<uint8_t>(pdu[0] + 1);
    uint8_t first_octet = pdu[pos++];
    NKW_LOGI(kTag, "firstByte is %x, pos is %d \n", first_octet, pos);

    uint8_t mti = first_octet & kMtiMask;
    if (mti != kMtiDeliver && mti != kMtiSubmit) {
        NKW_LOGI(kTag, "Decoding this message is not supported TP-MTI %d. \n", mti);
        return -1;
    }
    bool deliver = mti == kMtiDeliver;
    msg->deliver.type = deliver ? NKW_PAL_SMS_TYPE_DELIVER : NKW_PAL_SMS_TYPE_SUBMIT;
    msg->deliver.flags = 0;
    // A SUBMIT carries its message reference before the address.
    auto address_pos = static_cast<uint8_t>(deliver ? pos : pos + 1);

    char address[kGsmAddressSize] = {};
    uint8_t q = 0;
    if (nkw::sms::read_gsm_address(pdu, address_pos, address, &q) ==
        AddressStatus::kEmptyAlphanumeric) {
        NKW_LOGI(kTag, "Address length %d is <= 0  \n", 0);
        return -1;
    }

    uint8_t pid = pdu[q];
    uint8_t dcs = pdu[static_cast<uint8_t>(q + 1)];
    uint32_t encoding = DetermineEncoding(dcs);
    NKW_LOGI(kTag, "tpPid 0x%02X, tpDcs 0x%02X \n", pid, dcs);
    if (encoding == kUnsupported) {
        NKW_LOGI(kTag, "Message format not supported. \n");
        return -1;
    }

    auto udl_pos = static_cast<uint8_t>(q + (deliver ? kDeliverUdlOffset : kSubmitUdlOffset));
    uint8_t udl = pdu[udl_pos];
    auto text_pos = static_cast<uint8_t>(udl_pos + 1);
    uint8_t udhi = (first_octet & kUdhiMask) >> kUdhiShift;
    uint8_t udhl = 0;
    if (udhi) {
        udhl = pdu[text_pos];
        text_pos = static_cast<uint8_t>(udl_pos + 2);
    }
    NKW_LOGI(kTag, "tpUdhi %d, tpUdhl %d, tpUdl %d, UserData pos %d, encoding %d \n", udhi, udhl,
             udl, text_pos, static_cast<int>(encoding));

    // The address is copied up to the field's size, unterminated when full.
    std::memcpy(msg->deliver.address, address, strnlen(address, kGsmAddressSize));
    if (deliver) {
        // The time stamp is not decoded: the field stays empty.
        msg->deliver.flags |= NKW_PAL_SMS_GSM_FLAG_DELIVER;
    } else {
        msg->submit.flags |= NKW_PAL_SMS_GSM_FLAG_SUBMIT;
    }

    DataField field = data_field(msg, deliver);
    auto body_pos = static_cast<uint8_t>(text_pos + udhl);
    const char *text = field.data;
    uint32_t text_length = 0;
    if (encoding == kEightBit || encoding == kUcs2) {
        // With a header UDL also counts the UDHL octet: one octet beyond the
        // text is copied.
        uint32_t length = static_cast<uint8_t>(udl - udhl);
        if (length > kMaxOctetData) {
            if (encoding == kEightBit) {
                NKW_LOGI(kTag, "Overflow occurs when converting 8bits to 8bits %d>%zd \n",
                         static_cast<int>(length), static_cast<size_t>(kDataSize));
            } else {
                NKW_LOGI(kTag, "Overflow occurs when copying UCS2 to UCS2 %d > %zd \n",
                         static_cast<int>(length), static_cast<size_t>(kDataSize));
            }
            return -1;
        }
        copy_octets(pdu, body_pos, length, field.data);
        *field.length = length;
        text_length = length;
    } else if (!udhi) {
        uint32_t septets = udl;
        if (septets == 0) {
            NKW_LOGI(kTag, "the message length %d is <0  \n", 0);
            return -1;
        }
        // A text that fills the field before its septets end is kept, cut at
        // 161 characters, with -1 stored as its length.
        int32_t length = nkw::sms::unpack_septets(pdu, text_pos, septets, field.data, kDataSize);
        *field.length = static_cast<uint32_t>(length);
        text_length = length < 0 ? kDataSize : static_cast<uint32_t>(length);
        NKW_LOGI(kTag, " messageLen %d, pos %d, size %d  \n", length, text_pos,
                 static_cast<int>(kDataSize));
    } else {
        // The septet count includes the fill bit's septet, one more than the
        // text holds.
        int32_t septets =
            ((static_cast<int32_t>(udl) * 7 - static_cast<int32_t>(udhl) * 8) / 7) & 0xFF;
        if (septets == 0) {
            NKW_LOGI(kTag, "the message length %d is <0  \n", septets);
            return -1;
        }
        char first = first_septet_after_fill_bit(pdu[body_pos]);
        char unpacked[kDataSize];
        int32_t count =
            nkw::sms::unpack_septets(pdu, static_cast<uint8_t>(body_pos + 1),
                                     static_cast<uint32_t>(septets - 1), unpacked, kDataSize);
        if (count == -1) {
            NKW_LOGI(kTag, "Overflow occurs when converting 7bits to 8bits  \n");
            return -1;
        }
        // The count goes to the length field of the message's own type, then
        // the text to the DELIVER position for both types (a SUBMIT part of
        // over 141 characters thus runs over its own length field).
        *field.length = static_cast<uint32_t>(count);
        char *data = msg->deliver.data;
        if (count > 0) {
            data[0] = first;
            std::memcpy(data + 1, unpacked, static_cast<size_t>(count - 1));
        }
        text = data;
        text_length = static_cast<uint32_t>(count);
    }

    if (udhi) {
        char copy[kDataSize + 1] = {};
        std::memcpy(copy, text, text_length);
        nkw::sms::SplicingPdu(pdu[static_cast<uint8_t>(text_pos + 2)],
                              pdu[static_cast<uint8_t>(text_pos + 3)],
                              pdu[static_cast<uint8_t>(text_pos + 4)], copy,
                              static_cast<uint32_t>(std::strlen(copy)));
    } else {
        uint32_t length = msg->deliver.dataLen;
        render_hex(msg->deliver.data, length > kDataSize ? kDataSize : length);
    }
    return 0;
}

extern "C" int32_t DecodeGsmPdu_WAP(const uint8_t *pdu, sms_decoded_msg *msg) {
    (void)pdu;
    (void)msg;
    NKW_LOGI(kTag, "WAP push messages are not decoded \n");
    return -1;
}
