// Cell id and area code, data class, signal, radio, attach APN, registration
// details and the SBP id, against the simulated serving network.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "info/info_test_util.h"
#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "mipc_sim_network.h"
#include "nkw_pal.h"

namespace {

using mipc_sim::gw_cell;
using mipc_sim::lte_cell;
using mipc_sim::nr_cell;
using nkw::test::syslog_contains;

constexpr uint32_t kGsm = MIPC_NW_CELL_TYPE_GSM;
constexpr uint32_t kUmts = MIPC_NW_CELL_TYPE_UMTS;
constexpr uint64_t kUntouched = 0xDEAD;

TEST(CellWalk, FirstValidEntryWinsAndGsmUmtsAreJudgedByTheFirstEntrysType) {
    const struct {
        const char *name;
        std::vector<mipc_nw_cell_struct> cells;
        int32_t status;
        uint64_t cellid;
        uint32_t lac;
        const char *message;
    } cases[] = {
        {"nr unknown then lte",
         {nr_cell(0xFFFFFFFF, 7), lte_cell(12345, 0)},
         0,
         12345,
         7,
         "get cellid, TYPE_LTE, cellid:12345 \n"},
        {"nr 36 bits",
         {nr_cell(0x123456789ULL, 0x10)},
         0,
         0x123456789ULL,
         0x10,
         "TYPE_NR, cellid:4886718345 \n"},
        {"umts then gsm",
         {gw_cell(kUmts, 0, 0), gw_cell(kGsm, 77, 88)},
         0,
         77,
         88,
         "get cellid, TYPE_UMTS, cellid:77 \n"},
        {"gsm first", {gw_cell(kGsm, 5, 6)}, 0, 5, 6, "get lac, TYPE_GSM, lac:6 \n"},
        {"lte first then gsm",
         {lte_cell(0, 0), gw_cell(kGsm, 5, 6)},
         -1,
         kUntouched,
         0,
         "get physically id failed for result: 0 \n"},
        {"lte all ones",
         {lte_cell(0xFFFFFFFF, 0xFFFFFFFF)},
         -1,
         kUntouched,
         0,
         "get  physically id failed for result:0 \n"},
        {"empty", {}, -1, kUntouched, 0, "listcount: 0 \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        nkw::test::syslog_clear();
        mipc_sim::set_cells(c.cells);
        uint64_t cellid = kUntouched;
        uint32_t lac = static_cast<uint32_t>(kUntouched);
        EXPECT_EQ(c.status, nkw_pal_get_cellid(&cellid));
        EXPECT_EQ(c.cellid, cellid);
        EXPECT_EQ(c.status, nkw_pal_get_lac(&lac));
        EXPECT_EQ(c.status == 0 ? c.lac : static_cast<uint32_t>(kUntouched), lac);
        EXPECT_TRUE(syslog_contains(c.message));
        EXPECT_TRUE(nkw::test::heap_balanced());
    }
    auto calls = mipc_sim::calls_to("mipc_nw_cell_info_get_sync");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(MIPC_NW_CELL_LIST_MAX, calls[0].arg);  // the capacity is set before the call
}

TEST(CellWalk, ACountBeyondTheListIsWalkedOnlyAsFarAsTheRecordGoes) {
    mipc_sim::set_cells({lte_cell(0, 0)}, 255);
    uint64_t cellid = kUntouched;
    EXPECT_EQ(-1, nkw_pal_get_cellid(&cellid));
    EXPECT_TRUE(syslog_contains("listcount: 255 \n"));
    EXPECT_TRUE(syslog_contains("cell_list[9].cell_type: 0 \n"));
    EXPECT_FALSE(syslog_contains("cell_list[10]"));
}

TEST(DataClass, FirstMatchingMaskWinsAndTheLogShowsTheCallersOldValue) {
    const struct {
        uint32_t mask;
        uint16_t code;
        const char *log;
    } cases[] = {
        {0x80, 5, "TYPE_NR"},
        {0x40 | 0x20, 5, "TYPE_NR"},
        {0x20, 1, "TYPE_LTE"},
        {0x20 | 0x1, 1, "TYPE_LTE"},
        {0x1, 4, "TYPE_UMT"},
        {0x40000000, 4, "TYPE_UMT"},
        {0x80000000, 6, "TYPE_GSM"},
        {0x10000, 6, "TYPE_GSM"},
        {0x2, 6, "TYPE_GSM"},
        {0x100, 2, "unknow"},
        {0, 2, "unknow"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.mask);
        mipc_sim::set_data_class(c.mask);
        uint16_t out = 321;
        ASSERT_EQ(0, nkw_pal_get_current_dataclass(&out));
        EXPECT_EQ(c.code, out);
        EXPECT_TRUE(syslog_contains(std::string("get dataclass, ") + c.log + ", nw_bearer:321 \n"));
    }
}

TEST(Rssi, ThirdFieldOfTheRightLineInQuarterSteps) {
    const struct {
        uint32_t data_class;
        const char *response;
        int32_t status;
        int32_t rssi;  // 999: untouched
        const char *message;
    } cases[] = {
        {0x20, "+ECSQ: 22,99,-280,-440\r\nOK", 0, -70, "get rssi_str:-280 \n"},
        {0x20, "+ECSQ: 1,2,1,4", 0, -113, "rssi_str:1 \n"},
        {0x20, "+ECSQ: 1,2,0", 0, -113, "rssi_str:0 \n"},
        {0x20, "+ECSQ: 1,2,200,4", 0, 50, "rssi_str:200 \n"},
        {0x20, "+ECSQ: 1,2,-1,4", 0, 0, "rssi_str:-1 \n"},   // -1 is not 1 unsigned
        {0x20, "+ECSQ: 1,2,-7,4", 0, -1, "rssi_str:-7 \n"},  // rounds toward zero
        {0x20, "+ECSQ: 1,2,2", 0, 0, "rssi_str:2 \n"},
        {0x80, "+ECSQ: 1,2,-300\r\n+ECSQ: 3,4,-400\r\nOK", 0, -100, "get NR network type \n"},
        {0x80, "+ECSQ: 1,2,-300\r\nOK", -1, 999, "no NR +ECSQ"},
        {0x20, "+CSQ: 1,2,-300", -1, 999, "no +ECSQ"},
        {0x20, "+ECSQ: 1,2", -1, 999, "too few fields"},
        {0x20, "+ECSQ: 1,2,12345678901234567890", 0, 0x7fffffff / 4, "rssi_str:123456789012345 \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.response);
        nkw::test::syslog_clear();
        mipc_sim::set_data_class(c.data_class);
        mipc_sim::set_at_reply("AT+ECSQ", 0, c.response);
        int32_t rssi = 999;
        EXPECT_EQ(c.status, nkw_pal_get_rssi(&rssi));
        EXPECT_EQ(c.rssi, rssi);
        EXPECT_TRUE(syslog_contains(c.message));
    }
}

TEST(Rssi, FailuresOfEitherModemQuestion) {
    int32_t rssi = 0;
    mipc_sim::set_at_reply("AT+ECSQ", 4, "ERROR");
    EXPECT_EQ(-1, nkw_pal_get_rssi(&rssi));
    EXPECT_TRUE(syslog_contains("get rssi failed for at excute failed \n"));
    mipc_sim::set_at_reply("AT+ECSQ", 0, "+ECSQ: 1,2,8");
    mipc_sim::fail_next("mipc_nw_ps_get_sync", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_get_rssi(&rssi));
    EXPECT_TRUE(syslog_contains("get rssi failed for get dataclass failed \n"));
    auto calls = mipc_sim::calls_to("mipc_sys_at_sync");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ("AT+ECSQ", calls[0].text);
}

TEST(Radio, StateIsOnOnlyWhenBothAreOnAndTheSetBoundIsSigned) {
    const struct {
        uint8_t sw, hw;
        uint32_t on;
    } reads[] = {{1, 1, 1}, {1, 0, 0}, {0, 1, 0}, {2, 3, 1}};
    for (const auto &r : reads) {
        mipc_sim::set_radio(r.sw, r.hw);
        uint32_t state = 9;
        ASSERT_EQ(0, nkw_pal_get_radio_state(&state));
        EXPECT_EQ(r.on, state);
    }
    EXPECT_TRUE(syslog_contains("mipc_nw_radio_state_get_sync sw=2, hw=3. \n"));

    const struct {
        int32_t state;
        int32_t status;
        int64_t sent;  // -1: no modem call
    } sets[] = {{2, 7, -1}, {INT32_MAX, 7, -1}, {0, 0, 0},
                {1, 0, 1},  {-1, 0, 1},         {INT32_MIN, 0, 1}};
    for (const auto &s : sets) {
        SCOPED_TRACE(s.state);
        mipc_sim::clear_journal();
        EXPECT_EQ(s.status, nkw_pal_set_radio_state(s.state));
        auto calls = mipc_sim::calls_to("mipc_nw_final_radio_state_set_sync");
        ASSERT_EQ(s.sent < 0 ? 0u : 1u, calls.size());
        if (s.sent >= 0) {
            EXPECT_EQ(s.sent, calls[0].arg);
            EXPECT_EQ(std::to_string(s.sent), calls[0].text);
        }
    }
    EXPECT_TRUE(syslog_contains("set_final_radio_status get param failed. \n"));
    // Off takes the module off the network.
    ASSERT_EQ(0, nkw_pal_set_radio_state(0));
    uint32_t reg = 9;
    ASSERT_EQ(0, nkw_pal_get_register_state(&reg));
    EXPECT_EQ(0u, reg);
}

TEST(AttachApn, SetThenGetRoundTripsTheFirstEntryFieldByField) {
    attach_apn_info in{};
    std::strcpy(in.apn, "ims.example");
    std::strcpy(in.username, "user");
    std::strcpy(in.password, "secret");
    in.option = 0xA1B2C3D4;
    in.pdp_type = 3;
    in.roaming_pdp_type = 2;
    in.auth_type = 1;
    in.compression = 4;
    ASSERT_EQ(0, nkw_pal_set_attach_apn(&in));
    attach_apn_info out;
    std::memset(&out, '#', sizeof out);
    ASSERT_EQ(0, nkw_pal_get_attach_apn(&out));
    EXPECT_EQ(0, std::memcmp(&in, &out, sizeof in));
    EXPECT_TRUE(syslog_contains("mipc_apn_ia_get_sync attach_apn_list is 1. \n"));

    // Only the first of several entries; an empty list zeroes the whole record.
    mipc_apn_ia_entry_struct first{}, second{};
    std::strcpy(first.apn, "first");
    std::strcpy(second.apn, "second");
    mipc_sim::set_attach_apns({first, second});
    ASSERT_EQ(0, nkw_pal_get_attach_apn(&out));
    EXPECT_STREQ("first", out.apn);
    mipc_sim::set_attach_apns({});
    std::memset(&out, '#', sizeof out);
    ASSERT_EQ(0, nkw_pal_get_attach_apn(&out));
    EXPECT_EQ(attach_apn_info{}.option, out.option);
    EXPECT_EQ(0, std::memcmp(&out, std::string(sizeof out, '\0').data(), sizeof out));
    EXPECT_TRUE(syslog_contains("mipc_apn_ia_get_sync attach_apn_list is 0. \n"));
    EXPECT_TRUE(nkw::test::heap_balanced());
}

TEST(RegisterInfo, RegisteredFillsAllSearchingClearsEightBytesOthersTouchNothing) {
    const struct {
        uint8_t ps_state;
        const char *plmn;
        std::string name;  // 60 bytes compared up to the first '#'
        uint32_t mcc, mnc;
    } cases[] = {
        {1, "46001", "Test Network", 460, 1},     {5, "310260", "Test Network", 310, 260},
        {2, "46001", std::string(8, '\0'), 7, 7}, {0, "46001", std::string(8, '\0'), 7, 7},
        {4, "46001", std::string(8, '\0'), 7, 7}, {9, "46001", "", 7, 7},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ps_state);
        mipc_sim::Registration reg;
        reg.ps_state = c.ps_state;
        reg.plmn = c.plmn;
        mipc_sim::set_registration(reg);
        reg_info info;
        std::memset(info.network_name, '#', sizeof info.network_name);
        info.mcc = info.mnc = 7;
        ASSERT_EQ(0, nkw_pal_get_register_info(&info));
        std::string name(info.network_name, sizeof info.network_name);
        if (c.ps_state == 1 || c.ps_state == 5) {
            EXPECT_STREQ(c.name.c_str(), info.network_name);
        } else {
            EXPECT_EQ(c.name + std::string(60 - c.name.size(), '#'), name);
        }
        EXPECT_EQ(c.mcc, info.mcc);
        EXPECT_EQ(c.mnc, info.mnc);
        EXPECT_TRUE(syslog_contains(std::string("reg_state.plmn: ") + c.plmn + " \n"));
    }
}

TEST(SbpId, ReadFromTheConfirmationOfRequest77WhichStaysUnreleased) {
    mipc_sim::set_sbp_id(128);
    EXPECT_EQ(128u, nkw_pal_get_sbp_id());
    EXPECT_TRUE(syslog_contains("current sbp id :128 \n"));
    auto calls = mipc_sim::calls_to("mipc_msg_sync_timeout");
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(77u, calls[0].msg_id);
    EXPECT_EQ(MIPC_PS_ALL, calls[0].ps_id);
    EXPECT_EQ(2, mipc_sim::live_messages());  // request and confirmation, as always

    const struct {
        std::vector<mipc_sim::Tlv> confirmation;
        uint32_t id;
    } answers[] = {
        {{mipc_sim::tlv_u32(0, 0), mipc_sim::tlv_u32(257, 42)}, 42},
        {{mipc_sim::tlv_u32(0, 1), mipc_sim::tlv_u32(257, 42)}, 0},
        {{mipc_sim::tlv_u32(257, 42)}, 0},
        {{mipc_sim::tlv_u32(0, 0)}, 0},
        {{mipc_sim::tlv_u32(0, 0), mipc_sim::tlv_u8(257, 42)}, 0},
    };
    for (const auto &a : answers) {
        mipc_sim::on_request(77, [&a](const mipc_sim::Call &) { return a.confirmation; });
        EXPECT_EQ(a.id, nkw_pal_get_sbp_id());
    }
    mipc_sim::fail_next("mipc_msg_sync_timeout", mipc_sim::no_confirmation());
    EXPECT_EQ(0u, nkw_pal_get_sbp_id());
}

// Every query: a null argument, a refused call and a non-zero result code,
// each with its status and line; every heap record is freed on the way.
TEST(NetworkQueries, BadArgumentsAndModemFailuresGiveTheirStatusAndLine) {
    const struct {
        int32_t expected, status;
        const char *message;
    } nulls[] = {
        {7, nkw_pal_get_cellid(nullptr), "get cellid failed for param \n"},
        {-1, nkw_pal_get_lac(nullptr), "get lac failed for param \n"},
        {-1, nkw_pal_get_current_dataclass(nullptr), "get current data failed for param \n"},
        {-1, nkw_pal_get_rssi(nullptr), "get rssi failed for param \n"},
        {-1, nkw_pal_get_radio_state(nullptr), "get radio state failed for param \n"},
        {7, nkw_pal_get_attach_apn(nullptr), "get attach_apn_info failed for param \n"},
        {-1, nkw_pal_set_attach_apn(nullptr), "set attach_apn_info failed for param \n"},
        {-1, nkw_pal_get_register_info(nullptr), "[platform] get reg_info failed for param \n"},
    };
    for (const auto &n : nulls) {
        EXPECT_EQ(n.expected, n.status) << n.message;
        EXPECT_TRUE(syslog_contains(n.message)) << n.message;
    }
    EXPECT_TRUE(mipc_sim::calls_to("mipc_apn_ia_set_sync").empty());

    uint64_t cellid = 0;
    uint32_t u32 = 0;
    uint16_t u16 = 0;
    attach_apn_info apn{};
    reg_info reg{};
    const struct {
        const char *call;
        std::function<int32_t()> query;
        const char *refused, *result;  // lines for return 2 and result code 5
    } cases[] = {
        {"mipc_nw_cell_info_get_sync", [&] { return nkw_pal_get_cellid(&cellid); },
         "get physically id failed for result: 2 \n", "but excute result: 5 \n"},
        {"mipc_nw_cell_info_get_sync", [&] { return nkw_pal_get_lac(&u32); },
         "get  physically id failed for result:2 \n", "but excute result:5 \n"},
        {"mipc_nw_ps_get_sync", [&] { return nkw_pal_get_current_dataclass(&u16); },
         "get nw_bearer failed for result:2 \n", "but excute result:5 \n"},
        {"mipc_nw_radio_state_get_sync", [&] { return nkw_pal_get_radio_state(&u32); },
         "get_sync failed, api_result=2. \n", "radio_state_get_sync result=5. \n"},
        {"mipc_nw_final_radio_state_set_sync", [] { return nkw_pal_set_radio_state(1); },
         "set_sync failed, api_result=2. \n", "radio_state_set_sync result=5. \n"},
        {"mipc_apn_ia_get_sync", [&] { return nkw_pal_get_attach_apn(&apn); },
         "mipc_apn_ia_get_sync failed, api_result=2. \n", "get_sync result_code=5. \n"},
        {"mipc_apn_ia_set_sync", [&] { return nkw_pal_set_attach_apn(&apn); },
         "mipc_apn_ia_set_sync failed, api_result=2. \n", "set_sync result_code=5. \n"},
        {"mipc_nw_register_state_get_sync", [&] { return nkw_pal_get_register_info(&reg); },
         "get_register_info failed, result=2 \n", "get_register_info failed, result=5 \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.refused);
        nkw::test::syslog_clear();
        mipc_sim::fail_next(c.call, mipc_sim::return_value(2));
        EXPECT_EQ(-1, c.query());
        EXPECT_TRUE(syslog_contains(c.refused));
        mipc_sim::fail_next(c.call, mipc_sim::result_code(5));
        EXPECT_EQ(-1, c.query());
        EXPECT_TRUE(syslog_contains(c.result));
        EXPECT_TRUE(nkw::test::heap_balanced());
    }
    EXPECT_STREQ("internet", mipc_sim::attach_apns().at(0).apn);  // refused sets change nothing
}

}  // namespace
