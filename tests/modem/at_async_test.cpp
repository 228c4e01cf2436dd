// Asynchronous AT commands: the completion on the modem library's thread and
// the one request record that lives from the send to the completion.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "modem/at/at_records.h"
#include "nkw_pal.h"
#include "os/os_test_util.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;
using nkw::test::syslog_matching;

namespace {

struct Completion {
    std::mutex lock;
    int calls = 0;
    std::string response;
    int32_t length = -1;
    std::thread::id thread;
};
Completion g_done;

void on_response(const char *response, int32_t length) {
    std::lock_guard<std::mutex> guard(g_done.lock);
    ++g_done.calls;
    g_done.response = response;
    g_done.length = length;
    g_done.thread = std::this_thread::get_id();
    // Still held: the request record is freed after the callback returns.
    EXPECT_TRUE(syslog_matching("]-free 0x").empty());
}

int calls() {
    std::lock_guard<std::mutex> guard(g_done.lock);
    return g_done.calls;
}

// The request record the send allocated, from its heap line.
void *request_record() {
    auto allocated = syslog_matching("]-malloc 0x");
    if (allocated.size() != 1) return nullptr;
    EXPECT_NE(std::string::npos, allocated[0].text.find(" 264\n"));
    void *record = nullptr;
    std::sscanf(std::strstr(allocated[0].text.c_str(), "malloc "), "malloc %p", &record);
    return record;
}

TEST(AtSendAsync, CompletesOnTheModemThreadAndFreesTheRecordOnceAfterTheCallback) {
    mipc_sim::set_at_reply("AT+CSQ", 0, "+CSQ: 20,99\r\nOK");
    // Only cmd_len bytes are sent.
    ASSERT_EQ(0, nkw_pal_at_send_async("AT+CSQ;+COPS?", 6, on_response));
    mipc_sim::drain();
    EXPECT_EQ(1, calls());
    EXPECT_EQ("+CSQ: 20,99\r\nOK", g_done.response);
    EXPECT_EQ(15, g_done.length);
    EXPECT_NE(std::this_thread::get_id(), g_done.thread);
    auto sent = mipc_sim::calls_to("mipc_sys_at_async");
    ASSERT_EQ(1u, sent.size());
    EXPECT_EQ("AT+CSQ", sent[0].text);
    EXPECT_EQ(MIPC_PS0, sent[0].ps_id);
    void *record = request_record();
    ASSERT_NE(nullptr, record);
    auto freed = syslog_matching("]-free 0x");
    ASSERT_EQ(1u, freed.size());
    EXPECT_NE(std::string::npos, freed[0].text.find("[nkw_pal_at_send_async_cb:"));
}

struct CompletionCase {
    const char *name;
    mipc_sim::AtReply reply;
    nkw_pal_at_resp_cb cb;
    int calls;
    const char *message;
};

TEST(AtSendAsync, ErrorsAndMissingCallbacksStillFreeTheRecord) {
    const CompletionCase cases[] = {
        {"error result", {4, "ERROR", 0, true}, on_response, 0,
         "at response failed, result_code: 4 \n"},
        {"no callback", {0, "OK", 0, true}, nullptr, 0, "AT command response Callback is NULL \n"},
        {"late answer", {0, "OK", 300, true}, on_response, 1, "AT command response len: 2 \n"},
    };
    for (const CompletionCase &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        g_done.calls = 0;
        mipc_sim::set_at_reply("AT+A", c.reply);
        ASSERT_EQ(0, nkw_pal_at_send_async("AT+A", 4, c.cb)) << c.name;
        if (c.reply.delay_ms != 0) {
            EXPECT_EQ(0, calls()) << "answered before its delay";
        }
        mipc_sim::reset();  // waits for late answers too
        EXPECT_EQ(c.calls, calls()) << c.name;
        EXPECT_TRUE(syslog_contains(c.message)) << c.name;
        EXPECT_TRUE(nkw::test::allocations_balanced()) << c.name;
    }
}

TEST(AtSendAsync, TheRecordStaysWithTheModemLibraryWhenNoCompletionComes) {
    // Refused send: the modem library may still hold the record.
    mipc_sim::fail_next("mipc_sys_at_async", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(-1, nkw_pal_at_send_async("AT", 2, on_response));
    EXPECT_TRUE(syslog_contains("]-mipc_sys_at_async cmd send failed \n"));
    // An answer that never comes: sent, but never completed.
    mipc_sim::set_at_reply("AT+NOANSWER", {0, "OK", 0, false});
    EXPECT_EQ(0, nkw_pal_at_send_async("AT+NOANSWER", 11, on_response));
    mipc_sim::drain();
    EXPECT_EQ(0, calls());
    auto allocated = syslog_matching("]-malloc 0x");
    ASSERT_EQ(2u, allocated.size());
    EXPECT_TRUE(syslog_matching("]-free 0x").empty());
    for (const auto &line : allocated) {  // so the leak checker sees only what it should
        void *record = nullptr;
        std::sscanf(std::strstr(line.text.c_str(), "malloc "), "malloc %p", &record);
        nkw_pal_free(record);
    }
}

TEST(AtSendAsync, RefusesBadArgumentsAndSurvivesAHollowCompletion) {
    std::string longest(255, 'A'), too_long(256, 'A');
    EXPECT_EQ(-1, nkw_pal_at_send_async(nullptr, 2, on_response));
    EXPECT_EQ(-1, nkw_pal_at_send_async("AT", 0, on_response));
    EXPECT_EQ(2u, syslog_matching("]-input param is incorrect \n").size());
    EXPECT_EQ(-1, nkw_pal_at_send_async(too_long.c_str(), 256, on_response));
    EXPECT_TRUE(syslog_contains("]-cmd string is too long \n"));
    EXPECT_EQ(0, nkw_pal_at_send_async(longest.c_str(), 255, on_response));
    mipc_sim::drain();
    EXPECT_EQ(1, calls());
    EXPECT_EQ(longest, mipc_sim::calls_to("mipc_sys_at_async").at(0).text);

    // The modem library hands back nothing usable.
    nkw::test::syslog_clear();
    nkw_pal_at_send_async_cb(MIPC_PS0, nullptr, nullptr);
    mipc_sys_at_struct result{};
    nkw_pal_at_send_async_cb(MIPC_PS0, &result, nullptr);
    EXPECT_EQ(2u, syslog_matching("]-at_async or result_ptr is NULL \n").size());
    EXPECT_EQ(1, calls());
}

}  // namespace
