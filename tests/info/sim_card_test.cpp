// SIM identity, slot mapping, status, PIN and the status indication, against
// the simulated modem's SIM model.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "info/info_test_util.h"
#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "mipc_sim_card.h"
#include "nkw_pal.h"

namespace {

using nkw::test::Marked;
using nkw::test::syslog_contains;

void set_card(int slot, const std::string &imsi, uint8_t mnc_len) {
    mipc_sim::SimCard card = mipc_sim::sim(slot);
    card.imsi = imsi;
    card.mnc_len = mnc_len;
    mipc_sim::set_sim(slot, card);
}

TEST(SimIdentity, McccAndMncFollowTheModemsMncLengthNotTheDigits) {
    const struct {
        const char *imsi;
        uint8_t mnc_len;
        const char *mnc;
    } cases[] = {
        {"001010123456789", 2, "01"},
        {"001010123456789", 3, "010"},
        {"310260123456789", 3, "260"},
        {"46001", 0, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.imsi + std::to_string(c.mnc_len));
        set_card(0, c.imsi, c.mnc_len);
        Marked<20> imsi, mcc, mnc;
        ASSERT_EQ(0, nkw_pal_get_imsi(imsi.bytes));
        ASSERT_EQ(0, nkw_pal_get_mcc_info(mcc.bytes));
        ASSERT_EQ(0, nkw_pal_get_mnc_info(mnc.bytes));
        // No terminator: the marker byte follows the text.
        EXPECT_EQ(c.imsi, imsi.text());
        EXPECT_EQ(std::string(c.imsi, 3), mcc.text());
        EXPECT_EQ(c.mnc, mnc.text());
    }
    EXPECT_TRUE(syslog_contains("mnc_len:3, get_imsi:310260123456789, mnc:260 \n"));
    EXPECT_TRUE(syslog_contains("get_imsi:310260123456789, mcc:310 \n"));
}

TEST(SimIdentity, NullOutputsAndModemFailuresGiveTheirStatusAndLine) {
    using Query = int32_t (*)(char *);
    const struct {
        Query query;
        const char *call;
        const char *what;
    } queries[] = {
        {nkw_pal_get_imsi, "mipc_sim_imsi_get_sync", "imsi"},
        {nkw_pal_get_iccid, "mipc_sim_iccid_get_sync", "iccid"},
        {nkw_pal_get_mcc_info, "mipc_sim_imsi_get_sync", "mcc"},
        {nkw_pal_get_mnc_info, "mipc_sim_imsi_get_sync", "mnc"},
        {nkw_pal_get_eid, "mipc_sys_at_sync", "eid"},
    };
    for (const auto &q : queries) {
        SCOPED_TRACE(q.what);
        std::string what = q.what;
        EXPECT_EQ(7, q.query(nullptr));
        EXPECT_TRUE(syslog_contains("get " + what + " failed for param \n"));
        Marked<40> out;
        mipc_sim::fail_next(q.call, mipc_sim::return_value(MIPC_RESULT_TIMEOUT));
        EXPECT_EQ(-1, q.query(out.bytes));
        EXPECT_TRUE(syslog_contains("get " + what + " failed for result: 2 \n"));
        mipc_sim::fail_next(q.call, mipc_sim::result_code(0x55));
        EXPECT_EQ(-1, q.query(out.bytes));
        EXPECT_TRUE(syslog_contains("operater success, but excute result: 85 \n"));
        EXPECT_EQ("", out.text());
    }
}

TEST(SimEid, TakesThe32BytesAfterTheFirstQuoteWithinA100CharacterAnswer) {
    const std::string eid32 = "89049032000001000000000000000099";
    const struct {
        std::string response;
        int32_t status;
        std::string eid;  // up to the marker
        const char *message;
    } cases[] = {
        {"+GTESIMID: \"" + eid32 + "\"\r\nOK", 0, eid32, "operater success, eid: "},
        // No closing mark is looked for.
        {"\"" + eid32 + "TAIL", 0, eid32, "operater success, eid: "},
        {"+GTESIMID: " + eid32, -1, "", "get eid failed for result: 0 \n"},
        {std::string(100 - 34, 'x') + "\"" + eid32 + "\"", 0, eid32, "eid: "},
        {std::string(101 - 34, 'x') + "\"" + eid32 + "\"", -1, "", "EID is null \n"},
        // A mark near the end: the bytes past the answer are zeros.
        {std::string(95, 'x') + "\"abcd", 0, std::string("abcd") + std::string(28, '\0'),
         "eid: abcd \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.response);
        nkw::test::syslog_clear();
        mipc_sim::set_at_reply("AT+GTESIMID", 0, c.response);
        Marked<40> out;
        EXPECT_EQ(c.status, nkw_pal_get_eid(out.bytes));
        EXPECT_EQ(c.eid, out.text());
        EXPECT_TRUE(syslog_contains(c.message));
    }
    auto calls = mipc_sim::calls_to("mipc_sys_at_sync");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ("AT+GTESIMID=1", calls[0].text);
    EXPECT_EQ(MIPC_PS_ALL, calls[0].ps_id);
}

TEST(SimSlot, TheSwitchBoundIsSignedAndTheQueryAnswers255OnAnyFailure) {
    const struct {
        int32_t slot;
        bool reaches_modem;
        int32_t status;
    } switches[] = {{256, false, -1}, {INT32_MAX, false, -1}, {255, true, -1},
                    {-1, true, -1},   {1, true, 0},           {0, true, 0}};
    for (const auto &c : switches) {
        SCOPED_TRACE(c.slot);
        mipc_sim::clear_journal();
        EXPECT_EQ(c.status, nkw_pal_sim_slot_switch(c.slot));
        auto calls = mipc_sim::calls_to("mipc_sys_mapping_set_sync");
        ASSERT_EQ(c.reaches_modem ? 1u : 0u, calls.size());
        if (c.reaches_modem) {
            EXPECT_EQ(c.slot, calls[0].arg);
        }
    }
    EXPECT_TRUE(syslog_contains("nkw_pal_switch_sim_slot param failed. \n"));
    EXPECT_TRUE(syslog_contains("mipc_sys_mapping_set_sync result_code=4. \n"));
    mipc_sim::fail_next("mipc_sys_mapping_set_sync", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_sim_slot_switch(1));
    EXPECT_TRUE(syslog_contains("mipc_sys_mapping_set_sync failed, api_result=1. \n"));

    mipc_sim::fail_next("mipc_sys_mapping_get_sync", mipc_sim::return_value(2));
    EXPECT_EQ(255, nkw_pal_get_current_sim_slot());
    mipc_sim::fail_next("mipc_sys_mapping_get_sync", mipc_sim::result_code(9));
    EXPECT_EQ(255, nkw_pal_get_current_sim_slot());
    EXPECT_TRUE(syslog_contains("mipc_sys_mapping_get_sync failed, api_result=2. \n"));
    EXPECT_TRUE(syslog_contains("mipc_sys_mapping_get_sync result=9. \n"));
    EXPECT_EQ(0, nkw_pal_get_current_sim_slot());
    EXPECT_TRUE(syslog_contains("mipc_sys_mapping_get_sync ps_id=0. \n"));
    EXPECT_TRUE(nkw::test::heap_balanced());
}

TEST(SimStatus, StateAndStatusMapToTheCodeTable) {
    const struct {
        uint32_t state, status;
        int32_t code;
    } cases[] = {{1, 0, 0},  {1, 1, 1},  {1, 2, 7}, {1, 3, 2},          {1, 4, 3}, {1, 10, 4},
                 {1, 20, 6}, {1, 21, 7}, {1, 5, 5}, {1, 0xFFFFFFFF, 5}, {6, 0, 5}};
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.state) + "/" + std::to_string(c.status));
        mipc_sim::SimCard card;
        card.state = c.state;
        card.status = c.status;
        mipc_sim::set_sim(0, card);
        mipc_sim::clear_journal();
        EXPECT_EQ(c.code, nkw_pal_get_sim_status(0));
        // State 6 answers at once, without the status call.
        EXPECT_EQ(c.state == 6 ? 0u : 1u, mipc_sim::calls_to("mipc_sim_status_get_sync").size());
    }
}

