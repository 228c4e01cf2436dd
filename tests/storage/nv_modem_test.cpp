// NV items in the modem's NVRAM: synchronous and asynchronous access, and
// the argument checks every entry shares.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_nvram.h"
#include "nkw_pal.h"
#include "sms/sms_pdu.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

using nkw::test::logged_in;
using nkw::test::syslog_contains;

namespace {

constexpr uint32_t kLidOfOneAndThirty = 0xE1FD;
constexpr unsigned int kOfflineLog = 34;  // LID 0xE11D

std::vector<uint8_t> v(const std::string &s) {
    return {s.begin(), s.end()};
}

TEST(NvModemItems, IdsOneAndThirtyShareOneItemAtRecordOne) {
    std::string data = "shared";
    ASSERT_EQ(0, nkw_pal_nvm_write(1, reinterpret_cast<unsigned char *>(data.data()), 6));
    EXPECT_EQ(v("shared"), mipc_sim::nvram_item(kLidOfOneAndThirty));
    unsigned char buffer[8] = {};
    ASSERT_EQ(0, nkw_pal_nvm_read(30, buffer, sizeof buffer));
    EXPECT_EQ("shared", std::string(reinterpret_cast<char *>(buffer)));
    for (const mipc_sim::NvramRequest &r : mipc_sim::nvram_requests()) {
        EXPECT_EQ(MIPC_PS_ALL, r.ps_id) << r.function;
        EXPECT_EQ(kLidOfOneAndThirty, r.lid) << r.function;
        EXPECT_EQ(1, r.record_idx) << r.function;
    }
    EXPECT_TRUE(syslog_contains("Read MD NV-LID:57853 success. \n"));
}

TEST(NvModemItems, ReadCopiesOnlyWhatFitsAndFailsWith706Otherwise) {
    const struct {
        const char *name;
        std::vector<uint8_t> item;  // empty: no item
        unsigned int len;
        bool refused;  // the call itself fails
        int status;
        std::string buffer;  // after the call, from "########"
        uint16_t request_size;
        const char *log;
    } cases[] = {
        {"shorter item", v("ab"), 8, false, 0, "ab######", 8, "Read MD NV size is:2. \n"},
        {"exact fit", v("abcd"), 4, false, 0, "abcd####", 4, "Read nvm from MD success. \n"},
        {"item larger than len", v("abcdef"), 4, false, 706, "########", 4,
         "Read nvm from MD failed. \n"},
        {"no item",
         {},
         8,
         false,
         706,
         "########",
         8,
         "Pre read MIPC msg get failed, nv_read_str->result_code is 4097. \n"},
        {"send refused", v("ab"), 8, true, 706, "########", 8,
         "Pre read mipc msg send failed, ret is:1. \n"},
        {"len cut to 16 bits", v("ab"), 65536 + 3, false, 0, "ab######", 3,
         "Read MD NV size is:2. \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        if (!c.item.empty()) mipc_sim::set_nvram_item(0xE11D, c.item);
        if (c.refused) mipc_sim::fail_next("mipc_sys_nvram_read_sync", mipc_sim::return_value(1));
        std::vector<unsigned char> buffer(c.len > 8 ? c.len : 8, '#');
        EXPECT_EQ(c.status, nkw_pal_nvm_read(kOfflineLog, buffer.data(), c.len)) << c.name;
        EXPECT_EQ(c.buffer, std::string(buffer.begin(), buffer.begin() + 8)) << c.name;
        auto requests = mipc_sim::nvram_requests();
        ASSERT_EQ(1u, requests.size()) << c.name;
        EXPECT_EQ(c.request_size, requests[0].size) << c.name;
        EXPECT_TRUE(syslog_contains(c.log)) << c.name;
        EXPECT_TRUE(logged_in("free ", "nkw_pal_read_nv_md_sync")) << c.name;
    }
}

TEST(NvModemItems, RefusedWritesReport708WithTheInnerStatusInTheLog) {
    const struct {
        mipc_sim::Fault fault;
        const char *inner;
        const char *outer;
    } cases[] = {
        {mipc_sim::return_value(2), "MD nvm sync write failed, ret is:2. \n",
         "nkw_pal_write_nv_md_sync write MD nvm failed\xEF\xBC\x8Cret is:708. \n"},
        {mipc_sim::result_code(5), "MD nvm sync write failed, result code: 5 \n",
         "nkw_pal_write_nv_md_sync write MD nvm failed\xEF\xBC\x8Cret is:709. \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::set_nvram_item(0xE11D, v("old"));
        mipc_sim::fail_next("mipc_sys_nvram_write_sync", c.fault);
        nkw::test::syslog_clear();
        std::string data = "new";
        EXPECT_EQ(
            708, nkw_pal_nvm_write(kOfflineLog, reinterpret_cast<unsigned char *>(data.data()), 3));
        EXPECT_EQ(v("old"), mipc_sim::nvram_item(0xE11D));
        EXPECT_TRUE(syslog_contains(c.inner));
        EXPECT_TRUE(syslog_contains(c.outer));
    }
}

TEST(NvArguments, EveryEntryRefusesBadArgumentsAndIdsBeforeReachingAnything) {
    unsigned char byte = 0;
    auto read_cb = [](unsigned char *, unsigned int) {};
    const struct {
        int status;
        int got;
        const char *log;
    } cases[] = {
        {7, nkw_pal_nvm_read(1, nullptr, 1), "Invalid nvm sync read parameter \n"},
        {710, nkw_pal_nvm_read(38, &byte, 1), "Invalid logic nvm id \n"},
        {713, nkw_pal_nvm_read(39, &byte, 1), "Invaild nv position. \n"},
        {7, nkw_pal_nvm_write(2, &byte, 0), "Invalid nvm sync write parameter. \n"},
        {713, nkw_pal_nvm_write(40, &byte, 1), "Invaild nv position. \n"},
        {7, nkw_pal_nvm_read_async(1, nullptr, 1), "Invalid read_cb. \n"},
        {7, nkw_pal_nvm_read_async(1, read_cb, 0), "Invalid datalen. \n"},
        {710, nkw_pal_nvm_read_async(38, read_cb, 1), "Invalid logic nvm id. \n"},
        {-1, nkw_pal_nvm_read_async(2, read_cb, 1), "Did not support AP async NVM read. \n"},
        {7, nkw_pal_nvm_write_async(1, nullptr, nullptr, 1), "Invalid data. \n"},
        {713, nkw_pal_nvm_write_async(39, nullptr, &byte, 1), "Invaild nv position. \n"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.status, c.got) << c.log;
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
    }
    EXPECT_TRUE(mipc_sim::nvram_requests().empty());
    EXPECT_FALSE(nkw::test::Sandbox::current().exists("/data"));
}

// What the caller's callbacks saw; they run on the modem IPC library's thread.
std::atomic<int> g_calls{0};
std::atomic<int> g_ok{-1};
std::string g_data;
std::thread::id g_thread;

void on_read(unsigned char *data, unsigned int len) {
    g_data.assign(reinterpret_cast<char *>(data), len);
    g_thread = std::this_thread::get_id();
    ++g_calls;
}

void on_write(int ok) {
    g_ok = ok;
    ++g_calls;
}

TEST(NvAsync, ReadCallsBackOnlyOnSuccessAndFreesItsRecordOnEveryPath) {
    mipc_sim::set_nvram_item(0xE11D, v("\x01\x0F"));
    ASSERT_EQ(0, nkw_pal_nvm_read_async(kOfflineLog, on_read, 64));
    mipc_sim::fail_next("mipc_sys_nvram_read_async", mipc_sim::result_code(3));
    ASSERT_EQ(0, nkw_pal_nvm_read_async(kOfflineLog, on_read, 8));
    ASSERT_EQ(0, nkw_pal_nvm_read_async(29, on_read, 8));  // no item: refused too
    mipc_sim::fail_next("mipc_sys_nvram_read_async", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_nvm_read_async(kOfflineLog, on_read, 8));
    mipc_sim::drain();

    EXPECT_EQ(1, g_calls.load());
    EXPECT_EQ("\x01\x0F", g_data);  // the reported length, not the requested 64
    EXPECT_NE(std::this_thread::get_id(), g_thread);
    EXPECT_EQ(64, mipc_sim::nvram_requests().at(0).size);
    EXPECT_TRUE(syslog_contains("Async read failed, result_code: 3 \n"));
    EXPECT_TRUE(syslog_contains("Async read failed, result_code: 4097 \n"));
    EXPECT_TRUE(syslog_contains("mipc_sys_nvram_read_async fail, ret is:1. \n"));
    EXPECT_EQ(4u, nkw::test::syslog_matching("-free ").size());
}

TEST(NvAsync, WriteReportsOneOrZeroAndMayGoWithoutCallback) {
    const struct {
        bool fault;
        int ok;
        std::string stored;
    } cases[] = {{false, 1, "new"}, {true, 0, "old"}};
    for (const auto &c : cases) {
        mipc_sim::set_nvram_item(0xE11D, v("old"));
        if (c.fault) mipc_sim::fail_next("mipc_sys_nvram_write_async", mipc_sim::result_code(7));
        unsigned char data[] = {'n', 'e', 'w'};
        ASSERT_EQ(0, nkw_pal_nvm_write_async(kOfflineLog, on_write, data, 3));
        mipc_sim::drain();
        EXPECT_EQ(c.ok, g_ok.load());
        EXPECT_EQ(v(c.stored), mipc_sim::nvram_item(0xE11D));
    }
    unsigned char data[] = {'x'};
    ASSERT_EQ(0, nkw_pal_nvm_write_async(kOfflineLog, nullptr, data, 1));
    mipc_sim::fail_next("mipc_sys_nvram_write_async", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_nvm_write_async(kOfflineLog, on_write, data, 1));
    mipc_sim::drain();
    EXPECT_EQ(2, g_calls.load());
    EXPECT_EQ(v("x"), mipc_sim::nvram_item(0xE11D));
    EXPECT_EQ(4u, nkw::test::syslog_matching("-free ").size());
}

}  // namespace
