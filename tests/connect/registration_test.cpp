// Registration queries, packet attach and the registration indication,
// against the simulated modem's serving-network model.
#include <gtest/gtest.h>
#include <syslog.h>

#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_network.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

namespace {

using nkw::test::syslog_contains;

mipc_sim::Registration registered(uint8_t ps_state, const std::string &plmn = "00101") {
    mipc_sim::Registration reg;
    reg.ps_state = ps_state;
    reg.plmn = plmn;
    return reg;
}

struct Heard {
    std::mutex lock;
    std::vector<std::pair<uint32_t, void *>> states;
    void add(uint32_t state, void *user) {
        std::lock_guard<std::mutex> guard(lock);
        states.emplace_back(state, user);
    }
};
Heard &heard() {
    static Heard instance;
    return instance;
}
void listen(uint32_t state, void *user) {
    heard().add(state, user);
}

TEST(Registration, StatesMapTheSameForQueryAndIndicationExceptUnknownValues) {
    constexpr uint32_t kUntouched = 0xABCD;
    struct Case {
        uint8_t modem;
        uint32_t queried;  // kUntouched: the output keeps its value
        uint32_t indicated;
    };
    const Case cases[] = {{2, 2, 2}, {0, 0, 0}, {1, 1, 1},         {3, 3, 3},
                          {4, 0, 0}, {5, 4, 4}, {7, kUntouched, 0}};
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(listen, nullptr));
    for (const Case &c : cases) {
        SCOPED_TRACE(c.modem);
        heard().states.clear();
        mipc_sim::set_registration(registered(c.modem));
        ASSERT_EQ(1u, heard().states.size());
        EXPECT_EQ(c.indicated, heard().states[0].first);
        uint32_t state = kUntouched;
        EXPECT_EQ(0, nkw_pal_get_register_state(&state));
        EXPECT_EQ(c.queried, state);
        EXPECT_TRUE(
            syslog_contains("[platform] network ps_state:" + std::to_string(c.modem) + " \n"));
    }
}

TEST(Registration, InfoStringCopiesMccAndTheFourBytesAfterItOnlyWhenRegistered) {
    struct Case {
        uint8_t ps_state;
        std::string plmn;
        std::string mcc;  // "###": untouched
        std::string mnc;  // four bytes, "####": untouched
    };
    const Case cases[] = {
        {1, "46001", "460", std::string("01\0\0", 4)},
        {5, "310260", "310", std::string("260\0", 4)},
        {0, "46001", "###", "####"},
        {2, "46001", "###", "####"},
        {4, "46001", "###", "####"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.plmn + " state " + std::to_string(c.ps_state));
        mipc_sim::set_registration(registered(c.ps_state, c.plmn));
        char mcc[3];
        char mnc[4];
        std::memset(mcc, '#', sizeof mcc);
        std::memset(mnc, '#', sizeof mnc);
        EXPECT_EQ(0, nkw_pal_get_register_info_str(mcc, mnc));
        EXPECT_EQ(c.mcc, std::string(mcc, sizeof mcc));
        EXPECT_EQ(c.mnc, std::string(mnc, sizeof mnc));
        EXPECT_TRUE(syslog_contains(
            "network network_name: Test Network, reg_state.plmn: " + c.plmn + " \n"));
    }
}

