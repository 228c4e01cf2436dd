// Message queues: argument checks, sharing by name, blocking calls woken from
// another thread, the time-out modes (with the unnormalised deadline), deletion.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mqueue.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "nkw_pal.h"
#include "os/os_test_util.h"
#include "support/sandbox.h"

using nkw::test::Sandbox;
using nkw::test::syslog_contains;

namespace {

// Owns a handle for the length of a test, so a failing test still unlinks.
struct Queue {
    mq_info *handle = nullptr;
    Queue(const std::string &name, uint32_t maxmsg, uint32_t msgsize) {
        EXPECT_EQ(0, nkw_pal_mq_create(maxmsg, msgsize, name.c_str(), &handle));
    }
    ~Queue() { nkw_pal_mq_delete(&handle); }  // 5 when the test deleted it
};

// Places the start of a wait within a window of the current second, on
// either side of the deadline's missing carry.
void start_between(long from_ns, long to_ns) {
    timespec now{};
    do {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        clock_gettime(CLOCK_REALTIME, &now);
    } while (now.tv_nsec < from_ns || now.tv_nsec > to_ns);
}

TEST(MqCreate, RefusedArgumentsLeaveTheHandleAndAnOverlongNameLeaksItsRecord) {
    mq_info *const untouched = reinterpret_cast<mq_info *>(0x1);
    mq_info *handle = untouched;
    EXPECT_EQ(7, nkw_pal_mq_create(2, 64, nullptr, nullptr));
    EXPECT_EQ(7, nkw_pal_mq_create(2, 64, nullptr, &handle));
    nkw::test::syslog_clear();
    EXPECT_EQ(22, nkw_pal_mq_create(2, 64, std::string(65, 'q').c_str(), &handle));
    EXPECT_EQ(untouched, handle);
    // Known leak: the record allocated before the length check is not freed.
    auto allocated = nkw::test::syslog_matching("]-malloc 0x");
    ASSERT_EQ(1u, allocated.size());
    EXPECT_FALSE(nkw::test::allocations_balanced());
    void *leaked = nullptr;
    std::sscanf(std::strstr(allocated[0].text.c_str(), "malloc "), "malloc %p", &leaked);
    nkw_pal_free(leaked);  // so the leak checker sees only what it should
}

TEST(MqLifecycle, SharedByNameWithTheFirstSizesWakesBlockedCallsAndDeleteUnlinks) {
    std::string name = Sandbox::unique_name("q");
    name.resize(64, 'x');  // the longest name
    Queue first(name, 2, 64), second(name, 8, 128);
    ASSERT_NE(nullptr, second.handle);
    auto get = [&] {
        char buf[64];
        uint32_t len = 0;
        EXPECT_EQ(0, nkw_pal_mq_get(second.handle, buf, &len, nullptr));
        return std::string(buf, len);
    };
    std::string woken;
    std::thread reader([&] { woken = get(); });  // waits for the first put
    const std::string messages[] = {"one", std::string(64, 'f'), "3"};
    for (const std::string &m : messages)  // the third waits for the reader
        EXPECT_EQ(0, nkw_pal_mq_put(first.handle, m.data(), m.size(), nullptr));
    reader.join();
    EXPECT_EQ(messages[0], woken);
    mq_usage usage{};
    ASSERT_EQ(0, nkw_pal_mq_info(second.handle, &usage));
    EXPECT_EQ(2u, usage.curmsgs);
    EXPECT_EQ(0u, usage.freemsgs);
    EXPECT_TRUE(syslog_contains("mq_maxmsg=2, mq_msgsize=64 \n"));
    EXPECT_EQ(messages[1], get());
    EXPECT_EQ(messages[2], get());

    ASSERT_EQ(0, nkw_pal_mq_delete(&first.handle));
    ASSERT_EQ(0, nkw_pal_mq_delete(&second.handle));
    EXPECT_EQ(nullptr, second.handle);
    EXPECT_TRUE(nkw::test::allocations_balanced());
    EXPECT_EQ(static_cast<mqd_t>(-1),
              mq_open(("/TOLV_Openwrt_" + name + ".queue").c_str(), O_RDONLY));
    EXPECT_EQ(5, nkw_pal_mq_delete(&second.handle));
}

TEST(MqFailures, MissingArgumentsGive7AndEachTimeOutModeMinusOne) {
    Queue queue(Sandbox::unique_name("t"), 1, 8);
    char buf[8];
    uint32_t len = 77;
    mq_usage usage{};
    for (int32_t status :
         {nkw_pal_mq_put(nullptr, "x", 1, nullptr),
          nkw_pal_mq_put(queue.handle, nullptr, 1, nullptr),
          nkw_pal_mq_put(queue.handle, "x", 0, nullptr),
          nkw_pal_mq_get(nullptr, buf, &len, nullptr),
          nkw_pal_mq_get(queue.handle, nullptr, &len, nullptr),
          nkw_pal_mq_get(queue.handle, buf, nullptr, nullptr), nkw_pal_mq_info(nullptr, &usage),
          nkw_pal_mq_info(queue.handle, nullptr)})
        EXPECT_EQ(7, status);

    const uint32_t no_wait = 0, short_wait = 100, overflowing = 1900;
    EXPECT_EQ(-1, nkw_pal_mq_get(queue.handle, buf, &len, &no_wait));
    EXPECT_EQ(0u, len);
    EXPECT_TRUE(syslog_contains("get failed! cause: 11 "));  // EAGAIN

    EXPECT_EQ(-1, nkw_pal_mq_put(queue.handle, "too long!", 9, &no_wait));
    EXPECT_TRUE(syslog_contains("put failed! cause: 90 "));  // EMSGSIZE
    ASSERT_EQ(0, nkw_pal_mq_put(queue.handle, "full", 4, &no_wait));
    EXPECT_EQ(-1, nkw_pal_mq_put(queue.handle, "more", 4, &no_wait));

    // The blocking mode is rewritten: this one waits, it does not fail at once.
    start_between(0, 800000000L);
    EXPECT_EQ(-1, nkw_pal_mq_put(queue.handle, "more", 4, &short_wait));
    EXPECT_TRUE(syslog_contains("put failed! cause: 110 "));  // ETIMEDOUT

    // +1 s and +900 ms of nanoseconds past a whole second: refused at once.
    start_between(200000000L, 900000000L);
    EXPECT_EQ(-1, nkw_pal_mq_put(queue.handle, "more", 4, &overflowing));
    EXPECT_TRUE(syslog_contains("put failed! cause: 22 "));  // EINVAL
}

}  // namespace
