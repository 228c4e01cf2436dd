// Scenario files: malformed documents are refused with where and why, the
// shipped ones load, and timeline events reach the library's callbacks.
#include <dirent.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_card.h"
#include "mipc_sim_network.h"
#include "mipc_sim_scenario.h"
#include "mipc_sim_sms.h"
#include "mipc_sim_sys_info.h"
#include "nkw_pal.h"
#include "support/sandbox.h"

namespace {

constexpr const char *kPdu =
    "07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07";

std::string write_scenario(const std::string &text) {
    nkw::test::Sandbox::current().write_file("/scenario.json", text);
    return nkw::test::Sandbox::current().path("/scenario.json");
}

struct Malformed {
    const char *document;
    const char *message;  // what the refusal must say after the path
};

TEST(SimScenario, MalformedDocumentsAreRefusedWithWhereAndWhat) {
    const Malformed cases[] = {
        {"", "line 1, column 1: syntax error"},
        {"{\n  \"imei\": \"1\",\n  \"sims\": [\n}", "line 4, column 1: syntax error"},
        {"[]", "at /: expected an object"},
        {"{\"imei\": 1e400}", "number overflow"},
        {"{\"imie\": \"1\"}", "at /imie: expected one of the keys description, imei"},
        {"{\"imei\": 5}", "at /imei: expected a string"},
        {"{\"sims\": {}}", "at /sims: expected an array"},
        {"{\"sims\": [{}]}", "at /sims/0/slot: expected a number (missing)"},
        {"{\"sims\": [{\"slot\": 2}]}", "at /sims/0/slot: expected a number from 0 to 1"},
        {"{\"sims\": [{\"slot\": 0, \"status\": \"locked\"}]}",
         "at /sims/0/status: expected one of ready, pin_required, blocked"},
        {"{\"network\": {\"registration\": {\"ps_state\": 1}}}",
         "at /network/registration/ps_state: expected one of not_registered, home"},
        {"{\"network\": {\"cells\": [{\"rat\": \"gsm\"}]}}",
         "at /network/cells/0/rat: expected one of lte, nr"},
        {"{\"network\": {\"cells\": [{\"rat\": 4}]}}",
         "at /network/cells/0/rat: expected one of lte, nr"},
        {"{\"timeline\": [{\"t\": 1, \"event\": [1]}]}",
         "at /timeline/0/event: expected one of sms"},
        {"{\"network\": {\"radio\": {\"sw\": 1}}}",
         "at /network/radio/hw: expected a number (missing)"},
        {"{\"data_calls\": [{\"id\": 1}]}", "at /data_calls/0/apn: expected a string (missing)"},
        {"{\"sms\": {\"stored\": [{\"index\": 0, \"pdu\": \"0G\"}]}}",
         "at /sms/stored/0/pdu: expected a non-empty string of hex digit pairs"},
        {"{\"nvram\": [{\"lid\": -1, \"hex\": \"00\"}]}",
         "at /nvram/0/lid: expected a number from 0"},
        {"{\"at\": [{\"response\": \"OK\"}]}", "at /at/0/prefix: expected a string (missing)"},
        {"{\"timeline\": [{\"event\": \"hotplug\", \"cause\": 1}]}",
         "at /timeline/0/t: expected a number of seconds from 0 to 1000000"},
        {"{\"timeline\": [{\"t\": 1e300, \"event\": \"hotplug\", \"cause\": 1}]}",
         "at /timeline/0/t: expected a number of seconds"},
        {"{\"timeline\": [{\"t\": 1, \"event\": \"reboot\"}]}",
         "at /timeline/0/event: expected one of sms"},
        {"{\"timeline\": [{\"t\": 1, \"event\": \"hotplug\", \"cause\": 1, \"x\": 2}]}",
         "at /timeline/0/x: expected one of the keys event, cause"},
        {"{\"data_calls\": [{\"apn\": \"a\", \"ipv4\": \"198.51.100.300\"}]}",
         "at /data_calls/0/ipv4: expected an IPv4 address"},
        {"{\"data_calls\": [{\"apn\": \"a\", \"ipv4_dns\": [\"192.0.2.1\", \"2001:db8::1\"]}]}",
         "at /data_calls/0/ipv4_dns/1: expected an IPv4 address"},
        {"{\"data_calls\": [{\"apn\": \"a\", \"ipv6_dns\": [\"::1\", \"::2\", \"::3\"]}]}",
         "at /data_calls/0/ipv6_dns: expected an array of at most 2 addresses"},
        {"{\"gnss\": {\"latitude\": 90.5}}", "at /gnss/latitude: expected a number from -90 to 90"},
        {"{\"gnss\": {\"agps\": \"maybe\"}}", "at /gnss/agps: expected one of ok, split_ok"},
        {"{\"sar\": {\"body_sar\": 1}}", "at /sar/body_sar: expected true or false"},
        {"{\"modem_time\": {\"utc\": \"2026-02-30T00:00:00Z\"}}",
         "at /modem_time/utc: expected a time such as"},
        {"{\"modem_time\": {\"tz_offset_min\": 60}}",
         "at /modem_time/utc: expected either utc or time_ms"},
        {"{\"timeline\": [{\"t\": 0, \"event\": \"mbim_slot_mapping\", \"option\": 1}]}",
         "at /timeline/0/sim_id: expected a number (missing)"},
        {"{\"timeline\": [{\"t\": 0, \"event\": \"cells\"}]}",
         "at /timeline/0/cells: expected an array (missing)"},
    };
    for (const Malformed &c : cases) {
        const std::string path = write_scenario(c.document);
        std::string error;
        EXPECT_FALSE(mipc_sim::load_scenario(path, &error)) << c.document;
        EXPECT_EQ(0u, error.rfind(path + ": ", 0)) << error;
        EXPECT_NE(std::string::npos, error.find(c.message)) << c.document << "\n -> " << error;
    }
    std::string error;
    EXPECT_FALSE(mipc_sim::load_scenario("/nonexistent/scenario.json", &error));
    EXPECT_EQ("/nonexistent/scenario.json: cannot be read", error);
}

TEST(SimScenario, ARefusedDocumentChangesNothing) {
    mipc_sim::set_imei("111111111111111");
    std::string error;
    EXPECT_FALSE(mipc_sim::load_scenario(
        write_scenario("{\"imei\": \"222222222222222\", \"sims\": [{\"slot\": 9}]}"), &error));
    EXPECT_EQ("111111111111111", mipc_sim::imei());
}

TEST(SimScenario, SessionStartFailsOnABadScenarioAndAppliesAGoodOne) {
    const std::string bad = write_scenario("{\"imei\": ");
    setenv(mipc_sim::kScenarioEnv, bad.c_str(), 1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(MIPC_RESULT_FAILURE, mipc_init("scenario_test"));
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, said.find("scenario refused: " + bad + ": line 1, column 10"))
        << said;
    EXPECT_FALSE(mipc_sim::session_open());

    setenv(mipc_sim::kScenarioEnv, write_scenario("{\"imei\": \"490154203237518\"}").c_str(), 1);
    EXPECT_EQ(MIPC_RESULT_SUCCESS, mipc_init("scenario_test"));
    EXPECT_EQ("490154203237518", mipc_sim::imei());
    unsetenv(mipc_sim::kScenarioEnv);
}

TEST(SimScenario, EveryShippedScenarioLoads) {
    DIR *dir = opendir(NKW_PAL_SCENARIO_DIR);
    ASSERT_NE(nullptr, dir);
    std::vector<std::string> names;
    while (dirent *entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name.size() > 5 && name.compare(name.size() - 5, 5, ".json") == 0)
            names.push_back(name);
    }
    closedir(dir);
    EXPECT_GE(names.size(), 7u);
    for (const std::string &name : names) {
        std::string error;
        EXPECT_TRUE(mipc_sim::load_scenario(std::string(NKW_PAL_SCENARIO_DIR "/") + name, &error))
            << error;
        mipc_sim::reset();
    }
}

