// GSM DELIVER and SUBMIT TPDUs: codings, addresses and refusals.
#include <gtest/gtest.h>

#include "sms/sms_pdu.h"
#include "support/syslog_capture.h"

using namespace std::string_literals;
using nkw::test::address_of;
using nkw::test::gsm_buffer;

namespace {

// SMSC +31624000000, then the TPDU.
constexpr const char *kSmsc = "07911326040000F0";
// DELIVER from +4412345 up to TP-PID; TP-DCS and the time stamp follow.
const std::string kDeliverTo4412345 = kSmsc + "040791442143F500"s;
const std::string kStamp = "42111221436580";

struct DecodeCase {
    const char *name;
    std::string pdu;
    uint32_t type;
    std::string address;
    std::string text;
};

void expect_decoded(const DecodeCase &c) {
    sms_decoded_msg msg;
    auto pdu = gsm_buffer(c.pdu);
    ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg)) << c.name;
    EXPECT_EQ(c.type, msg.deliver.type) << c.name;
    EXPECT_EQ(c.address, address_of(msg)) << c.name;
    if (c.type == NKW_PAL_SMS_TYPE_DELIVER) {
        EXPECT_EQ(3u, msg.deliver.flags) << c.name;
        EXPECT_EQ(c.text, nkw::test::deliver_text(msg)) << c.name;
        EXPECT_EQ(c.text.size(), msg.deliver.dataLen) << c.name;
        EXPECT_EQ('\0', msg.deliver.timestamp[0]) << c.name;
    } else {
        EXPECT_EQ(4u, msg.submit.flags) << c.name;
        EXPECT_EQ(c.text, nkw::test::submit_text(msg)) << c.name;
        EXPECT_EQ(c.text.size(), msg.submit.dataLen) << c.name;
        EXPECT_EQ(0u, msg.deliver.dataLen) << c.name;
    }
}

TEST(GsmCodings, SevenBitEightBitAndUcs2DecodeToTheirText) {
    const DecodeCase cases[] = {
        {"7-bit", kSmsc + "040B911316325476F80000"s + kStamp + "0BC8329BFD06DDDF723619",
         NKW_PAL_SMS_TYPE_DELIVER, "+31612345678", "Hello world"},
        {"7-bit by data class F0", kSmsc + "040A81602143658700F0"s + kStamp + "09D4F29C0E8AC96634",
         NKW_PAL_SMS_TYPE_DELIVER, "0612345678", "Test 1234"},
        {"8-bit by data class F4", kSmsc + "040791442143F500F4"s + kStamp + "050102FF007F",
         NKW_PAL_SMS_TYPE_DELIVER, "+4412345", "\x01\x02\xFF\x00\x7F"s},
        {"UCS2", kDeliverTo4412345 + "08" + kStamp + "08004800690020041F", NKW_PAL_SMS_TYPE_DELIVER,
         "+4412345", "\x00H\x00i\x00 \x04\x1F"s},
        {"SUBMIT 7-bit", "0011000B912120550521F30000AA0CD37219947FD741613AA806",
         NKW_PAL_SMS_TYPE_SUBMIT, "+12025550123", "See you at 5"},
        {"SUBMIT UCS2", "0011000781551532F40008AA04004F006B", NKW_PAL_SMS_TYPE_SUBMIT, "5551234",
         "\x00O\x00k"s},
        {"SUBMIT 8-bit after an SMSC", kSmsc + "11000791442143F50004AA03102030"s,
         NKW_PAL_SMS_TYPE_SUBMIT, "+4412345", "\x10\x20\x30"},
    };
    for (const DecodeCase &c : cases) expect_decoded(c);
}

TEST(GsmCodings, AlphabetMapsToLatin1WithExtensionsAndQuestionMarks) {
    const DecodeCase cases[] = {
        // @£$¥èÇÅ_Δ¿äà: Greek capitals have no Latin-1 form.
        {"default alphabet", kDeliverTo4412345 + "00" + kStamp + "0C8080604048382210F0FE0F",
         NKW_PAL_SMS_TYPE_DELIVER, "+4412345", "@\xA3$\xA5\xE8\xC7\xC5_?\xBF\xE4\xE0"},
        // {a}[b]~\|^€ and form feed: the euro sign is not in the table.
        {"extension table",
         kDeliverTo4412345 + "00" + kStamp + "161B547893DAF0C41BDFA6B7796D801BCAA6BC5100",
         NKW_PAL_SMS_TYPE_DELIVER, "+4412345", "{a}[b]~\\|^?\f"},
    };
    for (const DecodeCase &c : cases) expect_decoded(c);
}

TEST(GsmAddresses, AlphanumericAndLongAddresses) {
    const DecodeCase cases[] = {
        {"alphanumeric", kSmsc + "040ED04F78591EA6BFE50000"s + kStamp + "0BD437BC558783C86F7719",
         NKW_PAL_SMS_TYPE_DELIVER, "Operator", "Top-up done"},
        // 20 characters: the 18-byte field is filled without a terminator.
        {"alphanumeric cut",
         kSmsc + "0424D0CCB7FB1C64C3D16177BD5D96A7C7CE70BB0C0000"s + kStamp + "02E834",
         NKW_PAL_SMS_TYPE_DELIVER, "LongAlphanumericNa", "hi"},
    };
    for (const DecodeCase &c : cases) expect_decoded(c);
}

