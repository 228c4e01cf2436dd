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

TEST(GsmConcatenation, SevenBitSubmitPartIsWrittenInTheDeliverLayout) {
    sms_decoded_msg msg;
    auto pdu = gsm_buffer("0051000791442143F50000AA10050003330101A665371D040FCBE9");
    ASSERT_EQ(0, DecodeGsmPdu(pdu.data(), &msg));
    EXPECT_EQ(NKW_PAL_SMS_TYPE_SUBMIT, msg.submit.type);
    EXPECT_EQ(4u, msg.submit.flags);
    EXPECT_EQ("Sent part", nkw::test::deliver_text(msg));
    EXPECT_EQ(0u, msg.submit.dataLen);
    // One part of one: complete at once.
    EXPECT_TRUE(syslog_contains("length = 9 "));
}

}  // namespace