TEST(SimScenario, InitialStateReachesTheModels) {
    std::string error;
    ASSERT_TRUE(mipc_sim::load_scenario(NKW_PAL_SCENARIO_DIR "/sim_pin_locked.json", &error))
        << error;
    EXPECT_EQ(mipc_sim::kSimStatusPinRequired, mipc_sim::sim(0).status);
    EXPECT_EQ(2u, mipc_sim::sim(0).remaining_attempts);
    EXPECT_EQ(MIPC_NW_REG_STATE_NOT_REGISTERED, mipc_sim::registration().ps_state);

    ASSERT_TRUE(mipc_sim::load_scenario(NKW_PAL_SCENARIO_DIR "/sms_store_full.json", &error))
        << error;
    EXPECT_EQ(3u, mipc_sim::stored_sms_count());
}

std::atomic<int> g_plugged{-1};

TEST(SimScenario, TimelineEventReachesTheLibrarysCallback) {
    ASSERT_EQ(0, nkw_pal_hotplug_status_indication_register(
                     [](int32_t plugged, void *) { g_plugged = plugged; }, nullptr));
    std::string error;
    ASSERT_TRUE(mipc_sim::load_scenario(
        write_scenario("{\"timeline\": [{\"t\": 0.05, \"event\": \"hotplug\", \"cause\": 12}]}"),
        &error))
        << error;
    for (int i = 0; i < 500 && g_plugged < 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(1, g_plugged.load());
}

TEST(SimScenario, ResetStopsAPendingTimeline) {
    std::string error;
    ASSERT_TRUE(mipc_sim::load_scenario(
        write_scenario(std::string("{\"timeline\": [{\"t\": 0.2, \"event\": \"sms\", \"pdu\": \"") +
                       kPdu + "\"}]}"),
        &error))
        << error;
    mipc_sim::reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    EXPECT_EQ(0u, mipc_sim::stored_sms_count());
}

}  // namespace
