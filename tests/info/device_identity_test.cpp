// Device identity: IMEI, model, chip type and firmware version, PID/VID, the
// card-detect pin and the manufacture date.
#include <gtest/gtest.h>

#include <string>

#include "info/info_test_util.h"
#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "mipc_sim_nvram.h"
#include "mipc_sim_sys_info.h"
#include "nkw_pal.h"
#include "support/sandbox.h"

namespace {

using nkw::test::Marked;
using nkw::test::syslog_contains;

constexpr char kGpioNode[] = "/sys/devices/platform/10005000.pinctrl/mt_gpio";
constexpr uint32_t kPidVidLid = 0xE111;

TEST(DeviceIdentity, ImeiAndModelAreCopiedWithoutTerminator) {
    Marked<24> imei, model;
    ASSERT_EQ(0, nkw_pal_get_imei(imei.bytes));
    EXPECT_EQ(mipc_sim::imei(), imei.text());
    ASSERT_EQ(0, nkw_pal_get_model(model.bytes));
    EXPECT_EQ("QV770K-XB", model.text());
    EXPECT_TRUE(mipc_sim::calls_to("mipc_sys_at_sync").empty());  // the model is not asked

    EXPECT_EQ(7, nkw_pal_get_imei(nullptr));
    EXPECT_EQ(-1, nkw_pal_get_model(nullptr));  // -1, not 7
    EXPECT_TRUE(syslog_contains("get imei failed for param \n"));
    EXPECT_TRUE(syslog_contains("get model failed for param \n"));
    mipc_sim::set_imei("");
    EXPECT_EQ(-1, nkw_pal_get_imei(imei.bytes));
    EXPECT_TRUE(syslog_contains("get imei failed for IMEI is null \n"));
    mipc_sim::fail_next("mipc_sys_info_get_sync", mipc_sim::return_value(2));
    EXPECT_EQ(-1, nkw_pal_get_imei(imei.bytes));
    EXPECT_TRUE(syslog_contains("get imei failed for result: 2 \n"));
    mipc_sim::fail_next("mipc_sys_info_get_sync", mipc_sim::result_code(9));
    EXPECT_EQ(-1, nkw_pal_get_imei(imei.bytes));
    EXPECT_TRUE(syslog_contains("operater success, but excute result: 9 \n"));
}

TEST(DeviceIdentity, ChipTypeAndFirmwareAreTheQuotedTextWithinTheirWindows) {
    using Query = int32_t (*)(char *);
    const struct {
        Query query;
        const char *command;
        size_t window;
        const char *what;
    } queries[] = {
        {nkw_pal_get_chip_type, "ATI5", 20, "chip type"},
        {nkw_pal_get_firmware_version, "ATI8", 64, "firmware version"},
    };
    for (const auto &q : queries) {
        SCOPED_TRACE(q.what);
        const std::string fits(q.window - 2, 'c');  // both marks inside the window
        const struct {
            std::string response;
            int32_t status;
            std::string text;
        } cases[] = {
            {"\"MT6890\"\r\nOK", 0, "MT6890"},
            {"Chip: \"A\" \"B\"", 0, "A"},
            {"\"\"", 0, ""},
            {"\"" + fits + "\"", 0, fits},
            // Closes one byte too late.
            {"\"" + fits + "c\"", -1, ""},
            {"no marks at all", -1, ""},
            {"\"open only", -1, ""},
        };
        for (const auto &c : cases) {
            SCOPED_TRACE(c.response);
            mipc_sim::set_at_reply(q.command, 0, c.response);
            Marked<80> out;
            EXPECT_EQ(c.status, q.query(out.bytes));
            EXPECT_EQ(c.text, out.text());
        }
        std::string what = q.what;
        EXPECT_TRUE(syslog_contains("get " + what + " failed for result: 0 \n"));
        EXPECT_TRUE(syslog_contains("get " + what + ": MT6890 \n"));
        EXPECT_TRUE(syslog_contains("p2: \"\r\nOK \n"));
        EXPECT_EQ(7, q.query(nullptr));
        EXPECT_TRUE(syslog_contains("get " + what + " failed for param \n"));
        Marked<8> out;
        mipc_sim::fail_next("mipc_sys_at_sync", mipc_sim::return_value(2));
        EXPECT_EQ(-1, q.query(out.bytes));
        EXPECT_TRUE(syslog_contains("get " + what + " failed for result: 2 \n"));
        mipc_sim::set_at_reply(q.command, 4, "ERROR");
        EXPECT_EQ(-1, q.query(out.bytes));
        EXPECT_TRUE(syslog_contains("operater success, but excute result: 4 \n"));
    }
    auto calls = mipc_sim::calls_to("mipc_sys_at_sync");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ("ATI5\r\n", calls[0].text);
}

TEST(DeviceIdentity, PidVidIsVendorThenDeviceInBareHex) {
    const struct {
        std::vector<uint8_t> item;  // ssdid then ssvid, little-endian
        const char *text;
    } cases[] = {
        {{0xbc, 0x0a, 0x34, 0x12}, "1234abc"},
        {{0x00, 0x00, 0x00, 0x00}, "00"},
        {{0xff, 0xff, 0xff, 0xff}, "ffffffff"},
        {{0x01, 0x00, 0x00, 0x10}, "10001"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        mipc_sim::set_nvram_item(kPidVidLid, c.item);
        Marked<12> out;
        ASSERT_EQ(0, nkw_pal_get_pidvid(out.bytes));
        EXPECT_EQ(std::string(c.text) + '\0', out.text());  // terminated
    }
    EXPECT_TRUE(syslog_contains("get mcf ssvid: 0x1234, ssdid: 0xabc \n"));
    EXPECT_TRUE(syslog_contains("get pidvid: 1234abc \n"));
    EXPECT_EQ(7, nkw_pal_get_pidvid(nullptr));
    EXPECT_TRUE(syslog_contains("get pidvid failed for param \n"));
    mipc_sim::fail_next("mipc_sys_nvram_read_sync", mipc_sim::return_value(2));
    Marked<12> out;
    EXPECT_EQ(-1, nkw_pal_get_pidvid(out.bytes));
    EXPECT_TRUE(syslog_contains("get mcf ssvid ssdid failed, ret: "));
    EXPECT_EQ("", out.text());
}

TEST(DeviceIdentity, CardDetectReadsTheLevelDigitOfPin83) {
    const struct {
        std::string node;
        int32_t level;
    } cases[] = {
        {"PIN: (MODE)(DIR)(DOUT)(DIN)\n082: 1000000\n083: 0010000\n", 1},
        {"083: 0000000\n", 0},
        {"083: 00\n", 2},                              // shorter than 8 characters
        {"083: 0020000\n", 2},                         // not a digit 0 or 1
        {"82: 0001000\n", 2},                          // no pin 83
        {" 083: 0010000\n", 2},                        // the prefix must open the line
        {std::string(60, 'x') + "\n083: 0010000", 1},  // long lines are read in pieces
        {"", 2},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.node);
        nkw::test::Sandbox::current().write_file(kGpioNode, c.node);
        EXPECT_EQ(c.level, nkw_pal_get_sim_cd_state());
    }
    EXPECT_TRUE(syslog_contains("sim_cd pin state is high level\n \n"));
    EXPECT_TRUE(syslog_contains("sim_cd pin state is low level\n \n"));
    EXPECT_TRUE(syslog_contains("[platform]: sim_cd pin state read failed\n \n"));
}

TEST(DeviceIdentity, ACardDetectNodeThatIsMissingReadsAsUnknown) {
    EXPECT_EQ(2, nkw_pal_get_sim_cd_state());
    EXPECT_TRUE(syslog_contains("open mt_gpio node failed, node not exist\n \n"));
    EXPECT_FALSE(nkw::test::Sandbox::current().exists(kGpioNode));
}

TEST(DeviceIdentity, ManufactureDateFromTheSerialsYearAndMonthLetters) {
    const struct {
        const char *response;
        const char *date;
    } cases[] = {
        {"+CFSN: \"NKW0PG0001\"\r\nOK", "20230401"},
        {"\"abcdAB6789\"", "20100101"},
        {"\"abcdZZ6789\"", "20331201"},
        {"\"abcdHJ6789\"", "20170501"},
        {"\"abcdIO6789\"", "20100101"},   // I and O are in neither table
        {"\"abcdpg6789\"", "20100101"},   // case-sensitive
        {"\"abcdPG678\"", "20100101"},    // 9 characters
        {"\"abcdPG67890\"", "20100101"},  // 11 characters
        {"abcdPG6789", "20100101"},
        {"\"abcdPG6789", "20100101"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.response);
        mipc_sim::set_at_reply("AT+CFSN", 0, c.response);
        Marked<12> out;
        ASSERT_EQ(0, nkw_pal_get_manufacture_date(out.bytes));
        EXPECT_EQ(std::string(c.date) + '\0', out.text());
    }
    EXPECT_TRUE(syslog_contains("[nkw_pal_get_date_string:"));
    EXPECT_TRUE(syslog_contains("SN: NKW0PG0001 \n"));
    EXPECT_TRUE(syslog_contains("manufacture date: 20230401 \n"));

    EXPECT_EQ(7, nkw_pal_get_manufacture_date(nullptr));
    EXPECT_TRUE(syslog_contains("get manufacture date failed for param \n"));
    Marked<12> out;
    mipc_sim::set_at_reply("AT+CFSN", 0, std::string(30, 'x') + "\"");  // one past 31 bytes
    EXPECT_EQ(-1, nkw_pal_get_manufacture_date(out.bytes));
    EXPECT_TRUE(syslog_contains("get manufacture date for at excute failed \n"));
    EXPECT_EQ("", out.text());
}

}  // namespace
