// Timers: the clock and notification asked for, arming and its time
// arithmetic, firing one-shot and periodic, stop and delete.
#include <gtest/gtest.h>

#include <array>
#include <cerrno>

#include "nkw_pal.h"
#include "os/os_test_util.h"
#include "os/timer_seam.h"

using nkw::test::allocations_balanced;
using nkw::test::logged_by;
using nkw::test::Signal;
using nkw::test::syslog_contains;
using nkw::test::timer_seam;

namespace {

timer_info *const kUntouched = reinterpret_cast<timer_info *>(0x1);

void post(void *signal) {
    static_cast<Signal *>(signal)->post();
}

class Timer : public testing::Test {
   protected:
    void SetUp() override { timer_seam = {}; }
    void TearDown() override {
        if (handle != nullptr && handle != kUntouched) nkw_pal_timer_delete(&handle);
    }
    // A timer on the substituted clock, so it really runs here.
    void create() {
        timer_seam.substitute_clock = true;
        ASSERT_EQ(0, nkw_pal_timer_create(post, &fired, "t", &handle));
    }
    Signal fired;
    timer_info *handle = nullptr;
};

TEST_F(Timer, CreateFailsWhereTheHostGrantsNoAlarmClock) {
    handle = kUntouched;
    int32_t status = nkw_pal_timer_create(post, &fired, "t", &handle);
    if (status == 0) GTEST_SKIP() << "this host grants the alarm clock";
    EXPECT_EQ(-1, status);  // 403 belongs to ENOMEM alone, below
    EXPECT_EQ(kUntouched, handle);
    EXPECT_TRUE(syslog_contains("timer_create failed cause: "));
    EXPECT_TRUE(allocations_balanced());
}

TEST_F(Timer, RefusesMissingArgumentsAndReportsOutOfMemory) {
    handle = kUntouched;
    EXPECT_EQ(5, nkw_pal_timer_create(nullptr, nullptr, "t", &handle));
    EXPECT_EQ(5, nkw_pal_timer_create(post, nullptr, nullptr, &handle));
    EXPECT_EQ(5, nkw_pal_timer_create(post, nullptr, "t", nullptr));
    EXPECT_EQ(0, timer_seam.creates);
    timer_seam.fail_next_create = ENOMEM;
    EXPECT_EQ(403, nkw_pal_timer_create(post, nullptr, "t", &handle));
    EXPECT_EQ(kUntouched, handle);
    EXPECT_TRUE(allocations_balanced());
    timer_info *none = nullptr;
    for (int32_t status : {nkw_pal_timer_start(nullptr, 10, 0), nkw_pal_timer_stop(nullptr),
                           nkw_pal_timer_delete(&none), nkw_pal_timer_delete(nullptr)})
        EXPECT_EQ(5, status);
    EXPECT_EQ(0, nkw_pal_timer_isRunning(nullptr) + nkw_pal_timer_isPeriodic(nullptr));
    for (const char *function : {"nkw_pal_timer_isRunning", "nkw_pal_timer_isPeriodic"})
        EXPECT_TRUE(logged_by(function, "The input parameter is incorrect \n")) << function;
}

TEST_F(Timer, AsksForTheAlarmClockAndSplitsMillisecondsOnStart) {
    create();
    EXPECT_EQ(9, timer_seam.clock);
    EXPECT_EQ(SIGEV_THREAD, timer_seam.event.sigev_notify);
    EXPECT_EQ(static_cast<void *>(handle), timer_seam.event.sigev_value.sival_ptr);
    EXPECT_EQ(0, nkw_pal_timer_isRunning(handle)) << "created disarmed";
    const struct {
        uint32_t ms;
        uint8_t periodic;
        std::array<long, 4> value_s_ns_interval_s_ns;
    } cases[] = {
        {999, 0, {0, 999000000, 0, 0}},
        {1000, 0, {1, 0, 0, 0}},
        {2500, 1, {2, 500000000, 2, 500000000}},
        {0, 1, {0, 0, 0, 0}},  // disarms
    };
    for (const auto &c : cases) {
        ASSERT_EQ(0, nkw_pal_timer_start(handle, c.ms, c.periodic));
        const itimerspec &set = timer_seam.setting;
        EXPECT_EQ(c.value_s_ns_interval_s_ns,
                  (std::array<long, 4>{set.it_value.tv_sec, set.it_value.tv_nsec,
                                       set.it_interval.tv_sec, set.it_interval.tv_nsec}))
            << c.ms;
        EXPECT_EQ(c.ms != 0, nkw_pal_timer_isRunning(handle) == 1) << c.ms;
        EXPECT_EQ(c.ms != 0 && c.periodic, nkw_pal_timer_isPeriodic(handle) == 1) << c.ms;
    }
    timer_seam.fail_next_settime = EINVAL;
    EXPECT_EQ(-1, nkw_pal_timer_start(handle, 10, 0));
    timer_seam.fail_next_settime = EINVAL;
    EXPECT_EQ(-1, nkw_pal_timer_stop(handle));
    for (const char *function : {"nkw_pal_timer_start", "nkw_pal_timer_stop"})
        EXPECT_TRUE(logged_by(function, "timer_settime failed cause: 22 ")) << function;
}

TEST_F(Timer, FiresOnceAfterReArmingThenPeriodicallyUntilStopped) {
    // The C library's notification threads are invisible to ThreadSanitizer,
    // which crashes in them; expiries are only seen in the other builds.
    if (nkw::test::kThreadSanitizer) GTEST_SKIP() << "notification threads unsupported";
    create();
    ASSERT_EQ(0, nkw_pal_timer_start(handle, 60000, 0));
    ASSERT_EQ(0, nkw_pal_timer_start(handle, 20, 0));  // re-armed from now
    ASSERT_TRUE(fired.wait_for(1));
    EXPECT_EQ(0, nkw_pal_timer_isRunning(handle) + nkw_pal_timer_isPeriodic(handle));

    ASSERT_EQ(0, nkw_pal_timer_start(handle, 30, 1));
    ASSERT_TRUE(fired.wait_for(4));
    EXPECT_EQ(2, nkw_pal_timer_isRunning(handle) + nkw_pal_timer_isPeriodic(handle));
    ASSERT_EQ(0, nkw_pal_timer_stop(handle));
    EXPECT_EQ(0, nkw_pal_timer_isRunning(handle) + nkw_pal_timer_isPeriodic(handle));
    ASSERT_EQ(0, nkw_pal_timer_delete(&handle));
    EXPECT_EQ(nullptr, handle);
    EXPECT_TRUE(allocations_balanced());
}

}  // namespace
