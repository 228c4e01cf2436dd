// nkwctl's gnss, flash, time, module and sim-inject groups, each run as a
// program of its own in the test's sandbox: the simulated GNSS adaptor and
// control socket live in the test's process, flash devices are image files,
// the clock is the sandbox's test clock and reboot a recording fake.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <string>

#include "mipc_sim.h"
#include "mipc_sim_control.h"
#include "mipc_sim_gnss.h"
#include "nkw_pal.h"
#include "run.h"
#include "support/sandbox.h"

extern "C" const char *nkw_pal_sandbox_gnss_socket_name(void);

namespace {

using nkw::test::nkwctl;
using nkw::test::Outcome;
using nkw::test::Sandbox;

struct Case {
    const char *args;
    int status;
    const char *out;
    const char *err;  // found in standard error
};

void expect_all(const Case *cases, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const Case &c = cases[i];
        SCOPED_TRACE(c.args);
        const Outcome run = nkwctl(c.args);
        EXPECT_EQ(c.status, run.status) << run.err;
        EXPECT_EQ(c.out, run.out);
        EXPECT_NE(std::string::npos, run.err.find(c.err)) << run.err;
    }
}

template <size_t N>
void expect_all(const Case (&cases)[N]) {
    expect_all(cases, N);
}

TEST(NkwctlGroups, GnssFixFromTheAdaptorAndNmeaText) {
    mipc_sim::GnssAdaptorScript script;
    script.track.epochs = -1;
    ASSERT_TRUE(mipc_sim::start_gnss_adaptor(nkw_pal_sandbox_gnss_socket_name(), script));
    const Outcome fix = nkwctl("-K gnss fix --seconds 10");
    EXPECT_EQ(0, fix.status) << fix.err;
    EXPECT_EQ(0u, fix.out.find("gnss.valid : 1\ngnss.latitude : 48.117298\n"
                               "gnss.longitude : 11.516666\ngnss.altitude : 545.4\n"
                               "gnss.hdop : 0.9\ngnss.fix_quality : 1\ngnss.satellites : 8\n"
                               "gnss.timestamp : "))
        << fix.out;
    expect_all({
        {"gnss agps enable 1", 0, "", ""},
        {"gnss agps mode 7", 1, "", "MODE"},
    });
    EXPECT_EQ("AT+ELCSAGPSMODE=,,,,,,,1", mipc_sim::gnss_adaptor_commands(3).back());
    mipc_sim::stop_gnss_adaptor();
    // Without an adaptor the library falls back on descriptor 0: never the user's input.
    expect_all({{"gnss fix --seconds 1", 1, "",
                 "gnss fix failed: status -1: no valid fix from the GNSS adaptor"}});

    // The library wants four or five decimals of minutes; the position is personal.
    const std::string nmea =
        "'$GNGGA,123519,4807.0380,S,01131.0000,W,1,08,0.9,545.4,M,46.9,M,,*47\r\n"
        "$GNRMC,123519,A,4807.0380,S,01131.0000,W,022.4,084.4,230394,003.1,W*6A'";
    expect_all({
        {("-K gnss nmea " + nmea).c_str(), 0,
         "gnss.valid : 1\ngnss.latitude : -48.117298\ngnss.longitude : -11.516666\n"
         "gnss.altitude : 545.4\ngnss.hdop : 0.9\ngnss.fix_quality : 1\ngnss.satellites : 8\n",
         ""},
        {("-J --hide-personal gnss nmea " + nmea).c_str(), 0,
         "{\n  \"gnss\": {\n    \"altitude\": 545.4,\n    \"fix_quality\": 1,\n"
         "    \"hdop\": 0.9,\n    \"latitude\": \"********\",\n    \"longitude\": \"********\",\n"
         "    \"satellites\": 8,\n    \"valid\": 1\n  }\n}\n",
         ""},
    });
}