TEST(GsmAddresses, NumberTooLongForTheFieldLeavesTheAddressEmpty) {
    sms_decoded_msg msg;
    auto pdu = gsm_buffer(kSmsc + "04148121436587092143658709000042111221436580"s);
    DecodeGsmPdu(pdu.data(), &msg);
    EXPECT_EQ("", address_of(msg));
    EXPECT_TRUE(
        nkw::test::syslog_contains("Hex string array (18) is too small to convert (10) bytes"));
}

struct RefusalCase {
    const char *name;
    std::string pdu;
    const char *log;
};

TEST(GsmRefusals, UndecodableMessagesReturnMinusOneWithTheirReason) {
    const RefusalCase cases[] = {
        {"status report", kSmsc + "06010791442143F5"s + kStamp + kStamp + "00",
         "Decoding this message is not supported TP-MTI 2. "},
        {"DCS 0x40", kDeliverTo4412345 + "40" + kStamp + "0178",
         "this encoding is not supported (tpDcs 64)"},
        {"DCS 0x40", kDeliverTo4412345 + "40" + kStamp + "0178", "Message format not supported. "},
        {"reserved DCS 0x0C", kDeliverTo4412345 + "0C" + kStamp + "0178",
         "Message format not supported. "},
        {"7-bit UDL 0", kDeliverTo4412345 + "00" + kStamp + "00", "the message length 0 is <0"},
        {"empty alphanumeric sender", kSmsc + "0401D0410000"s + kStamp + "0178",
         "Address length 0 is <= 0"},
        {"8-bit 161 octets", kDeliverTo4412345 + "04" + kStamp + "A1",
         "Overflow occurs when converting 8bits to 8bits 161>161"},
        {"UCS2 162 octets", kDeliverTo4412345 + "08" + kStamp + "A2",
         "Overflow occurs when copying UCS2 to UCS2 162 > 161"},
    };
    for (const RefusalCase &c : cases) {
        nkw::test::syslog_clear();
        sms_decoded_msg msg;
        auto pdu = gsm_buffer(c.pdu);
        EXPECT_EQ(-1, DecodeGsmPdu(pdu.data(), &msg)) << c.name;
        EXPECT_TRUE(nkw::test::syslog_contains(c.log)) << c.name;
    }
}

TEST(GsmBounds, EightBitDataOf160OctetsIsCopiedWhole) {
    sms_decoded_msg msg;
    std::string data;
    for (int i = 1; i <= 160; ++i) {
        char octet[3];
        snprintf(octet, sizeof octet, "%02X", i);
        data += octet;
    }
    auto pdu = gsm_buffer(kDeliverTo4412345 + "04" + kStamp + "A0" + data);
    ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg));
    ASSERT_EQ(160u, msg.deliver.dataLen);
    EXPECT_EQ(1, msg.deliver.data[0]);
    EXPECT_EQ(static_cast<char>(160), msg.deliver.data[159]);
}

TEST(GsmBounds, SevenBitTextLongerThanTheFieldIsCutAndItsLengthSetToMinusOne) {
    sms_decoded_msg msg;
    auto pdu = gsm_buffer(kDeliverTo4412345 + "00" + kStamp + "AA");  // 170 '@'
    ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg));
    EXPECT_EQ(0xFFFFFFFFu, msg.deliver.dataLen);
    EXPECT_EQ(std::string(161, '@'), std::string(msg.deliver.data, 161));
}

TEST(GsmBounds, PositionsWrapInsideTheBufferAndNullArgumentsAreRefused) {
    sms_decoded_msg msg;
    std::array<uint8_t, 256> pdu;
    pdu.fill(0xFF);  // SMSC length 255: the TPDU wraps to octet 0
    EXPECT_EQ(-1, DecodeGsmPdu(pdu.data(), &msg));
    EXPECT_EQ(-1, DecodeGsmPdu(nullptr, &msg));
    EXPECT_EQ(-1, DecodeGsmPdu(pdu.data(), nullptr));
    EXPECT_EQ(-1, DecodeGsmPdu_WAP(pdu.data(), &msg));
}

TEST(GsmLog, EveryDecoderLineIsInformationWithTheDecoderTag) {
    auto pdu = gsm_buffer(kDeliverTo4412345 + "40" + kStamp + "0178");
    sms_decoded_msg msg;
    DecodeGsmPdu(pdu.data(), &msg);
    auto records = nkw::test::syslog_records();
    ASSERT_EQ(4u, records.size());
    for (const auto &r : records) {
        EXPECT_EQ(6, r.priority);
        EXPECT_EQ(0u, r.text.find("-[SMS_PDU_DECODE] [")) << r.text;
    }
    EXPECT_NE(std::string::npos, records[0].text.find("firstByte is 4, pos is 9 "));
}

TEST(GsmLog, HexRenderingIsFreedByItsCaller) {
    const struct {
        std::string pdu;
        const char *function;
    } cases[] = {
        {kDeliverTo4412345 + "04" + kStamp + "0141", "DecodeGsmPdu"},
        // One part of one: joined and rendered at once.
        {"0051000791442143F50000AA10050003330101A665371D040FCBE9", "SplicingPdu"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        sms_decoded_msg msg;
        auto pdu = gsm_buffer(c.pdu);
        ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg)) << c.function;
        EXPECT_TRUE(nkw::test::logged_in("]-free ", c.function)) << c.function;
    }
}

}  // namespace
