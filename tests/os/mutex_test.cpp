// Mutexes: recursion, exclusion between threads, trylock's errno-based
// status, and the failure paths of unlock and delete.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <thread>

#include "nkw_pal.h"
#include "os/os_test_util.h"

using nkw::test::syslog_contains;

namespace {

struct Mutex {
    mutex_info *handle = nullptr;
    Mutex() { EXPECT_EQ(0, nkw_pal_mutex_create(&handle)); }
    ~Mutex() {
        if (handle != nullptr)
            nkw_pal_mutex_delete(&handle);
    }
};

// Runs `body` on another thread and waits for it.
template <typename Body>
auto elsewhere(Body body) {
    decltype(body()) result{};
    std::thread([&] { result = body(); }).join();
    return result;
}

TEST(MutexLocking, OwnerRelocksWhileOthersAreKeptOutUntilTheLastUnlock) {
    Mutex m;
    ASSERT_EQ(0, nkw_pal_mutex_lock(m.handle));
    ASSERT_EQ(0, nkw_pal_mutex_lock(m.handle));  // recursive: no deadlock
    auto other_trylock = [&] {
        int32_t status = nkw_pal_mutex_trylock(m.handle);
        if (status == 0)
            nkw_pal_mutex_unlock(m.handle);
        return status;
    };
    EXPECT_NE(0, elsewhere(other_trylock));
    EXPECT_EQ(0, nkw_pal_mutex_unlock(m.handle));
    EXPECT_NE(0, elsewhere(other_trylock));
    EXPECT_EQ(0, nkw_pal_mutex_unlock(m.handle));
    EXPECT_EQ(0, elsewhere(other_trylock));
}

TEST(MutexLocking, CountersStayExactUnderContention) {
    Mutex m;
    long counter = 0;
    auto add = [&] {
        for (int i = 0; i < 2000; ++i) {
            nkw_pal_mutex_lock(m.handle);
            ++counter;
            nkw_pal_mutex_unlock(m.handle);
        }
    };
    std::thread first(add), second(add);
    first.join();
    second.join();
    EXPECT_EQ(4000, counter);
}

TEST(MutexTrylock, BusyStatusFollowsErrnoRatherThanTheCall) {
    Mutex m;
    ASSERT_EQ(0, nkw_pal_mutex_lock(m.handle));
    const struct {
        int errno_before;
        int32_t status;
    } cases[] = {{EBUSY, 203}, {0, -1}, {EINVAL, -1}};
    for (const auto &c : cases) {
        int32_t status = elsewhere([&] {
            errno = c.errno_before;
            return nkw_pal_mutex_trylock(m.handle);
        });
        EXPECT_EQ(c.status, status) << "errno " << c.errno_before;
    }
    EXPECT_TRUE(syslog_contains(" failed cause 16 "));
    nkw_pal_mutex_unlock(m.handle);
}

TEST(MutexFailures, UnlockByAStrangerAndDeleteWhileLockedAreRefused) {
    if (nkw::test::kThreadSanitizer)
        GTEST_SKIP() << "the sanitizer reports the misuse itself";
    Mutex m;
    EXPECT_EQ(-1, nkw_pal_mutex_unlock(m.handle));  // never locked
    ASSERT_EQ(0, nkw_pal_mutex_lock(m.handle));
    EXPECT_EQ(-1, elsewhere([&] { return nkw_pal_mutex_unlock(m.handle); }));
    EXPECT_TRUE(syslog_contains("UnLock "));
    mutex_info *kept = m.handle;
    EXPECT_EQ(-1, nkw_pal_mutex_delete(&m.handle));
    EXPECT_EQ(kept, m.handle);
    char expected[64];
    std::snprintf(expected, sizeof expected, "Delete %p failed! \n",
                  static_cast<void *>(&m.handle));
    EXPECT_TRUE(syslog_contains(expected));
    EXPECT_EQ(0, nkw_pal_mutex_unlock(m.handle));
    EXPECT_EQ(0, nkw_pal_mutex_delete(&m.handle));
    EXPECT_EQ(nullptr, m.handle);
}

TEST(MutexFailures, NullHandlesAreRefusedWith7) {
    EXPECT_EQ(7, nkw_pal_mutex_create(nullptr));
    EXPECT_EQ(7, nkw_pal_mutex_lock(nullptr));
    EXPECT_EQ(7, nkw_pal_mutex_trylock(nullptr));
    EXPECT_EQ(7, nkw_pal_mutex_unlock(nullptr));
    mutex_info *handle = nullptr;
    EXPECT_EQ(7, nkw_pal_mutex_delete(&handle));
    EXPECT_EQ(7, nkw_pal_mutex_delete(nullptr));
    EXPECT_TRUE(syslog_contains("The input parameter is incorrect \n"));
}

}  // namespace
