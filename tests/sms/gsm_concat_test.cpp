// Concatenated GSM parts: each call returns its own part; the parts of one
// reference are tracked across calls.
#include <gtest/gtest.h>

#include "sms/sms_pdu.h"
#include "support/syslog_capture.h"

using namespace std::string_literals;
using nkw::test::gsm_buffer;
using nkw::test::syslog_contains;

namespace {

// DELIVER with TP-UDHI from +4412345, 7-bit, up to TP-UDL.
const std::string kDeliverPart = "07911326040000F0440791442143F5000042111221436580"s;

struct PartCase {
    std::string pdu;  // from TP-UDL on
    std::string text;
    const char *log;  // what the tracking logs for this part
};

TEST(GsmConcatenation, SevenBitPartsWithASixOctetHeaderDecodeToExactlyTheirText) {
    const PartCase parts[] = {
        {"200500032A0301A061391DF47697416F33280C62BFDD6710BD8CA7B340", "Part one of a long text, ",
         "refnum = 2a, maxnum = 3, curnum = 1 size = 25 "},
        // Another concatenation while the first is open: decoded, not tracked.
        {"0C0500030702019E7474590E", "Other", nullptr},
        {"220500032A0302E061391D44BFBF41E6379BFDBECF411B1EBA2C2F6F7C2C10",
         "part two follows [here], ", "SmsCurNum = 2 "},
        {"130500032A0303C26E32888E2E83CA6EB20B", "and the end.", "length = 62 "},
        // The reference is closed: a new one starts.
        {"0C0500030702019E7474590E", "Other", "refnum = 7, maxnum = 2, curnum = 1 size = 5 "},
        {"0C0500030702029E7474590E", "Other", "length = 10 "},
    };
    for (const PartCase &p : parts) {
        nkw::test::syslog_clear();
        sms_decoded_msg msg;
        auto pdu = gsm_buffer(kDeliverPart + p.pdu);
        ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg)) << p.text;
        EXPECT_EQ(p.text, nkw::test::deliver_text(msg));
        EXPECT_EQ(p.text.size(), msg.deliver.dataLen);
        if (p.log != nullptr) {
            EXPECT_TRUE(syslog_contains(p.log)) << p.text;
        } else {
            EXPECT_FALSE(syslog_contains("SmsCurNum")) << p.text;
            EXPECT_FALSE(syslog_contains("refnum =")) << p.text;
        }
    }
}

TEST(GsmConcatenation, FullSizePartKeepsAll153Characters) {
    std::string text;
    for (int i = 0; i < 17; ++i) text += "abcdefghi";
    sms_decoded_msg msg;
    auto pdu = gsm_buffer(
        kDeliverPart +
        "A0050003440101C2E231B96C3EA3D361F1985C369FD1E9B0784C2E9BCFE874583C2697CD67743A2C1E93CBE6"
        "333A1D168FC965F3199D0E8BC7E4B2F98C4E87C56372D97C46A7C3E231B96C3EA3D361F1985C369FD1E9B078"
        "4C2E9BCFE874583C2697CD67743A2C1E93CBE6333A1D168FC965F3199D0E8BC7E4B2F98C4E87C56372D97C46"
        "A7C3E231B96C3EA3D3");
    ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg));
    EXPECT_EQ(text, nkw::test::deliver_text(msg));
}

TEST(GsmConcatenation, EightBitPartCountsTheHeaderLengthOctetInItsLength) {
    sms_decoded_msg msg;
    auto pdu = gsm_buffer("07911326040000F0440791442143F500044211122143658009050003110101414243");
    ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg));
    EXPECT_EQ(4u, msg.deliver.dataLen);
    EXPECT_EQ("ABC\0"s, nkw::test::deliver_text(msg));
}

struct LayoutCase {
    const char *name;
    std::string pdu;
    uint32_t type;
    uint32_t flags;
    std::string text;      // always at the DELIVER data position
    uint32_t deliver_len;  // the DELIVER length field
    uint32_t submit_len;   // the SUBMIT length field, 20 bytes before it
    const char *log;
};

TEST(GsmConcatenation, SevenBitPartTextSitsInTheDeliverLayoutItsCountInItsOwnType) {
    const LayoutCase cases[] = {
        // One part of one: complete at once.
        {"SUBMIT part", "0051000791442143F50000AA10050003330101A665371D040FCBE9",
         NKW_PAL_SMS_TYPE_SUBMIT, 4, "Sent part", 0, 9, "length = 9 "},
        {"DELIVER part", "07911326040000F0440791442143F50000421112214365800C0500030702019E7474590E",
         NKW_PAL_SMS_TYPE_DELIVER, 3, "Other", 5, 0, "refnum = 7, maxnum = 2, curnum = 1 "},
    };
    for (const LayoutCase &c : cases) {
        sms_decoded_msg msg;
        auto pdu = gsm_buffer(c.pdu);
        ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg)) << c.name;
        EXPECT_EQ(c.type, msg.deliver.type) << c.name;
        EXPECT_EQ(c.flags, msg.deliver.flags) << c.name;
        EXPECT_EQ(c.text, std::string(msg.deliver.data, c.text.size())) << c.name;
        EXPECT_EQ(c.deliver_len, msg.deliver.dataLen) << c.name;
        EXPECT_EQ(c.submit_len, msg.submit.dataLen) << c.name;
        EXPECT_TRUE(syslog_contains(c.log)) << c.name;
    }
}

}  // namespace