TEST(NkwctlGroups, FlashPartitionsAndTheRegionOnADeviceImage) {
    const Sandbox &box = Sandbox::current();
    box.write_file("/proc/mtd",
                   "dev:    size   erasesize  name\n"
                   "mtd0: 00010000 00001000 \"appsbl\"\n"
                   "mtd1: 00020000 00001000 \"mddata_bak\"\n");
    std::string image(0x20000, '\xff');
    image.replace(16, 5, "hello");
    box.write_file("/dev/mtd1", image);
    const std::string copy = box.path("/copy.bin");
    expect_all({
        {"-K flash list", 0,
         "flash.mtd0.name : aboot\nflash.mtd0.size : 65536\nflash.mtd0.erase_size : 4096\n"
         "flash.mtd1.name : mddata_bak\nflash.mtd1.size : 131072\nflash.mtd1.erase_size : 4096\n",
         ""},
        {"-K flash info mddata_bak", 0,
         "flash.mddata_bak.device : 1\nflash.mddata_bak.size : 131072\n"
         "flash.mddata_bak.erase_size : 4096\nflash.mddata_bak.write_size : 1\n",
         ""},
        {"-K flash read mddata_bak 16 5", 0, "flash.mddata_bak.hex : 68656C6C6F\n", ""},
        {("-K flash read mddata_bak 16 5 --out " + copy).c_str(), 0,
         ("flash.mddata_bak.file : " + copy + "\nflash.mddata_bak.length : 5\n").c_str(), ""},
        // Written, read back and erased across separate runs: the image keeps it.
        {"-K flash region write 0x1000 CAFE", 0, "", ""},
        {"-K flash region read 0x0fff 4", 0, "flash.region.hex : FFCAFEFF\n", ""},
        {"-K flash region erase 0x1000 1", 0, "", ""},
        {"-K flash region read 0x1000 2", 0, "flash.region.hex : FFFE\n", ""},
        {"-K flash region read 16 5", 0, "flash.region.hex : 68656C6C6F\n", ""},
        // Refusals.
        {"flash info boot", 1, "", "flash info failed: status -1: no partition named boot"},
        {"flash region read 0x20000 1", 1, "", "flash region read failed: status 604"},
        {"flash region write 0 abc", 1, "", "expected an even number of hex digits"},
        {"flash region erase 0", 1, "", "LENGTH"},
        {"flash read nosuch 0 1", 1, "", "no partition named nosuch"},
    });
    EXPECT_EQ("hello", nkw::test::slurp(copy));
    EXPECT_EQ(std::string("\xff\xfe", 2), box.read_file("/dev/mtd1").substr(0x1000, 2));
}

TEST(NkwctlGroups, FlashWithoutAPartitionListFails) {
    expect_all({
        {"flash list", 1, "", "flash list failed: status -1"},
        {"flash region read 0 1", 1, "", "flash region read failed: status 602"},
    });
}

TEST(NkwctlGroups, TimeIsSetOnlyOnTheSandboxClock) {
    setenv("TZ", "UTC0", 1);
    const Outcome now = nkwctl("-K time");
    EXPECT_EQ(0, now.status) << now.err;
    for (const char *key : {"time.local : ", "\ntime.weekday : ", "\ntime.timestamp : ",
                            "\ntime.uptime : ", "\ntime.ticks : ", "\ntime.modem : "})
        EXPECT_NE(std::string::npos, now.out.find(key)) << key;
    expect_all({
        {"-K time set '2024-02-29 12:34:56'", 0,
         "time.local : 2024-02-29 12:34:56\ntime.weekday : 4\ntime.timestamp : 1709210096\n", ""},
        {"time set '2023-02-29 00:00:00'", 1, "",
         "time set failed: status 7: expected \"YYYY-MM-DD hh:mm:ss\""},
        {"time set '2024-02-30 00:00:00'", 1, "", "expected \"YYYY-MM-DD"},
        {"time set '2024-01-01 24:00:00'", 1, "", "expected \"YYYY-MM-DD"},
        {"time set '2024-01-01 00:00:00 x'", 1, "", "expected \"YYYY-MM-DD"},
        {"time set", 1, "", "expected \"YYYY-MM-DD"},
        {"time set --timestamp -5", 1, "", "timestamp"},
    });
    // A timestamp replaces the seconds only; the clock's microseconds run on,
    // so the read-back may already be a second later.
    const Outcome stamped = nkwctl("-K time set --timestamp 86400");
    EXPECT_EQ(0, stamped.status) << stamped.err;
    const std::string second_0 =
        "time.local : 1970-01-02 00:00:00\ntime.weekday : 5\ntime.timestamp : 172800\n";
    const std::string second_1 =
        "time.local : 1970-01-02 00:00:01\ntime.weekday : 5\ntime.timestamp : 172801\n";
    EXPECT_TRUE(stamped.out == second_0 || stamped.out == second_1) << stamped.out;
}

