// CDMA transport-layer messages: addresses, user-data encodings, refusals.
// Every message: type 0, teleservice 4098, an address, bearer data with a
// message identifier (id 0x1234), user data and mostly a time stamp.
#include <gtest/gtest.h>

#include "sms/sms_pdu.h"
#include "support/syslog_capture.h"

using namespace std::string_literals;
using nkw::test::address_of;
using nkw::test::from_hex;
using nkw::test::syslog_contains;

namespace {

std::string repeat(const std::string &s, int n) {
    std::string out;
    while (n-- > 0) out += s;
    return out;
}

int32_t decode(const std::string &hex, sms_decoded_msg *msg) {
    std::vector<uint8_t> pdu = from_hex(hex);
    return DecodeCdmaPdu(pdu.data(), static_cast<uint8_t>(pdu.size()), msg);
}

struct CdmaCase {
    const char *name;
    std::string pdu;
    uint32_t type;
    uint32_t flags;
    std::string address;
    std::string text;
    const char *log;
};

TEST(CdmaDecode, AddressesAndEncodingsFillTheRecord) {
    const CdmaCase cases[] = {
        {"10 DTMF digits, 7-bit ASCII",
         "0000021002020702955448D159C0081A0003112340010B10548CBB366F410E24D82003062411"
         "21123456",
         0, 1, "5551234567", "Hello CDMA", "Buffer overflow will occur (25>21)"},
        {"DTMF codes 10, 11, 12",
         "0000021002020501AAF048C0081200031123400103100F800306241121123456", 0, 1, "0*#123", "x",
         nullptr},
        {"12 DTMF digits fit",
         "0000021002020803048D159E268480081200031123400103100FA00306241121123456", 0, 1,
         "123456789012", "z", nullptr},
        {"13 DTMF digits are refused",
         "0000021002020803448D159E26848C081200031123400103100FA00306241121123456", 0, 0, "", "z",
         "Internal buffer of originating address is too small 52"},
        {"DTMF code 0", "00000210020203008400081200031123400103100F100306241121123456", 0, 0, "",
         "q", "0 digit code is not possible"},
        {"e-mail address, octet data",
         "00000210020208D082B0A031173180081300031123400104001008100306241121123456", 0, 1, "a@b.c",
         "\x01\x02", nullptr},
        {"data network number type 3",
         "00000210020208D882B0A031173180081200031123400103100F900306241121123456", 0, 0, "", "y",
         "Do not support this number type 3"},
        {"octet data", "000002100202020064081500031123400106002007FA0A100306241121123456", 0, 1,
         "9",
         "\x00\xFF"
         "AB"s,
         nullptr},
        {"7-bit ASCII, 160 characters",
         "0000021002020300C48C089D0003112340018E15061C58F265CD9F469D587163C997367D1A75"
         "61C58F265CD9F469D587163C997367D1A7561C58F265CD9F469D587163C997367D1A7561C58F"
         "265CD9F469D587163C997367D1A7561C58F265CD9F469D587163C997367D1A7561C58F265CD9"
         "F469D587163C997367D1A7561C58F265CD9F469D587163C997367D1A7561C58F265CD9F469D5"
         "87163C997367D1A7500306241121123456",
         0, 1, "123", repeat("abcdefghij", 16), nullptr},
        {"Unicode, 70 fields",
         "0000021002020300C48C089D0003112340018E223020F820F820F820F820F820F820F820F820"
         "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
         "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
         "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
         "F820F820F820F820F80306241121123456",
         0, 1, "123", repeat("\x04\x1F", 70), "fieldsNumber 70/161"},
        {"no time stamp", "0000021002020300C48C080B0003112340010410174E60", 0, 1, "123", "ts",
         "No service center time stamp in the message"},
        {"wrong-length priority is skipped",
         "0000021002020300C48C081700031123400802400001041016FD600306241121123456", 0, 1, "123",
         "ok", "8: Subparameter length should be 1"},
        {"unknown ids are skipped",
         "0000021002090101020300908006010407020800080D00031123401001000103100F50", 0, 1, "42", "u",
         "Do not support this subparameter Id: 16"},
        {"submit to an ASCII number",
         "000002100204088831A9A9A9818980080D00032123400106102D2CBC3679", 1, 4, "555010", "Reply",
         nullptr},
    };
    for (const CdmaCase &c : cases) {
        nkw::test::syslog_clear();
        sms_decoded_msg msg;
        ASSERT_EQ(0, decode(c.pdu, &msg)) << c.name;
        EXPECT_EQ(c.type, msg.deliver.type) << c.name;
        EXPECT_EQ(c.flags, msg.deliver.flags) << c.name;
        EXPECT_EQ(c.address, address_of(msg)) << c.name;
        if (c.type == NKW_PAL_SMS_TYPE_DELIVER) {
            EXPECT_EQ(c.text, nkw::test::deliver_text(msg)) << c.name;
            EXPECT_EQ('\0', msg.deliver.timestamp[0]) << c.name;
        } else {
            EXPECT_EQ(c.text, nkw::test::submit_text(msg)) << c.name;
            EXPECT_EQ(0u, msg.deliver.dataLen) << c.name;
        }
        if (c.log != nullptr) {
            EXPECT_TRUE(syslog_contains(c.log)) << c.name;
        }
    }
}

struct RefusalCase {
    const char *name;
    std::string pdu;
    const char *log;
    const char *then;
    bool zeroes_record;  // bearer data and a message identifier were found
};

TEST(CdmaDecode, RefusedMessagesLeaveTheRecordUntouchedUntilBearerDataIsFound) {
    const RefusalCase cases[] = {
        {"71 Unicode fields",
         "0000021002020300C48C089F00031123400190223820F820F820F820F820F820F820F820F820"
         "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
         "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
         "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
         "F820F820F820F820F820F80306241121123456",
         "Internal buffer of userData is too small 71", "No data in the message", true},
        {"no bearer data", "0000021002020300C48C", "No Bearer data in the message", nullptr, false},
        {"no message identifier", "0000021002020300C48C08050103100E10",
         "No message identifier in the message", nullptr, false},
        {"message type 3", "0000021002020300C48C080A00033123400103100E10",
         "Do not support this message type 3", nullptr, true},
        {"encoding 3", "0000021002020300C48C081300031123400104181418400306241121123456",
         "encoding 3 not supported", "Could not retrieve data", true},
        {"parameter past the end", "000002100208280003112340", "runs past the message", nullptr,
         false},
    };
    for (const RefusalCase &c : cases) {
        nkw::test::syslog_clear();
        sms_decoded_msg msg;
        std::memset(&msg, 0xA5, sizeof msg);
        EXPECT_EQ(-1, decode(c.pdu, &msg)) << c.name;
        EXPECT_TRUE(syslog_contains(c.log)) << c.name;
        if (c.then != nullptr) {
            EXPECT_TRUE(syslog_contains(c.then)) << c.name;
        }
        EXPECT_EQ(c.zeroes_record ? 0u : 0xA5A5A5A5u, msg.deliver.type) << c.name;
    }
}

TEST(CdmaDecode, LinesAreLoggedUnderTheStepThatWritesThem) {
    const struct {
        std::string pdu;
        const char *log;
        const char *function;
    } cases[] = {
        {"000003100200020300C48C080B0003112340010410174E60",
         "0: SMS message parameter length should be 2", "ReadParameters"},
        {"0009010002020300C48C080B0003112340010410174E60", "Do not support this Parameter Id: 9",
         "ReadParameters"},
        {"0000021002020300C48C080B0003112340010410174E60", "]-free ", "DecodeCdmaPdu"},
        {"0000021002020300C48C081300031123400104181418400306241121123456",
         "Could not retrieve data", "DecodeCdmaPdu"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        sms_decoded_msg msg;
        decode(c.pdu, &msg);
        EXPECT_TRUE(nkw::test::logged_in(c.log, c.function)) << c.log;
    }
}

TEST(CdmaDecode, LengthThatDoesNotAddUpIsRefusedWithinTheGivenBytes) {
    std::vector<uint8_t> pdu = from_hex(
        "0000021002020702955448D159C0081A0003112340010B10548CBB366F410E24D82003062411"
        "21123456");
    sms_decoded_msg msg;
    for (size_t cut = 0; cut < pdu.size(); ++cut) {
        std::vector<uint8_t> shorter(pdu.begin(), pdu.begin() + static_cast<long>(cut));
        EXPECT_EQ(-1, DecodeCdmaPdu(shorter.data(), static_cast<uint8_t>(cut), &msg)) << cut;
    }
    EXPECT_EQ(-1, DecodeCdmaPdu(nullptr, 4, &msg));
    EXPECT_EQ(-1, DecodeCdmaPdu(pdu.data(), static_cast<uint8_t>(pdu.size()), nullptr));
}

}  // namespace
