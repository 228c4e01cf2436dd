// Threads: refused arguments, creation with and without attributes, the
// callback on a detached thread, cancellation on delete.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <string>

#include "nkw_pal.h"
#include "os/os_test_util.h"

using nkw::test::allocations_balanced;
using nkw::test::logged_by;
using nkw::test::Signal;
using nkw::test::syslog_contains;

namespace {

// What the thread saw of itself once its creator had returned.
struct Probe {
    Signal go, reported, ended;
    pthread_t self = 0;
    int detach_state = -1;
    size_t stack_size = 0;
};

// Ends only by cancellation, which the destructor reports.
void *probe_thread(void *arg) {
    auto *probe = static_cast<Probe *>(arg);
    struct OnEnd {
        Probe *probe;
        ~OnEnd() { probe->ended.post(); }
    } on_end{probe};
    probe->go.wait_for(1);  // the creator has returned, detach included
    probe->self = pthread_self();
    pthread_attr_t attributes;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getdetachstate(&attributes, &probe->detach_state);
    pthread_attr_getstacksize(&attributes, &probe->stack_size);
    pthread_attr_destroy(&attributes);
    probe->reported.post();
    // Wait for the cancellation outside any blocking call: ThreadSanitizer
    // loses track of a thread cancelled inside one of its intercepted calls.
    for (;;) {
        pthread_testcancel();
        sched_yield();
    }
}

TEST(ThreadCreate, RefusedArgumentsLeaveTheHandleAndAllocateNothing) {
    thread_info *const untouched = reinterpret_cast<thread_info *>(0x1);
    const std::string name129(129, 'n');
    const thread_attr small_stack{1, 16383};
    const struct {
        bool with_out;
        const char *name;
        const thread_attr *attr;
        int32_t status;
        const char *message;
    } cases[] = {
        {false, "t", nullptr, 7, "the th or name or attr is NULL! \n"},
        {true, nullptr, nullptr, 7, "the th or name or attr is NULL! \n"},
        {true, name129.c_str(), nullptr, 22, "the name is too long! \n"},
        {true, "t", &small_stack, -1, "t thread create failed ret: 505  \n"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        thread_info *handle = untouched;
        EXPECT_EQ(c.status, nkw_pal_thread_create(c.with_out ? &handle : nullptr, c.name, c.attr,
                                                  probe_thread, nullptr));
        EXPECT_EQ(untouched, handle);
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
        EXPECT_TRUE(allocations_balanced()) << c.message;
    }
    EXPECT_TRUE(logged_by("nkw_pal_thread_create",  // the last case's reason
                          "The stack size is less than PTHREAD_STACK_MIN bytes. \n"));
    thread_info *handle = nullptr;
    EXPECT_EQ(7, nkw_pal_thread_delete(&handle));
    EXPECT_EQ(7, nkw_pal_thread_delete(nullptr));
    EXPECT_EQ(0u, nkw_pal_thread_id(nullptr));
}

TEST(ThreadLifecycle, RunsDetachedUntilDeleteCancelsIt) {
    ASSERT_EQ(0, nkw_pal_log_set_level(NKW_PAL_LOG_DEBUG));
    const std::string name128(128, 'n');
    const thread_attr out_of_range_priority{100, 16384};
    const struct {
        const char *name;
        const thread_attr *attr;
    } cases[] = {{"plain", nullptr}, {name128.c_str(), &out_of_range_priority}};
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        Probe probe;
        thread_info *handle = nullptr;
        ASSERT_EQ(0, nkw_pal_thread_create(&handle, c.name, c.attr, probe_thread, &probe));
        // The priority is never applied: the default policy skips it.
        EXPECT_EQ(c.attr != nullptr,
                  logged_by("nkw_pal_thread_create",
                            "The current scheduling policy does not support priority"));
        probe.go.post();
        ASSERT_TRUE(probe.reported.wait_for(1));
        EXPECT_TRUE(pthread_equal(probe.self, nkw_pal_thread_id(handle)));
        EXPECT_EQ(PTHREAD_CREATE_DETACHED, probe.detach_state) << c.name;
        // The given size, not the default of several MiB.
        EXPECT_EQ(c.attr != nullptr, probe.stack_size < (1u << 20)) << probe.stack_size;

        ASSERT_EQ(0, nkw_pal_thread_delete(&handle));
        EXPECT_EQ(nullptr, handle);
        EXPECT_TRUE(probe.ended.wait_for(1)) << "not cancelled: " << c.name;
        EXPECT_TRUE(allocations_balanced());
    }
}

}  // namespace
