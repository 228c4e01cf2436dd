// Registration queries, packet attach and the registration indication,
// against the simulated modem's serving-network model.
#include <gtest/gtest.h>
#include <syslog.h>

#include <cstring>
#include <string>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_network.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

namespace {

using nkw::test::syslog_contains;

void set_ps(uint8_t ps_state, const std::string &plmn = "00101") {
    mipc_sim::Registration reg;
    reg.ps_state = ps_state;
    reg.plmn = plmn;
    mipc_sim::set_registration(reg);  // returns once the indications are delivered
}

// Filled on the dispatcher thread; read after the model has drained it.
std::vector<std::pair<uint32_t, void *>> heard;
void listen(uint32_t state, void *user) {
    heard.emplace_back(state, user);
}

TEST(Registration, StatesMapTheSameForQueryAndIndicationExceptUnknownValues) {
    constexpr uint32_t kUntouched = 0xABCD;
    const struct {
        uint8_t modem;
        uint32_t queried, indicated;
    } cases[] = {{2, 2, 2}, {0, 0, 0}, {1, 1, 1},         {3, 3, 3},
                 {4, 0, 0}, {5, 4, 4}, {7, kUntouched, 0}};
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(listen, nullptr));
    for (const auto &c : cases) {
        SCOPED_TRACE(c.modem);
        heard.clear();
        set_ps(c.modem);
        ASSERT_EQ(1u, heard.size());
        EXPECT_EQ(c.indicated, heard[0].first);
        uint32_t state = kUntouched;
        EXPECT_EQ(0, nkw_pal_get_register_state(&state));
        EXPECT_EQ(c.queried, state);
        EXPECT_TRUE(syslog_contains("network ps_state:" + std::to_string(c.modem) + " \n"));
    }
}

TEST(Registration, InfoStringCopiesMccAndTheFourBytesAfterItOnlyWhenRegistered) {
    const struct {
        uint8_t ps_state;
        std::string plmn, mcc, mnc;  // '#': untouched
    } cases[] = {
        {1, "46001", "460", std::string("01\0\0", 4)},
        {5, "310260", "310", std::string("260\0", 4)},
        {0, "46001", "###", "####"},
        {4, "46001", "###", "####"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.plmn + " state " + std::to_string(c.ps_state));
        set_ps(c.ps_state, c.plmn);
        char mcc[3], mnc[4];
        std::memset(mcc, '#', sizeof mcc);
        std::memset(mnc, '#', sizeof mnc);
        EXPECT_EQ(0, nkw_pal_get_register_info_str(mcc, mnc));
        EXPECT_EQ(c.mcc, std::string(mcc, sizeof mcc));
        EXPECT_EQ(c.mnc, std::string(mnc, sizeof mnc));
        EXPECT_TRUE(syslog_contains("network_name: Test Network, reg_state.plmn: " + c.plmn));
    }
}

TEST(Registration, BadArgumentsAndModemFailuresAreRefusedWithTheirLines) {
    char mcc[3] = {}, mnc[4] = {};
    uint32_t state = 99;
    EXPECT_EQ(-1, nkw_pal_get_register_info_str(nullptr, mnc));
    EXPECT_EQ(-1, nkw_pal_get_register_info_str(mcc, nullptr));
    EXPECT_EQ(-1, nkw_pal_get_register_state(nullptr));
    EXPECT_TRUE(syslog_contains("[platform] get reg_info failed for param \n"));
    EXPECT_TRUE(syslog_contains("[platform] get reg_state failed for param \n"));
    EXPECT_TRUE(mipc_sim::calls_to("mipc_nw_register_state_get_sync").empty());
    // The entry trace shows at the default level, at error priority.
    auto traces = nkw::test::syslog_matching("[platform] enter nkw_pal_get_register_state \n");
    ASSERT_EQ(1u, traces.size());
    EXPECT_EQ(LOG_ERR, traces[0].priority);

    for (const mipc_sim::Fault &fault :
         {mipc_sim::return_value(MIPC_RESULT_TIMEOUT), mipc_sim::result_code(9)}) {
        mipc_sim::fail_next("mipc_nw_register_state_get_sync", fault);
        EXPECT_EQ(-1, nkw_pal_get_register_info_str(mcc, mnc));
        mipc_sim::fail_next("mipc_nw_register_state_get_sync", fault);
        EXPECT_EQ(-1, nkw_pal_get_register_state(&state));
        std::string result = "failed, result=" + std::to_string(fault.value) + " \n";
        EXPECT_TRUE(syslog_contains("nkw_pal_get_register_info " + result));
        EXPECT_TRUE(syslog_contains("nkw_pal_get_register_state " + result));
    }
    EXPECT_EQ(99u, state);
    EXPECT_EQ(std::string(3, '\0'), std::string(mcc, 3));
}

TEST(PsAttach, TheBoundIsSignedAndTheModemJudgesTheRest) {
    const struct {
        int32_t state;
        bool reaches_modem;
        int32_t result;
        uint32_t attach_after;
    } cases[] = {{2, false, -1, 1},
                 {INT32_MAX, false, -1, 1},
                 {0, true, 0, 0},
                 {1, true, 0, 1},
                 {-1, true, -1, 1}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.state);
        mipc_sim::clear_journal();
        EXPECT_EQ(c.result, nkw_pal_ps_attach(c.state));
        auto calls = mipc_sim::calls_to("mipc_nw_ps_set_sync");
        ASSERT_EQ(c.reaches_modem ? 1u : 0u, calls.size());
        if (c.reaches_modem) {
            EXPECT_EQ(static_cast<uint32_t>(c.state), calls[0].arg);
        }
        EXPECT_EQ(c.attach_after, mipc_sim::attach_state());
    }
    EXPECT_TRUE(syslog_contains("get ps_state failed for param \n"));
    EXPECT_TRUE(syslog_contains("ps request attach_state: 0, network_error: 0 \n"));
    EXPECT_TRUE(syslog_contains("mipc_nw_ps_set_sync failed, result=0,code=4 \n"));
    mipc_sim::fail_next("mipc_nw_ps_set_sync", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(-1, nkw_pal_ps_attach(0));
    EXPECT_TRUE(syslog_contains("mipc_nw_ps_set_sync failed, result=1,code=0 \n"));
}

TEST(RegistrationIndication, EveryListenerHearsADetachWithItsOwnUserData) {
    int first = 0, second = 0;
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(listen, &first));
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(listen, &second));
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(nullptr, nullptr));
    ASSERT_EQ(0, nkw_pal_ps_attach(0));
    const decltype(heard) expected = {{0, &first}, {0, &second}};
    EXPECT_EQ(expected, heard);
    EXPECT_TRUE(
        syslog_contains("register_state_ind_cb network_error=0, ps_state=0, cs_state=1 \n"));
    uint32_t state = 9;
    EXPECT_EQ(0, nkw_pal_get_register_state(&state));
    EXPECT_EQ(0u, state);
}

TEST(RegistrationIndication, ARefusedRegistrationFreesItsRecordAndHearsNothing) {
    mipc_sim::fail_next("mipc_nw_register_state_register", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_register_state_indication_register(listen, nullptr));
    EXPECT_TRUE(syslog_contains("[platform] mipc_nw_register_state_register failed \n"));
    EXPECT_EQ(1u, nkw::test::syslog_matching("]-free ").size());
    set_ps(MIPC_NW_REG_STATE_ROAMING);
    EXPECT_TRUE(heard.empty());
}

}  // namespace
