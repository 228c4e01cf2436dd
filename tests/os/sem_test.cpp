// Named semaphores: argument checks, sharing by name, the three wait modes,
// and deletion.
#include <gtest/gtest.h>
#include <semaphore.h>

#include <chrono>
#include <climits>
#include <ctime>
#include <string>
#include <thread>

#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

using nkw::test::Sandbox;
using nkw::test::syslog_contains;

namespace {

// Owns a handle for the length of a test, so a failing test still unlinks.
struct Sem {
    sem_info *handle = nullptr;
    ~Sem() {
        if (handle != nullptr) nkw_pal_sem_deinit(&handle);
    }
};

long now_nanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_nsec;
}

// Waits until the current second's nanoseconds satisfy `ok`, so a deadline
// can be placed on either side of the unnormalised carry.
template <typename Predicate>
void wait_for_nanoseconds(Predicate ok) {
    while (!ok(now_nanoseconds())) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

TEST(SemInit, ArgumentChecksInOrder) {
    struct Case {
        bool with_out;
        std::string name;
        bool null_name;
        uint32_t max_value;
        uint32_t init_value;
        int32_t status;
        const char *message;
    };
    const std::string name64(64, 'n');
    const Case cases[] = {
        {false, "a", false, 1, 0, 5, "The input parameters is incorrect \n"},
        {true, "", true, 1, 0, 5, "The input parameters is incorrect \n"},
        {true, name64 + "x", false, 1, 0, 22, "the input name len is too long \n"},
        {true, name64 + "x", false, 0, 1, 22, "the input name len is too long \n"},
        {true, "short", false, 0, 1, 7, "the input max_value len is less than init_value \n"},
    };
    for (const Case &c : cases) {
        nkw::test::syslog_clear();
        sem_info *handle = nullptr;
        int32_t status =
            nkw_pal_sem_init(c.with_out ? &handle : nullptr, c.null_name ? nullptr : c.name.c_str(),
                             c.max_value, c.init_value);
        EXPECT_EQ(c.status, status) << c.message;
        EXPECT_EQ(nullptr, handle);
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
    }
}

TEST(SemInit, LongestNameAndEqualBoundsAreAccepted) {
    // 64 characters, unique per process so parallel runs never share it.
    std::string name = Sandbox::unique_name("s");
    name.resize(64, 'x');
    Sem sem;
    ASSERT_EQ(0, nkw_pal_sem_init(&sem.handle, name.c_str(), 2, 2));
    EXPECT_TRUE(syslog_contains("sem: " + name + " create success \n"));
    uint32_t no_wait = 0;
    EXPECT_EQ(0, nkw_pal_sem_wait(sem.handle, &no_wait));
    EXPECT_EQ(0, nkw_pal_sem_wait(sem.handle, &no_wait));
    EXPECT_EQ(-1, nkw_pal_sem_wait(sem.handle, &no_wait));
}

TEST(SemSharing, SameNameSharesOneCountAndIgnoresTheSecondInitValue) {
    std::string name = Sandbox::unique_name("shared");
    Sem first, second;
    ASSERT_EQ(0, nkw_pal_sem_init(&first.handle, name.c_str(), 10, 0));
    ASSERT_EQ(0, nkw_pal_sem_init(&second.handle, name.c_str(), 10, 5));
    uint32_t no_wait = 0;
    EXPECT_EQ(-1, nkw_pal_sem_wait(second.handle, &no_wait)) << "init_value 5 must be ignored";

    std::thread poster([&] { nkw_pal_sem_post(first.handle); });
    EXPECT_EQ(0, nkw_pal_sem_wait(second.handle, nullptr));
    poster.join();
}

TEST(SemWait, ZeroTimeOutOnAnEmptySemaphoreFailsAtOnceNotTimesOut) {
    Sem sem;
    ASSERT_EQ(0, nkw_pal_sem_init(&sem.handle, Sandbox::unique_name("z").c_str(), 1, 0));
    uint32_t no_wait = 0;
    EXPECT_EQ(-1, nkw_pal_sem_wait(sem.handle, &no_wait));
    EXPECT_TRUE(syslog_contains("failed cause: 11 "));  // EAGAIN
}

TEST(SemWait, TimedWaitRunsOutWith17) {
    Sem sem;
    ASSERT_EQ(0, nkw_pal_sem_init(&sem.handle, Sandbox::unique_name("t").c_str(), 1, 0));
    wait_for_nanoseconds([](long ns) { return ns < 800000000L; });
    uint32_t ms = 100;
    EXPECT_EQ(NKW_PAL_OS_TIMEOUT, nkw_pal_sem_wait(sem.handle, &ms));
    EXPECT_TRUE(syslog_contains("timeout cause: 110 "));  // ETIMEDOUT
}

TEST(SemWait, DeadlineWhoseNanosecondsOverflowFailsAtOnce) {
    Sem sem;
    ASSERT_EQ(0, nkw_pal_sem_init(&sem.handle, Sandbox::unique_name("o").c_str(), 1, 0));
    wait_for_nanoseconds([](long ns) { return ns > 200000000L && ns < 900000000L; });
    uint32_t ms = 1900;  // +1 s and +900 ms of nanoseconds: past a whole second
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(-1, nkw_pal_sem_wait(sem.handle, &ms));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
    EXPECT_TRUE(syslog_contains("failed cause: 22 "));  // EINVAL
}

TEST(SemPost, PostAtTheMaximumCountGives103) {
    Sem sem;
    ASSERT_EQ(0, nkw_pal_sem_init(&sem.handle, Sandbox::unique_name("m").c_str(), SEM_VALUE_MAX,
                                  SEM_VALUE_MAX));
    EXPECT_EQ(NKW_PAL_SEM_AT_MAXIMUM, nkw_pal_sem_post(sem.handle));
    EXPECT_TRUE(syslog_contains("failed cause: 75 "));  // EOVERFLOW
}

TEST(SemHandles, NullHandlesAreRefused) {
    uint32_t ms = 0;
    EXPECT_EQ(5, nkw_pal_sem_post(nullptr));
    EXPECT_EQ(5, nkw_pal_sem_wait(nullptr, &ms));
    sem_info *none = nullptr;
    EXPECT_EQ(7, nkw_pal_sem_deinit(&none));
}

TEST(SemDeinit, ClearsTheHandleUnlinksTheNameAndRefusesASecondTime) {
    std::string name = Sandbox::unique_name("d");
    sem_info *handle = nullptr;
    ASSERT_EQ(0, nkw_pal_sem_init(&handle, name.c_str(), 5, 0));
    ASSERT_EQ(0, nkw_pal_sem_post(handle));
    ASSERT_EQ(0, nkw_pal_sem_deinit(&handle));
    EXPECT_EQ(nullptr, handle);
    EXPECT_EQ(7, nkw_pal_sem_deinit(&handle));

    // The name was unlinked: a new init starts from its own init_value.
    Sem fresh;
    ASSERT_EQ(0, nkw_pal_sem_init(&fresh.handle, name.c_str(), 5, 0));
    uint32_t no_wait = 0;
    EXPECT_EQ(-1, nkw_pal_sem_wait(fresh.handle, &no_wait));
}

}  // namespace
