// The modem's SMS store: events, reading with decoding, deleting.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_sms.h"
#include "sms/sms_pdu.h"
#include "support/syslog_capture.h"

using nkw::test::from_hex;
using nkw::test::logged_in;
using nkw::test::syslog_contains;

namespace {

// DELIVER "Hello world" from +31612345678: TPDU of 29 octets after 8 of SMSC.
const std::string kHello =
    "07911326040000F0040B911316325476F8000042111221436580"
    "0BC8329BFD06DDDF723619";
// A status report: the decoder refuses it.
const std::string kStatusReport = "07911326040000F0060B911316325476F8";

struct Events {
    std::vector<sms_store_event> seen;
    std::thread::id thread;
};

void on_event(sms_store_event event, void *user) {
    auto *events = static_cast<Events *>(user);
    events->seen.push_back(event);
    events->thread = std::this_thread::get_id();
}

bool same(const sms_store_event &a, const sms_store_event &b) {
    return a.event == b.event && a.store_flag == b.store_flag && a.message_index == b.message_index;
}

TEST(SmsStoreEvents, NewAndFullMessagesReachTheCallbackOnTheModemThread) {
    Events events;
    ASSERT_EQ(0, nkw_pal_sms_store_state_indication_register(on_event, &events));
    ASSERT_EQ(0, nkw_pal_sms_store_state_indication_register(nullptr, nullptr));  // no callback
    mipc_sim::set_sms_capacity(2);
    mipc_sim::store_sms(0, from_hex(kHello));
    EXPECT_EQ(1, mipc_sim::receive_sms(from_hex(kHello)));  // fills the store
    EXPECT_EQ(-1, mipc_sim::receive_sms(from_hex(kHello)));

    const sms_store_event want[] = {{1, 2, 1}, {2, 2, 1}, {2, 2, 0}};
    ASSERT_EQ(3u, events.seen.size());
    for (size_t i = 0; i < 3; ++i) EXPECT_TRUE(same(want[i], events.seen[i])) << i;
    EXPECT_NE(std::this_thread::get_id(), events.thread);
    EXPECT_TRUE(syslog_contains("receive a new unread message. \n"));
    EXPECT_TRUE(syslog_contains("sms storage is full. \n"));
    EXPECT_TRUE(syslog_contains("cb, result_code:0x0,store_flag_btmp:2,message_index:1. \n"));
}

TEST(SmsStoreEvents, OtherFlagsErrorsMissingRecordsAndRefusedRegistrationsOnlyLog) {
    Events events;
    ASSERT_EQ(0, nkw_pal_sms_store_state_indication_register(on_event, &events));
    mipc_sim::fail_next("mipc_sms_store_status_register", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_sms_store_state_indication_register(on_event, &events));
    EXPECT_TRUE(logged_in("]-free ", "nkw_pal_sms_store_state_indication_register"));
    const struct {
        mipc_sms_status_struct status;
        int priority;
        const char *log;
    } cases[] = {
        {{0, 3, 4, {}}, 6, "invaild store_flag_btmp. \n"},
        {{0x10, 2, 4, {}}, 3, "register_state_ind_cb failed, result=16. \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::push_sms_store_status(c.status);
        auto lines = nkw::test::syslog_matching(c.log);
        ASSERT_EQ(1u, lines.size()) << c.log;  // the refused registration hears nothing
        EXPECT_EQ(c.priority, lines[0].priority) << c.log;
    }
    mipc_sim::push_sms_store_status_without_record();
    EXPECT_TRUE(syslog_contains("register_state_ind_cb result_ptr is invalid. \n"));
    EXPECT_TRUE(events.seen.empty());
}

TEST(SmsStoreRead, DecodedTextIsCopiedAfterADumpOfTheUnwrittenBuffer) {
    mipc_sim::store_sms(3, from_hex(kHello), mipc_sim::kSmsUnread);
    char buffer[161];
    std::memset(buffer, 0x80, sizeof buffer);
    uint32_t len = 0;
    ASSERT_EQ(0, nkw_pal_sms_get_message_request(1, 3, buffer, &len));
    EXPECT_EQ(11u, len);
    EXPECT_EQ("Hello world", std::string(buffer, 11));
    EXPECT_EQ('\x80', buffer[11]);  // no terminator

    auto request = mipc_sim::sms_requests().at(0);
    EXPECT_EQ(MIPC_PS_ALL, request.ps_id);
    EXPECT_EQ(5u, request.flag);
    EXPECT_EQ(0u, request.format);
    EXPECT_TRUE(syslog_contains("pdu_len[TPDU]:29, status:0, sms_class:255 \n"));
    EXPECT_EQ(38u, nkw::test::syslog_matching("]-buf[").size());
    EXPECT_TRUE(syslog_contains("buf[37] = ffffff80 \n"));
    EXPECT_TRUE(syslog_contains("type = 0,data= Hello world, dataLen = 11 \n"));
    EXPECT_TRUE(logged_in("free the result_ptr. \n", "nkw_pal_sms_get_message_request"));
}

TEST(SmsStoreRead, OverlongTextAndDumpStayWithinTheCallersOneHundredSixtyOneBytes) {
    // 170 septets of '@' in 149 octets: the decoder keeps 161 and reports -1.
    std::vector<uint8_t> pdu = from_hex("07911326040000F0040791442143F5000042111221436580AA");
    pdu.resize(pdu.size() + 149, 0);
    mipc_sim::store_sms(0, pdu);
    std::vector<char> buffer(161, '#');  // on the heap, where overruns are caught
    uint32_t len = 0;
    ASSERT_EQ(0, nkw_pal_sms_get_message_request(0, 0, buffer.data(), &len));
    EXPECT_EQ(161u, len);
    EXPECT_EQ(std::string(161, '@'), std::string(buffer.begin(), buffer.end()));
    EXPECT_TRUE(syslog_contains("origin sms len = 175. \n"));
    EXPECT_EQ(161u, nkw::test::syslog_matching("]-buf[").size());
}

TEST(SmsStoreRead, FailuresLeaveLengthAndBufferAndFreeTheRecord) {
    mipc_sim::store_sms(1, from_hex(kStatusReport));
    mipc_sim::store_sms(2, from_hex(kHello));
    const struct {
        uint16_t index;
        bool refused;  // the call itself fails
        const char *log;
    } cases[] = {
        {7, false, "sms read result code:0x1101 \n"},  // empty index
        {2, true, "fail,mipc_sms_read_sync \n"},
        {1, false, "DecodeGsmPdu failed.\n \n"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        if (c.refused) mipc_sim::fail_next("mipc_sms_read_sync", mipc_sim::return_value(1));
        char buffer[161] = {'#'};
        uint32_t len = 99;
        EXPECT_EQ(-1, nkw_pal_sms_get_message_request(0, c.index, buffer, &len)) << c.log;
        EXPECT_EQ(99u, len) << c.log;
        EXPECT_EQ('#', buffer[0]) << c.log;
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
        EXPECT_TRUE(syslog_contains("free the result_ptr. \n")) << c.log;
    }
    mipc_sim::clear_journal();
    uint32_t len = 0;
    EXPECT_EQ(7, nkw_pal_sms_get_message_request(0, 2, nullptr, &len));
    EXPECT_TRUE(syslog_contains("fail,sms_buf is NULL \n"));
    EXPECT_TRUE(mipc_sim::journal().empty());
}

TEST(SmsStoreDelete, ByIndexAlwaysReportsSuccessAndLogsWhatTheModemSaid) {
    mipc_sim::store_sms(4, from_hex(kHello));
    const struct {
        bool refused;
        const char *log;
    } cases[] = {
        {false, "mipc_sms_delete_sync success. \n"},
        {false, "mipc_sms_delete_sync failed, result code error. \n"},  // already gone
        {true, "mipc_sms_delete_sync failed, ret = 1. \n"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        if (c.refused) mipc_sim::fail_next("mipc_sms_delete_sync", mipc_sim::return_value(1));
        EXPECT_EQ(0, nkw_pal_sms_delete_by_index(1, 0x10004)) << c.log;  // index cut to 16 bits
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
        EXPECT_TRUE(syslog_contains("free the result_ptr. \n")) << c.log;
        // The result-code line shows 0 whatever the modem said.
        EXPECT_EQ(!c.refused, syslog_contains("result_ptr->result_code = 0. \n")) << c.log;
    }
    EXPECT_FALSE(mipc_sim::stored_sms(4, nullptr));
    for (const mipc_sim::SmsRequest &r : mipc_sim::sms_requests()) EXPECT_EQ(5u, r.flag);
}

TEST(SmsStoreDelete, AllSendsTheRawRequestAndReportsSuccessWhateverCameBack) {
    // Every outcome shows -1 in its result line, whatever came back.
    const mipc_sim::Fault kNone{mipc_sim::Fault::Kind::kReturn, 0};
    const struct {
        mipc_sim::Fault fault;
        size_t left;
        const char *log;
        const char *minus_one;
    } cases[] = {
        {kNone, 0, "delete_all_sync success. \n", "result_ptr->result_code = -1. \n"},
        {mipc_sim::result_code(2), 2, "delete_all_sync failed, result code error. \n",
         "result_ptr->result_code = -1. \n"},
        {mipc_sim::no_confirmation(), 2, "msg_cnf_ptr is NULL \n",
         "mipc_sms_delete_all_sync failed, ret = -1. \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        mipc_sim::store_sms(0, from_hex(kHello));
        mipc_sim::store_sms(5, from_hex(kHello));
        if (c.left != 0) mipc_sim::fail_next("mipc_msg_sync_timeout", c.fault);
        EXPECT_EQ(0, nkw_pal_sms_delete_all()) << c.log;
        EXPECT_EQ(c.left, mipc_sim::stored_sms_count()) << c.log;
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
        EXPECT_TRUE(syslog_contains(c.minus_one)) << c.log;
        EXPECT_EQ(0, mipc_sim::live_messages()) << c.log;
    }
    auto sent = mipc_sim::calls_to("mipc_msg_sync_timeout");
    ASSERT_EQ(1u, sent.size());
    EXPECT_EQ(0x609u, sent[0].msg_id);
    EXPECT_EQ(MIPC_PS_ALL, sent[0].ps_id);
    ASSERT_EQ(1u, sent[0].tlvs.size());
    EXPECT_EQ(0x100, sent[0].tlvs[0].type);
    EXPECT_EQ(std::vector<uint8_t>{0}, sent[0].tlvs[0].value);
}

}  // namespace
