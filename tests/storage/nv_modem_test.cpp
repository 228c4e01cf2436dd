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
    EXPECT_TRUE(syslog_contains("nkw_pal_write_nv_md_sync write MD nvm success. \n"));
}

TEST(NvModemItems, ReadCopiesOnlyWhatFitsAndFailsWith706Otherwise) {
    const struct {
        const char *name;
        std::vector<uint8_t> item;  // empty: no item
        unsigned int len;
        const char *fault;  // "return" or "result", else none
        int status;
        std::string buffer;  // after the call, from "########"
        uint16_t request_size;
        const char *log;
    } cases[] = {
        {"shorter item", v("ab"), 8, "", 0, "ab######", 8, "Read MD NV size is:2. \n"},
        {"exact fit", v("abcd"), 4, "", 0, "abcd####", 4, "Read nvm from MD success. \n"},
        {"item larger than len", v("abcdef"), 4, "", 706, "########", 4,
         "Read nvm from MD failed. \n"},
        {"no item",
         {},
         8,
         "",
         706,
         "########",
         8,
         "Pre read MIPC msg get failed, nv_read_str->result_code is 4097. \n"},
        {"send refused", v("ab"), 8, "return", 706, "########", 8,
         "Pre read mipc msg send failed, ret is:1. \n"},
        {"modem error", v("ab"), 8, "result", 706, "########", 8,
         "nv_read_str->result_code is 9. \n"},
        {"len cut to 16 bits", v("ab"), 65536 + 3, "", 0, "ab######", 3,
         "Read MD NV size is:2. \n"},
    };
    for (const auto &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        if (!c.item.empty()) mipc_sim::set_nvram_item(0xE11D, c.item);
        if (std::string(c.fault) == "return")
            mipc_sim::fail_next("mipc_sys_nvram_read_sync", mipc_sim::return_value(1));
        if (std::string(c.fault) == "result")
            mipc_sim::fail_next("mipc_sys_nvram_read_sync", mipc_sim::result_code(9));
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
    auto write_cb = [](int) {};
    const struct {
        const char *name;
        int status;
        int got;
        const char *log;
    } cases[] = {
        {"read null", 7, nkw_pal_nvm_read(1, nullptr, 1), "Invalid nvm sync read parameter \n"},
        {"read len 0", 7, nkw_pal_nvm_read(2, &byte, 0), "Invalid nvm sync read parameter \n"},
        {"read 38", 710, nkw_pal_nvm_read(38, &byte, 1), "Invalid logic nvm id \n"},
        {"read 39", 713, nkw_pal_nvm_read(39, &byte, 1), "Invaild nv position. \n"},
        {"write null", 7, nkw_pal_nvm_write(1, nullptr, 1), "Invalid nvm sync write parameter. \n"},
        {"write len 0", 7, nkw_pal_nvm_write(2, &byte, 0), "Invalid nvm sync write parameter. \n"},
        {"write 38", 710, nkw_pal_nvm_write(38, &byte, 1), "Invalid logic nvm id \n"},
        {"write 40", 713, nkw_pal_nvm_write(40, &byte, 1), "Invaild nv position. \n"},
        {"async read null", 7, nkw_pal_nvm_read_async(1, nullptr, 1), "Invalid read_cb. \n"},
        {"async read len 0", 7, nkw_pal_nvm_read_async(1, read_cb, 0), "Invalid datalen. \n"},
        {"async read 38", 710, nkw_pal_nvm_read_async(38, read_cb, 1), "Invalid logic nvm id. \n"},
        {"async read AP", -1, nkw_pal_nvm_read_async(2, read_cb, 1),
         "Did not support AP async NVM read. \n"},
        {"async read 39", 713, nkw_pal_nvm_read_async(39, read_cb, 1), "Invaild nv position. \n"},
        {"async write null", 7, nkw_pal_nvm_write_async(1, write_cb, nullptr, 1),
         "Invalid data. \n"},
        {"async write len 0", 7, nkw_pal_nvm_write_async(1, write_cb, &byte, 0),
         "Invalid datalen. \n"},
        {"async write 38", 710, nkw_pal_nvm_write_async(38, write_cb, &byte, 1),
         "Invalid logic nvm id. \n"},
        {"async write AP", -1, nkw_pal_nvm_write_async(3, write_cb, &byte, 1),
         "Did not support AP async NVM read. \n"},
        {"async write 39", 713, nkw_pal_nvm_write_async(39, write_cb, &byte, 1),
         "Invaild nv position. \n"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.status, c.got) << c.name;
        EXPECT_TRUE(syslog_contains(c.log)) << c.name;
    }
    EXPECT_TRUE(mipc_sim::nvram_requests().empty());
    EXPECT_FALSE(nkw::test::Sandbox::current().exists("/data"));
}

// Completions of the asynchronous calls, as seen by the caller's callbacks.
struct Seen {
    std::atomic<int> calls{0};
    std::atomic<int> ok{-1};
    std::string data;
    unsigned int len = 0;
    std::thread::id thread;
};
Seen g_seen;

void on_read(unsigned char *data, unsigned int len) {
    g_seen.data.assign(reinterpret_cast<char *>(data), len);
    g_seen.len = len;
    g_seen.thread = std::this_thread::get_id();
    ++g_seen.calls;
}

void on_write(int ok) {
    g_seen.ok = ok;
    g_seen.thread = std::this_thread::get_id();
    ++g_seen.calls;
}

TEST(NvAsync, ReadCompletesOnTheModemThreadWithTheReportedLength) {
    g_seen.calls = 0;
    mipc_sim::set_nvram_item(0xE11D, v("\x01\x0F"));
    ASSERT_EQ(0, nkw_pal_nvm_read_async(kOfflineLog, on_read, 64));
    mipc_sim::drain();
    EXPECT_EQ(1, g_seen.calls.load());
    EXPECT_EQ(v("\x01\x0F"), v(g_seen.data));
    EXPECT_EQ(2u, g_seen.len);
    EXPECT_NE(std::this_thread::get_id(), g_seen.thread);
    EXPECT_EQ(64, mipc_sim::nvram_requests().at(0).size);
    EXPECT_TRUE(syslog_contains("Async read nvm data_len is: 2 \n"));
    EXPECT_TRUE(logged_in("free ", "nkw_pal_nvm_async_read_cb"));
}

TEST(NvAsync, FailedReadNeverCallsBackAndStillFreesItsRecord) {
    g_seen.calls = 0;
    mipc_sim::fail_next("mipc_sys_nvram_read_async", mipc_sim::result_code(3));
    ASSERT_EQ(0, nkw_pal_nvm_read_async(kOfflineLog, on_read, 8));
    ASSERT_EQ(0, nkw_pal_nvm_read_async(kOfflineLog, on_read, 8));  // no item: refused too
    mipc_sim::drain();
    EXPECT_EQ(0, g_seen.calls.load());
    EXPECT_TRUE(syslog_contains("Async read failed, result_code: 3 \n"));
    EXPECT_TRUE(syslog_contains("Async read failed, result_code: 4097 \n"));
    EXPECT_EQ(2u, nkw::test::syslog_matching("-free ").size());

    mipc_sim::fail_next("mipc_sys_nvram_read_async", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_nvm_read_async(kOfflineLog, on_read, 8));
    EXPECT_TRUE(syslog_contains("mipc_sys_nvram_read_async fail, ret is:1. \n"));
    EXPECT_EQ(3u, nkw::test::syslog_matching("-free ").size());
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
        g_seen.calls = 0;
        ASSERT_EQ(0, nkw_pal_nvm_write_async(kOfflineLog, on_write, data, 3));
        mipc_sim::drain();
        EXPECT_EQ(1, g_seen.calls.load());
        EXPECT_EQ(c.ok, g_seen.ok.load());
        EXPECT_NE(std::this_thread::get_id(), g_seen.thread);
        EXPECT_EQ(v(c.stored), mipc_sim::nvram_item(0xE11D));
    }
    unsigned char data[] = {'x'};
    ASSERT_EQ(0, nkw_pal_nvm_write_async(kOfflineLog, nullptr, data, 1));
    mipc_sim::drain();
    EXPECT_EQ(v("x"), mipc_sim::nvram_item(0xE11D));
    EXPECT_EQ(3u, nkw::test::syslog_matching("Async write result_code").size());

    mipc_sim::fail_next("mipc_sys_nvram_write_async", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_nvm_write_async(kOfflineLog, on_write, data, 1));
    EXPECT_TRUE(syslog_contains("MD nvm async write failed,ret is:1. \n"));
}

}  // namespace