TEST(NkwctlGroups, ModuleQueriesAndControlsReachOnlyTheSandbox) {
    const Sandbox &box = Sandbox::current();
    box.write_file("/dev/random", std::string("\x01\xab\x00\xff", 4));
    box.write_file("/mnt/vendor/nvdata/md_cmn/dipc_config", "dual_ipc_mode:3\n");
    box.write_file("/sys/bus/platform/devices/tolvaro_wdisable_ext_eint_pin/gtfmodeflag", "");
    expect_all({
        {"-K module", 0, "module.ipc_mode : 3\nmodule.below_os : 0\n", ""},
        {"-K module random 4", 0, "module.random : 01AB00FF\n", ""},
        {"-K module reboot", 0, "", ""},
        {"-K module sim-reset 1", 0, "", ""},
        {"-K module w-disable-off", 0, "", ""},
        {"module gnss-irq-off", 1, "", "module gnss-irq-off failed: status -1: the pin node"},
        {"module random 8", 1, "", "module random failed: status 25: no random bytes"},
        {"module sim-reset 2", 1, "", "SIM"},
    });
    EXPECT_EQ(std::string("gtfmode_off\0", 12),
              box.read_file("/sys/bus/platform/devices/tolvaro_wdisable_ext_eint_pin/gtfmodeflag"));
    box.set_fake_answer("reboot", "", 1);
    expect_all({{"module reboot", 1, "", "module reboot failed: status 805"}});
    EXPECT_EQ((std::vector<std::string>{"reboot", "reboot"}), box.commands());
}

std::atomic<int> g_plugged{-1};

TEST(NkwctlGroups, SimInjectDrivesARunningProcess) {
    const std::string socket = Sandbox::current().path("/control.sock");
    setenv(mipc_sim::kControlEnv, socket.c_str(), 1);
    ASSERT_EQ(MIPC_RESULT_SUCCESS, mipc_init("nkwctl_groups_test"));
    ASSERT_EQ(0, nkw_pal_hotplug_status_indication_register(
                     [](int32_t plugged, void *) { g_plugged = plugged; }, nullptr));
    Sandbox::current().write_file("/events", "\n{\"event\": \"hotplug\", \"cause\": 11}\n");
    const std::string events = " <" + Sandbox::current().path("/events");
    expect_all({
        // The socket from the environment, the event as an argument.
        {"sim-inject '{\"event\": \"hotplug\", \"cause\": 12}'", 0, "", ""},
    });
    mipc_sim::drain();
    EXPECT_EQ(1, g_plugged.load());
    expect_all({
        {("sim-inject -s " + socket + events).c_str(), 0, "", ""},
        {"sim-inject '{\"event\": \"reboot\"}'", 1, "",
         "sim-inject: {\"event\": \"reboot\"}: error at /event: expected one of"},
    });
    mipc_sim::drain();
    EXPECT_EQ(0, g_plugged.load());
    unsetenv(mipc_sim::kControlEnv);
    mipc_deinit();
    expect_all({
        {"sim-inject '{}'", 1, "", "no control socket: give -s or set NKW_PAL_SIM_CONTROL"},
        {("sim-inject -s " + socket + " '{}'").c_str(), 1, "", "control.sock: "},
    });
}

}  // namespace