TEST(Registration, BadArgumentsAndModemFailuresAreRefusedWithTheirLines) {
    char mcc[3] = {};
    char mnc[4] = {};
    uint32_t state = 99;
    EXPECT_EQ(-1, nkw_pal_get_register_info_str(nullptr, mnc));
    EXPECT_EQ(-1, nkw_pal_get_register_info_str(mcc, nullptr));
    EXPECT_TRUE(syslog_contains("[platform] get reg_info failed for param \n"));
    EXPECT_EQ(-1, nkw_pal_get_register_state(nullptr));
    EXPECT_TRUE(syslog_contains("[platform] get reg_state failed for param \n"));
    EXPECT_TRUE(mipc_sim::calls_to("mipc_nw_register_state_get_sync").empty());

    const mipc_sim::Fault faults[] = {mipc_sim::return_value(MIPC_RESULT_TIMEOUT),
                                      mipc_sim::result_code(9)};
    for (const mipc_sim::Fault &fault : faults) {
        mipc_sim::fail_next("mipc_nw_register_state_get_sync", fault);
        EXPECT_EQ(-1, nkw_pal_get_register_info_str(mcc, mnc));
        mipc_sim::fail_next("mipc_nw_register_state_get_sync", fault);
        EXPECT_EQ(-1, nkw_pal_get_register_state(&state));
        std::string result = "result=" + std::to_string(fault.value) + " \n";
        EXPECT_TRUE(syslog_contains("nkw_pal_get_register_info failed, " + result));
        EXPECT_TRUE(syslog_contains("nkw_pal_get_register_state failed, " + result));
    }
    EXPECT_EQ(99u, state);
    EXPECT_EQ(std::string(3, '\0'), std::string(mcc, 3));
}

TEST(Registration, StateQueryAlwaysTracesAtErrorLevel) {
    nkw_pal_log_set_level(NKW_PAL_LOG_ERROR);
    uint32_t state = 0;
    nkw_pal_get_register_state(&state);
    nkw_pal_get_register_state(nullptr);
    auto traces = nkw::test::syslog_matching("[platform] enter nkw_pal_get_register_state \n");
    ASSERT_EQ(2u, traces.size());
    EXPECT_EQ(LOG_ERR, traces[0].priority);
}

TEST(PsAttach, TheBoundIsSignedAndTheModemJudgesTheRest) {
    struct Case {
        int32_t state;
        bool reaches_modem;
        int32_t result;
        uint32_t attach_after;
    };
    const Case cases[] = {
        {2, false, -1, 1}, {INT32_MAX, false, -1, 1}, {0, true, 0, 0},
        {1, true, 0, 1},   {-1, true, -1, 1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.state);
        mipc_sim::clear_journal();
        EXPECT_EQ(c.result, nkw_pal_ps_attach(c.state));
        auto calls = mipc_sim::calls_to("mipc_nw_ps_set_sync");
        ASSERT_EQ(c.reaches_modem ? 1u : 0u, calls.size());
        if (c.reaches_modem) {
            EXPECT_EQ(MIPC_PS_ALL, calls[0].ps_id);
            EXPECT_EQ(static_cast<uint32_t>(c.state), static_cast<uint32_t>(calls[0].arg));
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
    int first = 0;
    int second = 0;
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(listen, &first));
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(listen, &second));
    ASSERT_EQ(0, nkw_pal_register_state_indication_register(nullptr, nullptr));
    ASSERT_EQ(0, nkw_pal_ps_attach(0));
    ASSERT_EQ(2u, heard().states.size());
    EXPECT_EQ(std::make_pair(0u, static_cast<void *>(&first)), heard().states[0]);
    EXPECT_EQ(std::make_pair(0u, static_cast<void *>(&second)), heard().states[1]);
    EXPECT_TRUE(
        syslog_contains("register_state_ind_cb network_error=0, ps_state=0, cs_state=1 \n"));

    uint32_t state = 9;
    EXPECT_EQ(0, nkw_pal_get_register_state(&state));
    EXPECT_EQ(0u, state);
}

TEST(RegistrationIndication, ARefusedRegistrationFreesItsRecord) {
    mipc_sim::fail_next("mipc_nw_register_state_register",
                        mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(-1, nkw_pal_register_state_indication_register(listen, nullptr));
    EXPECT_TRUE(syslog_contains("[platform] mipc_nw_register_state_register failed \n"));
    EXPECT_EQ(nkw::test::syslog_matching("]-malloc ").size(),
              nkw::test::syslog_matching("]-free ").size());
    mipc_sim::set_registration(registered(MIPC_NW_REG_STATE_ROAMING));
    EXPECT_TRUE(heard().states.empty());
}

}  // namespace