TEST(SimStatus, IndexSelectsTheStackAndTheSpecialResultCodesAnswer) {
    const struct {
        int32_t index;
        int ps_id;  // -1: no modem call
    } indexes[] = {{0, MIPC_PS0},   {1, MIPC_PS1}, {-1, MIPC_PS1},
                   {255, MIPC_PS1}, {256, -1},     {300, -1}};
    for (const auto &c : indexes) {
        SCOPED_TRACE(c.index);
        mipc_sim::clear_journal();
        int32_t code = nkw_pal_get_sim_status(c.index);
        auto calls = mipc_sim::calls_to("mipc_sim_state_get_sync");
        if (c.ps_id < 0) {
            EXPECT_EQ(8, code);
            EXPECT_TRUE(calls.empty());
        } else {
            ASSERT_EQ(1u, calls.size());
            EXPECT_EQ(c.ps_id, calls[0].ps_id);
        }
    }
    EXPECT_TRUE(syslog_contains("nkw_pal_get_current_sim_status param failed. \n"));

    const struct {
        const char *call;
        mipc_sim::Fault fault;
        int32_t code;
        const char *message;
    } faults[] = {
        {"mipc_sim_status_get_sync", mipc_sim::result_code(3), 0, "sim_status_get_sync result=3. "},
        {"mipc_sim_status_get_sync", mipc_sim::result_code(4), 5, "sim_status_get_sync result=4. "},
        {"mipc_sim_status_get_sync", mipc_sim::result_code(2), 8, "sim_status_get_sync result=2. "},
        {"mipc_sim_status_get_sync", mipc_sim::return_value(1), 8, "failed, api_result=1. \n"},
        {"mipc_sim_state_get_sync", mipc_sim::result_code(3), 8, "sim_state_get_sync result=3. "},
        {"mipc_sim_state_get_sync", mipc_sim::return_value(2), 8, "failed, api_result=2. \n"},
    };
    for (const auto &f : faults) {
        SCOPED_TRACE(f.message);
        mipc_sim::fail_next(f.call, f.fault);
        EXPECT_EQ(f.code, nkw_pal_get_sim_status(0));
        EXPECT_TRUE(syslog_contains(f.message));
    }
}

