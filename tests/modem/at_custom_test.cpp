// Custom AT commands: registration, the modem forwarding a command to its
// handler, and the handler's answer.
#include <gtest/gtest.h>
#include <syslog.h>

#include <cstring>
#include <string>
#include <thread>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "modem/at/at_records.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;
using nkw::test::syslog_matching;

namespace {

constexpr uint32_t kCmdId = 0x8F70;

std::thread::id g_handler_thread;
std::string g_line;

// Reads the command line and answers with it in parameter 1 and "done" in 2.
int32_t echo_handler(nkw_pal_modem_msg_t *msg) {
    g_handler_thread = std::this_thread::get_id();
    uint16_t type = mipc_sim::kAtCommandLineTlv;
    uint16_t *type_ref = &type;
    char line[64] = {};
    uint32_t len = 0;
    if (nkw_pal_modem_msg_get(msg, &type_ref, line, sizeof line - 1, &len) != 0) return 9;
    g_line = line;
    nkw_pal_at_reply reply{0, line, len, "done", 4};
    return nkw_pal_at_resp(msg, &reply) == 0 ? 1107 : 8;
}

TEST(AtRegister, ForwardedCommandsReachTheHandlerOnTheModemThreadAndItsAnswerGoesBack) {
    nkw_pal_at_cmd_reg reg{"+QDEMO", (uintptr_t{1} << 32) | kCmdId, nullptr, echo_handler};
    ASSERT_EQ(0, nkw_pal_at_register(&reg));
    EXPECT_TRUE(syslog_contains("]-AT CMD: +QDEMO, id: 0x8f70 registed success \n"));
    auto registered = mipc_sim::calls_to("mipc_msg_register_cmd_api");
    ASSERT_EQ(1u, registered.size());
    EXPECT_EQ(kCmdId, registered[0].msg_id);  // the low 32 bits
    EXPECT_EQ(0, registered[0].arg);

    // The handler's own status reaches the modem library unchanged.
    EXPECT_EQ(1107, mipc_sim::send_custom_at(kCmdId, "AT+QDEMO=42"));
    EXPECT_NE(std::this_thread::get_id(), g_handler_thread);
    EXPECT_EQ("AT+QDEMO=42", g_line);
    auto answers = mipc_sim::replies_to(kCmdId);
    ASSERT_EQ(1u, answers.size());
    std::vector<std::pair<int, std::string>> tlvs;
    for (const auto &t : answers[0].tlvs)
        tlvs.emplace_back(t.type, std::string(t.value.begin(), t.value.end()));
    EXPECT_EQ((std::vector<std::pair<int, std::string>>{
                  {0, std::string(4, '\0')}, {1, std::string("AT+QDEMO=42\0", 12)}, {2, "done"}}),
              tlvs);
    EXPECT_EQ(0, mipc_sim::live_messages());
    // Kept for the life of the process: allocated, never freed.
    EXPECT_EQ(1u, syslog_matching(" 272\n").size());
    EXPECT_TRUE(syslog_matching("]-free 0x").empty());
}

TEST(AtRegister, RefusesIncompleteRegistrationsAndFreesTheRecordWhenTheModemRefuses) {
    std::string n255(255, 'N'), n256(256, 'N');
    struct {
        nkw_pal_at_cmd_reg reg;
        int32_t status;
        const char *message;
    } const cases[] = {
        {{nullptr, kCmdId, nullptr, echo_handler}, 7, "input param is incorrect \n"},
        {{"+Q", 0, nullptr, echo_handler}, 7, "input param is incorrect \n"},
        {{"+Q", kCmdId, nullptr, nullptr}, 7, "input param is incorrect \n"},
        {{"", kCmdId, nullptr, echo_handler}, 7, "AT command name len is incorrect \n"},
        {{n256.c_str(), kCmdId, nullptr, echo_handler}, 7, "AT command name len is incorrect \n"},
        {{n255.c_str(), kCmdId, nullptr, echo_handler}, 0, " registed success \n"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        nkw_pal_at_cmd_reg reg = c.reg;
        EXPECT_EQ(c.status, nkw_pal_at_register(&reg)) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
    }
    EXPECT_EQ(7, nkw_pal_at_register(nullptr));

    nkw::test::syslog_clear();
    mipc_sim::fail_next("mipc_msg_register_cmd_api", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    nkw_pal_at_cmd_reg reg{"+QX", 0x77, nullptr, echo_handler};
    EXPECT_EQ(-1, nkw_pal_at_register(&reg));
    EXPECT_TRUE(syslog_contains("]-AT CMD: +QX, id: 0x77 registed failed \n"));
    EXPECT_EQ(1u, syslog_matching("]-free 0x").size());
}

TEST(AtResp, SendsTheResultAndThePresentParametersAndReleasesTheReply) {
    const struct {
        nkw_pal_at_reply reply;
        const char *fault;  // modem library call that fails next
        int32_t status;
        size_t tlvs_sent;  // 0: no reply reached the modem
        const char *message;
    } cases[] = {
        {{5, nullptr, 0, nullptr, 0}, "", 0, 1, "set at result: 5 \n"},
        {{0, "x", 0, "two", 3}, "", 0, 2, "at response success. \n"},
        {{0, "x", 70000, nullptr, 0}, "", -1, 0, "set at result failed \n"},
        {{0, "x", 1, nullptr, 0}, "mipc_msg_add_tlv", -1, 0, "set at result failed \n"},
        {{0, nullptr, 0, nullptr, 0}, "mipc_msg_copy_hdr", 5, 0, "build MIPC message failed. \n"},
        {{0, nullptr, 0, nullptr, 0}, "mipc_msg_rsp", 3, 0, "at response failed. \n"},
    };
    nkw_pal_log_set_level(NKW_PAL_LOG_DEBUG);
    for (const auto &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        mipc_msg_t *received = mipc_sim::make_message(kCmdId, MIPC_PS_ALL, {});
        // The result TLV is added unchecked: a refusal can only hit a parameter.
        if (std::strcmp(c.fault, "mipc_msg_add_tlv") == 0) {
            mipc_sim::fail_next(c.fault, mipc_sim::return_value(0));
        }
        if (*c.fault != '\0') mipc_sim::fail_next(c.fault, mipc_sim::return_value(3));
        EXPECT_EQ(c.status, nkw_pal_at_resp(received, &c.reply)) << c.message;
        auto sent = mipc_sim::replies_to(kCmdId);
        EXPECT_EQ(c.tlvs_sent, sent.empty() ? 0 : sent[0].tlvs.size()) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
        mipc_msg_deinit(received);
        EXPECT_EQ(0, mipc_sim::live_messages()) << c.message;
    }
    // Both absent parameters are reported under the first one's name; the
    // result line is at error level on purpose.
    EXPECT_EQ(2u, syslog_matching("]-There is no param1 infoarmtion. \n").size());
    EXPECT_EQ(LOG_ERR, syslog_matching("]-set at result: 0 \n").at(0).priority);
    nkw_pal_at_reply bare{};
    EXPECT_EQ(7, nkw_pal_at_resp(nullptr, &bare));
    EXPECT_EQ(7, nkw_pal_at_resp(&bare, nullptr));
}

TEST(AtDispatch, ReportsWhatItCannotDispatch) {
    mipc_msg_t *msg = mipc_sim::make_message(kCmdId, MIPC_PS_ALL, {});
    nkw::modem::at::CommandRecord without_handler{};
    EXPECT_NE(MIPC_RESULT_SUCCESS, nkw_pal_at_callbackInner(nullptr, &without_handler));
    EXPECT_NE(MIPC_RESULT_SUCCESS, nkw_pal_at_callbackInner(msg, nullptr));
    EXPECT_NE(MIPC_RESULT_SUCCESS, nkw_pal_at_callbackInner(msg, &without_handler));
    mipc_msg_deinit(msg);
    EXPECT_EQ(LOG_ALERT, syslog_matching("]-msg_ptr is NULL \n").at(0).priority);
    EXPECT_TRUE(syslog_contains("]-at_info is NULL \n"));
    EXPECT_EQ(LOG_WARNING, syslog_matching("]-AT command Callback is NULL \n").at(0).priority);
}

}  // namespace
