// Mutexes: recursion, exclusion between threads, trylock's errno-based
// status, and the failure paths of unlock and delete.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <future>
#include <thread>

#include "nkw_pal.h"
#include "os/os_test_util.h"

using nkw::test::syslog_contains;

namespace {

struct Mutex {
    mutex_info *handle = nullptr;
    Mutex() { EXPECT_EQ(0, nkw_pal_mutex_create(&handle)); }
    ~Mutex() { nkw_pal_mutex_delete(&handle); }
};

// Runs `body` on another thread and waits for it.
template <typename Body>
int32_t elsewhere(Body body) {
    return std::async(std::launch::async, body).get();
}

TEST(MutexLocking, OwnerRelocksWhileOthersAreKeptOutUntilTheLastUnlock) {
    Mutex m;
    auto other_trylock = [&](int errno_before) {
        return elsewhere([&] {
            errno = errno_before;
            int32_t status = nkw_pal_mutex_trylock(m.handle);
            if (status == 0) nkw_pal_mutex_unlock(m.handle);
            return status;
        });
    };
    ASSERT_EQ(0, nkw_pal_mutex_lock(m.handle));
    ASSERT_EQ(0, nkw_pal_mutex_lock(m.handle));  // recursive: no deadlock
    // A busy mutex is told by errno, not by the call's result.
    EXPECT_EQ(203, other_trylock(EBUSY));
    EXPECT_EQ(-1, other_trylock(0));
    EXPECT_TRUE(syslog_contains(" failed cause 16 "));
    EXPECT_EQ(0, nkw_pal_mutex_unlock(m.handle));
    EXPECT_EQ(-1, other_trylock(EINVAL));
    EXPECT_EQ(0, nkw_pal_mutex_unlock(m.handle));
    EXPECT_EQ(0, other_trylock(0));
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

TEST(MutexFailures, UnlockByAStrangerAndDeleteWhileLockedAreRefused) {
    if (nkw::test::kThreadSanitizer) GTEST_SKIP() << "the sanitizer reports the misuse itself";
    Mutex m;
    EXPECT_EQ(-1, nkw_pal_mutex_unlock(m.handle));  // never locked
    ASSERT_EQ(0, nkw_pal_mutex_lock(m.handle));
    EXPECT_EQ(-1, elsewhere([&] { return nkw_pal_mutex_unlock(m.handle); }));
    mutex_info *kept = m.handle;
    EXPECT_EQ(-1, nkw_pal_mutex_delete(&m.handle));
    EXPECT_EQ(kept, m.handle);
    char expected[64];  // names the caller's variable, not the mutex
    std::snprintf(expected, sizeof expected, "Delete %p failed! \n",
                  static_cast<void *>(&m.handle));
    EXPECT_TRUE(syslog_contains(expected));
    EXPECT_EQ(0, nkw_pal_mutex_unlock(m.handle));
    EXPECT_EQ(0, nkw_pal_mutex_delete(&m.handle));
    EXPECT_EQ(nullptr, m.handle);
}

TEST(MutexFailures, NullHandlesAreRefusedWith7) {
    mutex_info *handle = nullptr;
    for (int32_t status : {nkw_pal_mutex_create(nullptr), nkw_pal_mutex_lock(nullptr),
                           nkw_pal_mutex_trylock(nullptr), nkw_pal_mutex_unlock(nullptr),
                           nkw_pal_mutex_delete(&handle), nkw_pal_mutex_delete(nullptr)})
        EXPECT_EQ(7, status);
}

}  // namespace