TEST(SimPin, EntersPin1AndReportsTheModemsAnswer) {
    mipc_sim::SimCard card;
    card.status = mipc_sim::kSimStatusPinRequired;
    card.remaining_attempts = 2;
    mipc_sim::set_sim(0, card);
    EXPECT_EQ(-1, nkw_pal_sim_verify_pin(nullptr));
    EXPECT_TRUE(syslog_contains("verify_pin param get failed \n"));
    EXPECT_EQ(-1, nkw_pal_sim_verify_pin("0000"));
    EXPECT_TRUE(syslog_contains("verify_pin api get failed 4102 \n"));
    EXPECT_EQ(0, nkw_pal_sim_verify_pin("1234"));
    EXPECT_TRUE(syslog_contains("pin_type 1, pin_state 0, remaining_attempts 3 \n"));
    EXPECT_EQ(0, nkw_pal_get_sim_status(0));
    auto calls = mipc_sim::calls_to("mipc_sim_verify_pin_sync");
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(1, calls[1].arg);
    EXPECT_EQ("1234", calls[1].text);
    EXPECT_EQ(MIPC_PS_ALL, calls[1].ps_id);
    mipc_sim::fail_next("mipc_sim_verify_pin_sync", mipc_sim::return_value(2));
    EXPECT_EQ(-1, nkw_pal_sim_verify_pin("1234"));
    EXPECT_TRUE(syslog_contains("verify_pin api send failed \n"));
}

// Filled on the dispatcher thread; read after the model has drained it.
std::vector<std::tuple<int32_t, int32_t, void *>> heard;
void listen(int32_t sim_id, int32_t code, void *user) {
    heard.emplace_back(sim_id, code, user);
}

