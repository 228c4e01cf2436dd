// Module control: SIM reset, reboot, below-OS check, IPC mode, interrupt
// pins, USB power-down, SAR switch, random bytes and node access.
#include "device/control/control.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "device/control_test_util.h"
#include "mipc_sim.h"
#include "mipc_sim_nvram.h"
#include "mipc_sim_sar.h"
#include "mipc_sim_sim_reset.h"
#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

using nkw::test::Sandbox;
using nkw::test::syslog_contains;

namespace {

constexpr const char kClk[] = "/proc/clkdbg";
constexpr const char kWDisable[] =
    "/sys/bus/platform/devices/tolvaro_wdisable_ext_eint_pin/gtfmodeflag";
constexpr const char kGnssIrq[] =
    "/sys/bus/platform/devices/tolvaro_gnss_irq_ext_eint_pin/gtfmodeflag";
constexpr int kRead = 0;
constexpr int kWrite = 1;

TEST(ModuleControl, ResetSimPicksTheStackAndJudgesCallAndResult) {
    const struct {
        unsigned char sim;
        const char *fault;  // "", "return", "result"
        int status;
        int ps_id;
        const char *log;
    } cases[] = {
        {0, "", 0, MIPC_PS0, "sim id: 0, mipc_sim_reset_set_sync success \n"},
        {1, "", 0, MIPC_PS1, "sim id: 1, mipc_sim_reset_set_sync success \n"},
        {7, "", 0, MIPC_PS1, "sim id: 7, mipc_sim_reset_set_sync success \n"},
        {0, "return", 804, MIPC_PS0, "sim id: 0, mipc_sim_reset_set_sync failed, result=3 \n"},
        {1, "result", 804, MIPC_PS1, "sim id: 1, mipc_sim_reset_set_sync failed, result=0 \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        std::string fault = c.fault;
        if (fault == "return")
            mipc_sim::fail_next("mipc_sim_reset_set_sync", mipc_sim::return_value(3));
        if (fault == "result")
            mipc_sim::fail_next("mipc_sim_reset_set_sync", mipc_sim::result_code(9));
        EXPECT_EQ(c.status, nkw_pal_resetSIM(c.sim)) << int(c.sim) << fault;
        auto calls = mipc_sim::calls_to("mipc_sim_reset_set_sync");
        ASSERT_EQ(1u, calls.size());
        EXPECT_EQ(c.ps_id, calls[0].ps_id);
        EXPECT_EQ(0, calls[0].arg);  // pass-through mode
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
        EXPECT_EQ(c.status == 0 ? 1u : 0u, mipc_sim::sim_resets().size());
    }
}

TEST(ModuleControl, RebootRunsTheCommandAndMapsItsStatus) {
    EXPECT_EQ(0, nkw_pal_rebootModule());
    Sandbox::current().set_fake_answer("reboot", "", 1);
    EXPECT_EQ(805, nkw_pal_rebootModule());
    EXPECT_EQ((std::vector<std::string>{"reboot", "reboot"}), Sandbox::current().commands());
    EXPECT_TRUE(syslog_contains("[tolv system cmd] nkw pal system_cmd=reboot \n"));
    EXPECT_TRUE(syslog_contains("reboot module ret is: 256 \n"));
}

TEST(ModuleControl, BelowOsNeedsANonAboveStatusAndAModeOtherThanOne) {
    const struct {
        bool node;
        int status;
        int ioctl_errno;
        const char *mode_file;  // nullptr: missing
        int expected;
        const char *log;
    } cases[] = {
        {false, 0, 0, "0", 0, "pcie pcie_dipc open error. \n"},
        {true, 0, EIO, "0", 0, "pcie status ioctl error\n \n"},
        {true, 1, 0, "0", 0, "is above os status. \n"},
        {true, 0, 0, nullptr, 0, "open pcie verno file failed. \n"},
        {true, 0, 0, "1\n", 0, "is above os status. \n"},
        {true, 2, 0, "0\n", 1, "is below os status. \n"},
        {true, 0, 0, "", 1, "is below os status. \n"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        Sandbox &box = Sandbox::current();
        unlink(box.path("/dev/pcie_dipc").c_str());
        unlink(box.path("/tmp/tolv_connect_mode").c_str());
        if (c.node) box.write_file("/dev/pcie_dipc", "");
        if (c.mode_file) box.write_file("/tmp/tolv_connect_mode", c.mode_file);
        nkw_pal_sandbox_pcie_dipc_set(c.status, c.ioctl_errno);
        EXPECT_EQ(c.expected, nkw_pal_below_os_status_check()) << c.log;
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
    }
}

TEST(ModuleControl, DualIpcModeTakesTheFirstLineWhoseKeyPrefixesTheName) {
    const struct {
        const char *config;  // nullptr: no file
        int mode;
    } cases[] = {
        {nullptr, 5},
        {"dual_ipc_mode:2\n", 2},
        {"dual_ipc_mode:7\n", 5},
        {"dual_ipc_mode:0\n", 5},
        {"dual_ipc_mode\nother:1\ndual_ipc_mode:3\n", 3},  // no ":" skipped
        {"dual:4\ndual_ipc_mode:1\n", 4},                  // abbreviated key matches
        {"dual_ipc_mode_x:1\ndual_ipc_mode:\n", 5},        // neither line qualifies
        {"", 5},
    };
    for (const auto &c : cases) {
        Sandbox &box = Sandbox::current();
        const std::string path = "/mnt/vendor/nvdata/md_cmn/dipc_config";
        unlink(box.path(path).c_str());
        if (c.config) box.write_file(path, c.config);
        EXPECT_EQ(c.mode, nkw_pal_get_dual_ipc_mode()) << (c.config ? c.config : "(none)");
    }
    EXPECT_TRUE(syslog_contains("dipc open config file failed, file not exist. \n"));
    EXPECT_TRUE(syslog_contains("get_config_value success, dipc mode=7 \n"));
    EXPECT_TRUE(syslog_contains("get_dual_ipc_mode fail! \n"));
}

TEST(ModuleControl, PinsAreSwitchedOffWithTwelveBytes) {
    Sandbox &box = Sandbox::current();
    EXPECT_EQ(-1, nkw_pal_disable_w_disable());
    EXPECT_TRUE(syslog_contains("fail to open gtfmodeflag, fd is -1\n \n"));
    box.write_file(kWDisable, "");
    box.write_file(kGnssIrq, "");
    EXPECT_EQ(0, nkw_pal_disable_w_disable());
    EXPECT_EQ(0, nkw_pal_disable_gnss_irq());
    EXPECT_EQ(std::string("gtfmode_off\0", 12), box.read_file(kWDisable));
    EXPECT_EQ(std::string("gtfmode_off\0", 12), box.read_file(kGnssIrq));
    EXPECT_TRUE(syslog_contains("disable w_disable eint success \n"));
    EXPECT_TRUE(syslog_contains("disable gnss_irq eint success \n"));
    nkw_pal_sandbox_node_fail_next(kWrite, EIO);
    EXPECT_EQ(-1, nkw_pal_disable_gnss_irq());
    EXPECT_TRUE(syslog_contains("fail to write gtfmode_off, fd is "));
}

TEST(ModuleControl, RandomBytesNeedOneWholeRead) {
    Sandbox &box = Sandbox::current();
    unsigned char buf[4] = {};
    EXPECT_EQ(7, nkw_pal_rng_generate(nullptr, 4));
    EXPECT_EQ(7, nkw_pal_rng_generate(buf, 0));
    EXPECT_EQ(25, nkw_pal_rng_generate(buf, 4));  // no source at all
    EXPECT_TRUE(syslog_contains("Failed to open file \n"));
    box.write_file("/dev/urandom", "\x01\x02\x03\x04");
    EXPECT_EQ(0, nkw_pal_rng_generate(buf, 4));  // falls back to urandom
    EXPECT_EQ(4, buf[3]);
    EXPECT_TRUE(syslog_contains("Random bytes: 04 \n"));
    box.write_file("/dev/random", "\xAA\xBB");  // random is taken first, and is short
    EXPECT_EQ(25, nkw_pal_rng_generate(buf, 4));
    EXPECT_TRUE(syslog_contains("Failed to read file \n"));
    EXPECT_EQ(0, nkw_pal_rng_generate(buf, 2));
    EXPECT_EQ(0xBB, buf[1]);
}

TEST(ModuleControl, NodeUtilitiesCheckArgumentsAndNodes) {
    Sandbox &box = Sandbox::current();
    EXPECT_EQ(-1, nkw_pal_open_write_func(nullptr, "x"));
    EXPECT_EQ(-1, nkw_pal_open_write_func(kClk, nullptr));
    EXPECT_EQ(-1, nkw_pal_open_read_func(nullptr));
    EXPECT_TRUE(syslog_contains("node_name is null \n"));
    EXPECT_TRUE(syslog_contains("command is null \n"));
    EXPECT_EQ(-1, nkw_pal_open_write_func(kClk, "x"));  // never created
    EXPECT_FALSE(box.exists(kClk));
    box.write_file(kClk, "old status");
    EXPECT_EQ(0, nkw_pal_open_write_func(kClk, "pwr"));
    EXPECT_EQ("pwr status", box.read_file(kClk));
    EXPECT_EQ(0, nkw_pal_open_read_func(kClk));
    EXPECT_TRUE(syslog_contains("read success is pwr status, status is 10,fd is "));
    nkw_pal_sandbox_node_fail_next(kWrite, EIO);
    EXPECT_EQ(-1, nkw_pal_open_write_func(kClk, "y"));
    EXPECT_TRUE(syslog_contains("failed to write y to "));
    nkw_pal_sandbox_node_fail_next(kRead, EIO);
    EXPECT_EQ(-1, nkw_pal_open_read_func(kClk));
}

TEST(ModuleControl, DisableUsbRunsItsStepsInOrderThenTheModeBranch) {
    Sandbox &box = Sandbox::current();
    nkw::test::add_fake("/etc/init.d/4dipcd");
    box.write_file(kClk, "");
    const struct {
        int mode;
        const char *log;
        size_t at_sends;
    } cases[] = {
        {1, "AT cmd AT+EGMC=1,\"usb_pwrdown\" send success \n", 1},
        {2, "dont need to disable USB in PCIE only mode \n", 0},
        {3, "dont disable USB in DIPC mode \n", 0},
        {4, "unsupport ipc mode \n", 0},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        EXPECT_EQ(0, nkw_pal_disable_usb(c.mode)) << c.mode;
        mipc_sim::drain();
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
        auto sends = mipc_sim::calls_to("mipc_sys_at_async");
        ASSERT_EQ(c.at_sends, sends.size());
        if (!sends.empty()) {
            EXPECT_EQ("AT+EGMC=1,\"usb_pwrdown\"", sends[0].text);
        }
    }
    EXPECT_EQ("pwr_off pextp_d_2lx1_phy", box.read_file(kClk));  // the last write
    EXPECT_EQ(std::vector<std::string>(4, "4dipcd stop"), box.commands());
    EXPECT_TRUE(syslog_contains("[tolv system cmd] nkw pal system_cmd=/etc/init.d/4dipcd stop \n"));

    // A clock step that fails stops before the service.
    const struct {
        int which;
        const char *log;
    } failures[] = {
        {kWrite, "write pwr_off pextp_d_2lx1 failed \n"},
        {kRead, "read pwr_off pextp_d_2lx1 failed \n"},
    };
    for (const auto &f : failures) {
        nkw_pal_sandbox_node_fail_next(f.which, EIO);
        EXPECT_EQ(-1, nkw_pal_disable_usb(2));
        EXPECT_TRUE(syslog_contains(f.log)) << f.log;
    }
    EXPECT_EQ(4u, box.commands().size());

    // The completion complains only about an empty answer.
    signed char ok[] = "OK";
    nkw::test::syslog_clear();
    nkw_pal_disable_usb_cb(ok, 2);
    nkw_pal_disable_usb_cb(nullptr, 1);
    EXPECT_FALSE(syslog_contains("disable_usb_cb failed"));
    nkw_pal_disable_usb_cb(nullptr, 0);
    EXPECT_TRUE(syslog_contains("[platform] disable_usb_cb failed! \n"));
}

TEST(ModuleControl, SarSwitchesOnlyWhenAnItemEnablesIt) {
    const struct {
        std::vector<uint8_t> body, ta;
        const char *fault;  // call made to fail
        int status;
        bool switched;
        const char *log;
    } cases[] = {
        {mipc_sim::sar_item(0, 1, 36), mipc_sim::sar_item(5, 2, 52), "", 0, false,
         "sar dont enable,nothing to do \n"},
        {mipc_sim::sar_item(3, 1, 36), {}, "", 0, true, "sar_index=6 switch success \n"},
        {{}, mipc_sim::sar_item(0xFFFF, 1, 52), "", 0, true, "sar_index=6 switch success \n"},
        {mipc_sim::sar_item(3, 1, 36),
         {},
         "tolvaro_mipc_sys_sar_set_async",
         -1,
         false,
         "sar_index=6 switch failed \n"},
        {mipc_sim::sar_item(3, 1, 36),
         {},
         "mipc_sys_nvram_read_sync",
         -1,
         false,
         "bodysar nvram read failed \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        if (!c.body.empty()) mipc_sim::set_nvram_item(mipc_sim::kBodySarLid, c.body);
        if (!c.ta.empty()) mipc_sim::set_nvram_item(mipc_sim::kTaSarLid, c.ta);
        if (c.fault[0] != '\0') mipc_sim::fail_next(c.fault, mipc_sim::return_value(3));
        EXPECT_EQ(c.status, nkw_pal_sar_index_switch(6)) << c.log;
        mipc_sim::drain();
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
        EXPECT_EQ(c.switched ? 1 : 0, mipc_sim::sar_table().switches) << c.log;
        if (c.switched) {
            EXPECT_TRUE(syslog_contains("sar_index cb success mode=0, index=6\n \n"));
        }
    }
    auto reads = mipc_sim::nvram_requests();
    ASSERT_FALSE(reads.empty());
    EXPECT_EQ(36, reads[0].size);

    mipc_sim::reset();
    mipc_sim::set_nvram_item(mipc_sim::kBodySarLid, mipc_sim::sar_item(3, 1, 36));
    mipc_sim::fail_next("tolvaro_mipc_sys_sar_set_async", mipc_sim::result_code(4));
    EXPECT_EQ(0, nkw_pal_sar_index_switch(2));
    mipc_sim::drain();
    EXPECT_TRUE(syslog_contains("sar_index cb fail mode=0, index=0\n \n"));
}

}  // namespace
