// Offline log capture: the NV switch, first start, restore from the record,
// rotation through eight files, and the timer on the alarm clock.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "device/control_test_util.h"
#include "mipc_sim.h"
#include "mipc_sim_nvram.h"
#include "nkw_pal.h"
#include "os/timer_seam.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

using nkw::test::Sandbox;
using nkw::test::syslog_contains;
using nkw::test::timer_seam;

namespace {

constexpr uint32_t kSwitchLid = 0xE11D;  // NV item 34
const std::string kBase = "/data/tolv_offline_log";
const std::string kRecord = "/data/tolv_offline_log_record.log";

std::string snapshot(int n) {
    return kBase + std::to_string(n) + ".log";
}

std::string record_of(int n) {
    std::string text = "current_log_file:" + std::to_string(n);
    text.resize(40, '\0');
    return text;
}

class OfflineLog : public testing::Test {
   protected:
    void SetUp() override {
        nkw::test::add_fake("rm");
        nkw::test::add_fake("touch");
        Sandbox::current().write_file("/data/.keep", "");  // the data partition
        timer_seam = {};
        timer_seam.substitute_clock = true;
    }
    static void enable(uint8_t minutes) { mipc_sim::set_nvram_item(kSwitchLid, {1, minutes}); }
};

TEST_F(OfflineLog, SwitchDecidesBetweenClearingAndCapturing) {
    Sandbox &box = Sandbox::current();
    EXPECT_EQ(-1, nkw_pal_offline_log_init());  // item missing
    EXPECT_TRUE(syslog_contains("offline_log modem nv read failed, ret = "));

    mipc_sim::set_nvram_item(kSwitchLid, {0, 5});
    EXPECT_EQ(0, nkw_pal_offline_log_init());
    std::vector<std::string> removals;
    for (int n = 8; n >= 1; --n) removals.push_back("rm -f " + box.path(snapshot(n)));
    removals.push_back("rm -f " + box.path(kRecord));
    EXPECT_EQ(removals, box.commands());
    EXPECT_EQ(0, timer_seam.creates);

    enable(5);
    EXPECT_EQ(0, nkw_pal_offline_log_init());
    for (int n = 1; n <= 8; ++n) EXPECT_EQ("", box.read_file(snapshot(n))) << n;
    EXPECT_EQ(record_of(1), box.read_file(kRecord));
    EXPECT_EQ(CLOCK_BOOTTIME_ALARM, timer_seam.clock);
    EXPECT_EQ(300, timer_seam.setting.it_value.tv_sec);
    EXPECT_EQ(300, timer_seam.setting.it_interval.tv_sec);
    EXPECT_TRUE(syslog_contains("offline_log init success! \n"));
}

TEST_F(OfflineLog, WithoutAnAlarmClockInitFails) {
    enable(1);
    timer_seam.fail_next_create = EPERM;
    EXPECT_EQ(-1, nkw_pal_offline_log_init());
    EXPECT_TRUE(syslog_contains("offline_log timer create failed, ret = -1 \n"));
    enable(0);  // an interval of 0 leaves the timer disarmed
    EXPECT_EQ(0, nkw_pal_offline_log_init());
    EXPECT_EQ(0, timer_seam.setting.it_interval.tv_sec);
    EXPECT_EQ(0, timer_seam.setting.it_value.tv_nsec);
}

TEST_F(OfflineLog, RestoreContinuesTheRotationFromTheRecord) {
    const struct {
        std::string record;
        int next_file;  // written by the first tick
    } cases[] = {
        {record_of(5), 6},
        {record_of(8), 1},                                  // after 8 comes 1
        {"current_log_file:3", 4},                          // short record, key first
        {std::string(17, '.') + "4current_log_file:2", 5},  // position 17, not the key's
        {"xcurrent_log_file:3", 1},                         // ':' - '0' + 1 is past 8
    };
    for (const auto &c : cases) {
        Sandbox &box = Sandbox::current();
        box.write_file(kRecord, c.record);
        for (int n = 1; n <= 8; ++n) box.write_file(snapshot(n), "old");
        unlink(box.path(snapshot(2)).c_str());
        box.set_fake_output("logread", "syslog dump\n");
        enable(1);
        ASSERT_EQ(0, nkw_pal_offline_log_init()) << c.record;
        EXPECT_TRUE(syslog_contains("recreat it")) << c.record;
        nkw_pal_offline_log_timeout_callback();
        EXPECT_EQ("syslog dump\n", box.read_file(snapshot(c.next_file))) << c.record;
        EXPECT_EQ(record_of(c.next_file), box.read_file(kRecord)) << c.record;
    }
    EXPECT_EQ("rm -f " + Sandbox::current().path(snapshot(2)), Sandbox::current().commands()[0]);
}

TEST_F(OfflineLog, BrokenRecordStartsTheSetAfresh) {
    int ticks = 0;
    for (const std::string &record : {std::string("garbage"), std::string("curr")}) {
        Sandbox &box = Sandbox::current();
        box.write_file(kRecord, record);
        enable(2);
        ASSERT_EQ(0, nkw_pal_offline_log_init());
        EXPECT_TRUE(syslog_contains("offline_log strstr failed! \n"));
        EXPECT_TRUE(syslog_contains("offline_log reboot failed, clear all log file \n"));
        // The rm fake leaves the files; first start then rewrites them.
        EXPECT_EQ(record_of(1), box.read_file(kRecord));
        // A failed restore leaves the rotation where it was.
        nkw_pal_offline_log_timeout_callback();
        EXPECT_EQ(record_of(++ticks), box.read_file(kRecord));
    }
}

TEST_F(OfflineLog, RotationWrapsAfterEightTicks) {
    Sandbox &box = Sandbox::current();
    enable(1);
    ASSERT_EQ(0, nkw_pal_offline_log_init());
    std::string order;
    for (int i = 0; i < 10; ++i) {
        nkw_pal_offline_log_timeout_callback();
        order += box.read_file(kRecord)[17];
    }
    EXPECT_EQ("1234567812", order);
}

}  // namespace
