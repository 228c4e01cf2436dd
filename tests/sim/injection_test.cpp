// Live event injection: sim-inject drives a registered indication of the
// library through the control socket, and bad lines are answered, not fatal.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "mipc_sim.h"
#include "mipc_sim_control.h"
#include "nkw_pal.h"
#include "support/sandbox.h"

namespace {

std::atomic<int> g_plugged{-1};

struct Injection : testing::Test {
    std::string socket = nkw::test::Sandbox::current().path("/control.sock");
    void SetUp() override {
        g_plugged = -1;
        setenv(mipc_sim::kControlEnv, socket.c_str(), 1);
        ASSERT_EQ(MIPC_RESULT_SUCCESS, mipc_init("injection_test"));
        unsetenv(mipc_sim::kControlEnv);
    }
    void TearDown() override { mipc_deinit(); }

    // Runs sim-inject with `arguments` (and `input` on stdin); its exit status and stderr.
    int inject(const std::string &arguments, const std::string &input, std::string *said) {
        const std::string err = nkw::test::Sandbox::current().path("/inject.err");
        const std::string in = nkw::test::Sandbox::current().path("/inject.in");
        nkw::test::Sandbox::current().write_file("/inject.in", input);
        const std::string command = std::string(SIM_INJECT " -s '") + socket + "' " + arguments +
                                    " <'" + in + "' 2>'" + err + "'";
        const int status = std::system(command.c_str());
        *said = nkw::test::Sandbox::current().read_file("/inject.err");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST_F(Injection, AnInjectedEventReachesTheLibrarysCallback) {
    ASSERT_EQ(0, nkw_pal_hotplug_status_indication_register(
                     [](int32_t plugged, void *) { g_plugged = plugged; }, nullptr));
    std::string said;
    EXPECT_EQ(0, inject("'{\"event\": \"hotplug\", \"cause\": 12}'", "", &said)) << said;
    mipc_sim::drain();
    EXPECT_EQ(1, g_plugged.load());
    EXPECT_EQ(0, inject("", "\n{\"event\": \"hotplug\", \"cause\": 11}\n", &said)) << said;
    mipc_sim::drain();
    EXPECT_EQ(0, g_plugged.load());
}

TEST_F(Injection, RefusedEventsAreReportedAndTheRestStillRun) {
    ASSERT_EQ(0, nkw_pal_hotplug_status_indication_register(
                     [](int32_t plugged, void *) { g_plugged = plugged; }, nullptr));
    std::string said;
    EXPECT_EQ(
        1,
        inject("", "{\"event\": \"reboot\"}\nnot json\n{\"event\": \"hotplug\", \"cause\": 12}\n",
               &said));
    EXPECT_NE(std::string::npos, said.find("error at /event: expected one of sms")) << said;
    EXPECT_NE(std::string::npos, said.find("not json: error line 1, column 2: syntax error"))
        << said;
    mipc_sim::drain();
    EXPECT_EQ(1, g_plugged.load());
}

TEST_F(Injection, TheSocketIsRemovedAtSessionEnd) {
    struct stat st {};
    EXPECT_EQ(0, stat(socket.c_str(), &st));
    mipc_deinit();
    EXPECT_NE(0, stat(socket.c_str(), &st));
    std::string said;
    EXPECT_EQ(1, inject("'{\"event\": \"hotplug\", \"cause\": 12}'", "", &said));
}

}  // namespace