TEST(SimStatusIndication, CardChangesReachTheCallbackExceptStatusOne) {
    heard.clear();
    int user = 0;
    ASSERT_EQ(0, nkw_pal_sim_status_indication_register(listen, &user));
    const struct {
        uint32_t state, status;
        std::vector<int32_t> codes;
    } changes[] = {
        {1, 3, {2}}, {1, 1, {}}, {1, 10, {4}}, {1, 99, {}}, {6, 99, {5}}, {6, 0, {0}}, {1, 21, {7}},
    };
    for (const auto &c : changes) {
        SCOPED_TRACE(std::to_string(c.state) + "/" + std::to_string(c.status));
        heard.clear();
        mipc_sim::SimCard card = mipc_sim::sim(1);
        card.state = c.state;
        card.status = c.status;
        mipc_sim::set_sim(1, card);  // slot 1: the second stack
        std::vector<int32_t> codes;
        for (const auto &[sim_id, code, u] : heard) {
            EXPECT_EQ(1, sim_id);
            EXPECT_EQ(&user, u);
            codes.push_back(code);
        }
        EXPECT_EQ(c.codes, codes);
    }
    // The query maps status 1 although the callback never hears it.
    mipc_sim::SimCard card = mipc_sim::sim(1);
    card.status = 1;
    mipc_sim::set_sim(1, card);
    EXPECT_EQ(1, nkw_pal_get_sim_status(1));
    EXPECT_TRUE(syslog_contains("mipc_sim_status_ind_cb sim_id=1, sim_status=1 \n"));
    EXPECT_TRUE(syslog_contains("mipc_sim_state_ind_cb sim_id=1, sim_state=6 \n"));
}

TEST(SimStatusIndication, BadRecordsAreLoggedAndNotPassedOn) {
    heard.clear();
    ASSERT_EQ(0, nkw_pal_sim_status_indication_register(listen, nullptr));
    mipc_sim_status_struct status{};
    status.sim_status = 3;
    mipc_sim_state_struct state{};
    state.sim_state = 6;
    mipc_sim::push_sim_status(MIPC_PS0, std::nullopt);
    mipc_sim::push_sim_state(MIPC_PS0, std::nullopt);
    mipc_sim::push_sim_status(MIPC_PS0, status, true);
    mipc_sim::push_sim_state(MIPC_PS0, state, true);
    status.result_code = 5;
    state.result_code = 6;
    mipc_sim::push_sim_status(MIPC_PS0, status);
    mipc_sim::push_sim_state(MIPC_PS0, state);
    EXPECT_TRUE(heard.empty());
    EXPECT_TRUE(syslog_contains("sim_status_ind_cb result_ptr is invalid \n"));
    EXPECT_TRUE(syslog_contains("sim_state_ind_cb result_ptr is invalid \n"));
    EXPECT_TRUE(syslog_contains("mipc_sim_status_ind_cb result_code=0 \n"));
    EXPECT_TRUE(syslog_contains("mipc_sim_state_ind_cb result_code=0 \n"));
    EXPECT_TRUE(syslog_contains("mipc_sim_status_ind_cb result_code=5 \n"));
    EXPECT_TRUE(syslog_contains("mipc_sim_state_ind_cb result_code=6 \n"));
}

TEST(SimStatusIndication, RegistersFourTimesInOrderAndStopsAtTheFirstRefusal) {
    EXPECT_EQ(-1, nkw_pal_sim_status_indication_register(nullptr, nullptr));
    EXPECT_TRUE(syslog_contains("callback is null \n"));
    EXPECT_TRUE(mipc_sim::journal().empty());
    const struct {
        const char *call;
        bool second;  // the refusal hits the second call of that name
        const char *message;
        size_t calls;
    } refusals[] = {
        {"mipc_sim_state_register", false, "API_SIM0 mipc_sim_state_register failed \n", 1},
        {"mipc_sim_state_register", true, "API_SIM1 mipc_sim_state_register failed \n", 2},
        {"mipc_sim_status_register", false, "API_SIM0 mipc_sim_status_register failed \n", 3},
        {"mipc_sim_status_register", true, "API_SIM1 mipc_sim_status_register failed \n", 4},
    };
    for (const auto &r : refusals) {
        SCOPED_TRACE(r.message);
        mipc_sim::clear_journal();
        nkw::test::syslog_clear();
        if (r.second) mipc_sim::fail_next(r.call, mipc_sim::return_value(0));
        mipc_sim::fail_next(r.call, mipc_sim::return_value(1));
        EXPECT_EQ(-1, nkw_pal_sim_status_indication_register(listen, nullptr));
        EXPECT_TRUE(syslog_contains(r.message));
        EXPECT_EQ(r.calls, mipc_sim::journal().size());
        EXPECT_TRUE(nkw::test::heap_balanced());
    }
    // The refusals above show the order: each stops after as many calls as
    // come before it.
    mipc_sim::clear_journal();
    ASSERT_EQ(0, nkw_pal_sim_status_indication_register(listen, nullptr));
    EXPECT_EQ(4u, mipc_sim::journal().size());
}

}  // namespace
