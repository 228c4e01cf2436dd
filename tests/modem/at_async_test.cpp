// Asynchronous AT commands: the completion on the modem library's thread and
// the one request record that lives from the send to the completion.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "modem/at/at_records.h"
#include "nkw_pal.h"
#include "os/os_test_util.h"

using nkw::test::syslog_contains;
using nkw::test::syslog_matching;

namespace {

// What the completion received; read after the dispatcher has drained.
int g_calls = 0;
std::string g_response;
int32_t g_length = -1;
std::thread::id g_thread;

void on_response(const char *response, int32_t length) {
    ++g_calls;
    g_response = response;
    g_length = length;
    g_thread = std::this_thread::get_id();
    // This request's record is freed only after the callback returns.
    EXPECT_EQ(static_cast<size_t>(g_calls - 1), syslog_matching("]-free 0x").size());
}

// The 264-byte records the sends allocated, from their heap lines.
std::vector<void *> request_records() {
    std::vector<void *> records;
    for (const auto &line : syslog_matching("]-malloc 0x")) {
        EXPECT_NE(std::string::npos, line.text.find(" 264\n"));
        records.push_back(nullptr);
        std::sscanf(std::strstr(line.text.c_str(), "malloc "), "malloc %p", &records.back());
    }
    return records;
}

// Every test starts with no completion seen, also when run in one process.
struct AtSendAsync : testing::Test {
    void SetUp() override { g_calls = 0; }
};

TEST_F(AtSendAsync, CompletesOnTheModemThreadAndFreesTheRecordOnceAfterTheCallback) {
    mipc_sim::set_at_reply("AT+CSQ", 0, "+CSQ: 20,99\r\nOK");
    std::string longest = "AT+CSQ" + std::string(249, ';');
    ASSERT_EQ(0, nkw_pal_at_send_async(longest.c_str(), 6, on_response));  // only cmd_len bytes
    ASSERT_EQ(0, nkw_pal_at_send_async(longest.c_str(), 255, on_response));
    mipc_sim::drain();
    EXPECT_EQ(2, g_calls);
    EXPECT_EQ("+CSQ: 20,99\r\nOK", g_response);
    EXPECT_EQ(15, g_length);
    EXPECT_NE(std::this_thread::get_id(), g_thread);
    auto sent = mipc_sim::calls_to("mipc_sys_at_async");
    ASSERT_EQ(2u, sent.size());
    EXPECT_EQ("AT+CSQ", sent[0].text);
    EXPECT_EQ(longest, sent[1].text);
    EXPECT_EQ(MIPC_PS0, sent[0].ps_id);
    EXPECT_EQ(2u, request_records().size());
    auto freed = syslog_matching("]-free 0x");
    ASSERT_EQ(2u, freed.size());
    EXPECT_NE(std::string::npos, freed[0].text.find("[nkw_pal_at_send_async_cb:"));
}

TEST_F(AtSendAsync, ErrorsAndMissingCallbacksStillFreeTheRecord) {
    const struct {
        mipc_sim::AtReply reply;
        nkw_pal_at_resp_cb cb;
        int calls;
        const char *message;
    } cases[] = {
        {{4, "ERROR", 0, true}, on_response, 0, "at response failed, result_code: 4 \n"},
        {{0, "OK", 0, true}, nullptr, 0, "AT command response Callback is NULL \n"},
        {{0, "OK", 300, true}, on_response, 1, "AT command response len: 2 \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        g_calls = 0;
        mipc_sim::set_at_reply("AT+A", c.reply);
        ASSERT_EQ(0, nkw_pal_at_send_async("AT+A", 4, c.cb)) << c.message;
        mipc_sim::drain();
        if (c.reply.delay_ms != 0) {
            EXPECT_EQ(0, g_calls) << "answered before its delay";
        }
        mipc_sim::reset();  // waits for late answers too
        EXPECT_EQ(c.calls, g_calls) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
        EXPECT_TRUE(nkw::test::allocations_balanced()) << c.message;
    }
}

TEST_F(AtSendAsync, TheRecordStaysWithTheModemLibraryWhenNoCompletionComes) {
    // Refused: the modem library may still hold the record.
    mipc_sim::fail_next("mipc_sys_at_async", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(-1, nkw_pal_at_send_async("AT", 2, on_response));
    EXPECT_TRUE(syslog_contains("]-mipc_sys_at_async cmd send failed \n"));
    // Accepted, but the answer never comes.
    mipc_sim::set_at_reply("AT+NOANSWER", {0, "OK", 0, false});
    EXPECT_EQ(0, nkw_pal_at_send_async("AT+NOANSWER", 11, on_response));
    mipc_sim::drain();
    EXPECT_EQ(0, g_calls);
    EXPECT_TRUE(syslog_matching("]-free 0x").empty());
    auto records = request_records();
    EXPECT_EQ(2u, records.size());
    for (void *record : records)
        nkw_pal_free(record);  // so the leak checker sees only what it should
}

TEST_F(AtSendAsync, RefusesBadArgumentsAndSurvivesAHollowCompletion) {
    std::string too_long(256, 'A');
    EXPECT_EQ(-1, nkw_pal_at_send_async(nullptr, 2, on_response));
    EXPECT_EQ(-1, nkw_pal_at_send_async("AT", 0, on_response));
    EXPECT_EQ(2u, syslog_matching("]-input param is incorrect \n").size());
    EXPECT_EQ(-1, nkw_pal_at_send_async(too_long.c_str(), 256, on_response));
    EXPECT_TRUE(syslog_contains("]-cmd string is too long \n"));
    EXPECT_TRUE(mipc_sim::calls_to("mipc_sys_at_async").empty());

    mipc_sys_at_struct result{};
    nkw_pal_at_send_async_cb(MIPC_PS0, nullptr, nullptr);
    nkw_pal_at_send_async_cb(MIPC_PS0, &result, nullptr);
    EXPECT_EQ(2u, syslog_matching("]-at_async or result_ptr is NULL \n").size());
    EXPECT_EQ(0, g_calls);
}

}  // namespace
