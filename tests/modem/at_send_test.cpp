// Sending AT commands and waiting for the answer; the MBIM sync built on it.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

constexpr int32_t kSize = 16;
constexpr char kFifteen[] = "rrrrrrrrrrrrrrr";

TEST(AtSend, JudgesTheAnswerAndFitsItIntoTheCallersBuffer) {
    const struct {
        const char *response;
        uint32_t result_code;
        int32_t resp_size;
        int32_t status;
        const char *resp;  // what the buffer holds afterwards; nullptr: untouched
        uint32_t resp_len;
        const char *message;
    } cases[] = {
        {kFifteen, 0, kSize, 0, kFifteen, 15, "response data: rrrrrrrrrrrrrrr, len: 15 \n"},
        {"+X: 1\r\nOK", 0, kSize, 0, "+X: 1\r\nOK", 9, "AT Command response data len: 9 \n"},
        {"rrrrrrrrrrrrrrrr", 0, kSize, 1109, nullptr, 0, "resp_size is too small. \n"},
        {"OK", 0, -5, 1109, nullptr, 0, "resp_size is too small. \n"},
        {"OK", 0, INT32_MIN, 1109, nullptr, 0, "resp_size is too small. \n"},
        {"", 0, kSize, 1109, nullptr, 0, "output AT Command response data failed. \n"},
        {"ERROR", 4, kSize, 1107, nullptr, 77, "AT Command response result: 4 \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        mipc_sim::set_at_reply("AT+T", c.result_code, c.response);
        char resp[kSize + 8];
        std::memset(resp, '#', sizeof resp);
        uint32_t resp_len = 77;
        EXPECT_EQ(c.status, nkw_pal_at_send("AT+T", 4, resp, c.resp_size, &resp_len)) << c.message;
        EXPECT_EQ(c.resp_len, resp_len) << c.message;
        std::string expected = c.resp != nullptr ? std::string(c.resp) + '\0' : "#";
        EXPECT_EQ(expected, std::string(resp, expected.size())) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
    }
}

TEST(AtSend, ChecksTheArgumentsAndSendsTheWholeTextToTheModem) {
    char resp[8];
    uint32_t len = 0;
    std::string longest = "AT+L" + std::string(251, 'x'), too_long(256, 'A');
    struct {
        const char *cmd;
        uint32_t cmd_len;
        char *resp;
        int32_t resp_size;
        uint32_t *resp_len;
        int32_t status;
    } const cases[] = {
        {nullptr, 2, resp, 8, &len, -1},          {"AT", 0, resp, 8, &len, -1},
        {"AT", 2, nullptr, 8, &len, -1},          {"AT", 2, resp, 0, &len, -1},
        {"AT", 2, resp, 8, nullptr, -1},          {too_long.c_str(), 256, resp, 8, &len, -1},
        {longest.c_str(), 255, resp, 8, &len, 0}, {"AT+CSQ", 2, resp, 8, &len, 0},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.status, nkw_pal_at_send(c.cmd, c.cmd_len, c.resp, c.resp_size, c.resp_len));
    }
    EXPECT_EQ(5u, nkw::test::syslog_matching("]-input param is incorrect \n").size());
    EXPECT_TRUE(syslog_contains("]-cmd string is too long \n"));
    // cmd_len is only checked: the text goes out to its terminator.
    auto sent = mipc_sim::calls_to("mipc_sys_at_sync");
    ASSERT_EQ(2u, sent.size());
    EXPECT_EQ(longest, sent[0].text);
    EXPECT_EQ("AT+CSQ", sent[1].text);
    EXPECT_EQ(MIPC_PS_ALL, sent[0].ps_id);

    mipc_sim::fail_next("mipc_sys_at_sync", mipc_sim::return_value(MIPC_RESULT_TIMEOUT));
    EXPECT_EQ(-1, nkw_pal_at_send("AT", 2, resp, 8, &len));
    EXPECT_TRUE(syslog_contains("]-AT Command send failed: 2 \n"));
}

TEST(MbimStatusSync, SendsTheSyncCommandAndFailsOnAnyRefusal) {
    EXPECT_EQ(0, nkw_pal_quarn_mbim_status_sync());
    mipc_sim::set_at_reply("AT+GTMBIMSYNC", 0, std::string(40, 'x'));  // does not fit 40 bytes
    EXPECT_EQ(-1, nkw_pal_quarn_mbim_status_sync());
    mipc_sim::set_at_reply("AT+GTMBIMSYNC", 1, "ERROR");
    EXPECT_EQ(-1, nkw_pal_quarn_mbim_status_sync());
    EXPECT_EQ(2u, nkw::test::syslog_matching("]-quarn_mbim_statu sync failed \n").size());
    auto sent = mipc_sim::calls_to("mipc_sys_at_sync");
    ASSERT_EQ(3u, sent.size());
    EXPECT_EQ("AT+GTMBIMSYNC\r", sent[0].text);
}

}  // namespace
