// Timers: the clock and notification asked for, arming and its time
// arithmetic, firing one-shot and periodic, stop and delete.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "nkw_pal.h"
#include "os/os_test_util.h"
#include "os/timer_seam.h"

using nkw::test::allocations_balanced;
using nkw::test::Signal;
using nkw::test::syslog_contains;

namespace {

timer_info *const kUntouched = reinterpret_cast<timer_info *>(0x1);

void post(void *signal) {
    static_cast<Signal *>(signal)->post();
}

class Timer : public testing::Test {
   protected:
    void SetUp() override { nkw::test::reset_timer_seam(); }
    void TearDown() override {
        if (handle != nullptr && handle != kUntouched)
            nkw_pal_timer_delete(&handle);
    }
    // The C library's notification threads are invisible to ThreadSanitizer,
    // which crashes in them; expiries are only seen in the other builds.
    static constexpr bool kExpiriesUnsupported = nkw::test::kThreadSanitizer;
    // A timer on the substituted clock, so it really runs here.
    void create() {
        nkw::test::substitute_timer_clock();
        ASSERT_EQ(0, nkw_pal_timer_create(post, &fired, "t", &handle));
    }
    Signal fired;
    timer_info *handle = nullptr;
};

TEST_F(Timer, CreateFailsWithoutAnAlarmCapableClockAsTheHostDoes) {
    // What this host says to the alarm clock decides what the library must say.
    sigevent event{};
    event.sigev_notify = SIGEV_NONE;
    timer_t probe;
    bool host_has_alarm = timer_create(CLOCK_BOOTTIME_ALARM, &event, &probe) == 0;
    int host_errno = errno;
    if (host_has_alarm)
        timer_delete(probe);

    handle = kUntouched;
    int32_t status = nkw_pal_timer_create(post, &fired, "t", &handle);
    if (host_has_alarm) {
        EXPECT_EQ(0, status);
        return;
    }
    EXPECT_EQ(host_errno == ENOMEM ? 403 : -1, status);
    EXPECT_EQ(kUntouched, handle);
    EXPECT_TRUE(syslog_contains("timer_create failed cause: " + std::to_string(host_errno) + " " +
                                std::strerror(host_errno)));
    EXPECT_TRUE(allocations_balanced());
}

TEST_F(Timer, CreateRefusesMissingArgumentsAndReportsOutOfMemory) {
    handle = kUntouched;
    EXPECT_EQ(5, nkw_pal_timer_create(nullptr, nullptr, "t", &handle));
    EXPECT_EQ(5, nkw_pal_timer_create(post, nullptr, nullptr, &handle));
    EXPECT_EQ(5, nkw_pal_timer_create(post, nullptr, "t", nullptr));
    EXPECT_TRUE(syslog_contains("The input parameters is incorrect \n"));
    EXPECT_TRUE(nkw::test::timer_create_calls().empty());

    nkw::test::fail_next_timer_create(ENOMEM);
    EXPECT_EQ(403, nkw_pal_timer_create(post, nullptr, "t", &handle));
    EXPECT_EQ(kUntouched, handle);
    EXPECT_TRUE(allocations_balanced());
}

TEST_F(Timer, AsksForTheAlarmClockWithThreadNotification) {
    create();
    auto calls = nkw::test::timer_create_calls();
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(9, calls[0].clock);
    EXPECT_EQ(SIGEV_THREAD, calls[0].notify);
    EXPECT_EQ(static_cast<void *>(handle), calls[0].value);
    EXPECT_NE(nullptr, calls[0].function);
    EXPECT_EQ(nullptr, calls[0].attributes);
    EXPECT_EQ(0, nkw_pal_timer_isRunning(handle)) << "created disarmed";
}

TEST_F(Timer, StartSplitsMillisecondsAndSetsThePeriodOnlyWhenAsked) {
    create();
    const struct {
        uint32_t ms;
        uint8_t periodic;
        timespec value, interval;
    } cases[] = {
        {999, 0, {0, 999000000}, {0, 0}},
        {1000, 0, {1, 0}, {0, 0}},
        {2500, 1, {2, 500000000}, {2, 500000000}},
        {0, 1, {0, 0}, {0, 0}},  // disarms
    };
    for (const auto &c : cases) {
        ASSERT_EQ(0, nkw_pal_timer_start(handle, c.ms, c.periodic));
        itimerspec set = nkw::test::timer_settime_calls().back();
        EXPECT_EQ(c.value.tv_sec, set.it_value.tv_sec) << c.ms;
        EXPECT_EQ(c.value.tv_nsec, set.it_value.tv_nsec) << c.ms;
        EXPECT_EQ(c.interval.tv_sec, set.it_interval.tv_sec) << c.ms;
        EXPECT_EQ(c.interval.tv_nsec, set.it_interval.tv_nsec) << c.ms;
        EXPECT_EQ(c.ms != 0, nkw_pal_timer_isRunning(handle) == 1) << c.ms;
        EXPECT_EQ(c.ms != 0 && c.periodic, nkw_pal_timer_isPeriodic(handle) == 1) << c.ms;
    }
}

TEST_F(Timer, OneShotFiresAfterReArmingAndIsThenIdle) {
    if (kExpiriesUnsupported)
        GTEST_SKIP() << "notification threads unsupported";
    create();
    ASSERT_EQ(0, nkw_pal_timer_start(handle, 60000, 0));
    ASSERT_EQ(0, nkw_pal_timer_start(handle, 20, 0));  // re-armed from now
    ASSERT_TRUE(fired.wait_for(1));
    EXPECT_EQ(0, nkw_pal_timer_isRunning(handle));
    EXPECT_EQ(0, nkw_pal_timer_isPeriodic(handle));
}

TEST_F(Timer, PeriodicFiresUntilStoppedAndDeleteClearsTheHandle) {
    if (kExpiriesUnsupported)
        GTEST_SKIP() << "notification threads unsupported";
    create();
    ASSERT_EQ(0, nkw_pal_timer_start(handle, 30, 1));
    ASSERT_TRUE(fired.wait_for(3));
    EXPECT_EQ(1, nkw_pal_timer_isRunning(handle));
    EXPECT_EQ(1, nkw_pal_timer_isPeriodic(handle));
    ASSERT_EQ(0, nkw_pal_timer_stop(handle));
    EXPECT_EQ(0, nkw_pal_timer_isRunning(handle));
    EXPECT_EQ(0, nkw_pal_timer_isPeriodic(handle));
    ASSERT_EQ(0, nkw_pal_timer_delete(&handle));
    EXPECT_EQ(nullptr, handle);
    EXPECT_TRUE(allocations_balanced());
}

TEST_F(Timer, NullHandlesAreRefused) {
    EXPECT_EQ(5, nkw_pal_timer_start(nullptr, 10, 0));
    EXPECT_EQ(5, nkw_pal_timer_stop(nullptr));
    EXPECT_EQ(5, nkw_pal_timer_delete(&handle));
    EXPECT_EQ(5, nkw_pal_timer_delete(nullptr));
    EXPECT_EQ(0, nkw_pal_timer_isRunning(nullptr));
    EXPECT_EQ(0, nkw_pal_timer_isPeriodic(nullptr));
    EXPECT_EQ(6u, nkw::test::syslog_count("The input parameter is incorrect \n"));
}

}  // namespace
