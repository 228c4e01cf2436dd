// The failure lines of the queries name the query itself in their
// "[function:line]-" prefix, also where the check is made by a shared helper.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "info/info_test_util.h"
#include "mipc_sim.h"
#include "nkw_pal.h"

namespace {

using nkw::test::syslog_matching;

// Lines that carry `text` all name `function` as their writer (and there
// are some, unless `may_be_absent`).
void expect_logged_by(const std::string &function, const std::string &text,
                      bool may_be_absent = false) {
    auto lines = syslog_matching(text);
    if (!may_be_absent) {
        ASSERT_FALSE(lines.empty()) << text;
    }
    for (const auto &line : lines) {
        EXPECT_NE(std::string::npos, line.text.find("[" + function + ":")) << line.text;
    }
}

TEST(QueryLogPrefix, FailuresAndAllocationsAreLoggedUnderTheQuerysName) {
    char text[128];
    uint64_t u64 = 0;
    uint32_t u32 = 0;
    uint16_t u16 = 0;
    attach_apn_info apn{};
    const struct {
        const char *function;
        const char *call;
        std::function<int32_t()> query;
        const char *refused, *result;  // lines for return 2 and result code 5
    } cases[] = {
        {"nkw_pal_get_imsi", "mipc_sim_imsi_get_sync", [&] { return nkw_pal_get_imsi(text); },
         "get imsi failed for result: 2 \n", "but excute result: 5 \n"},
        {"nkw_pal_get_iccid", "mipc_sim_iccid_get_sync", [&] { return nkw_pal_get_iccid(text); },
         "get iccid failed for result: 2 \n", "but excute result: 5 \n"},
        {"nkw_pal_get_mnc_info", "mipc_sim_imsi_get_sync",
         [&] { return nkw_pal_get_mnc_info(text); }, "get mnc failed for result: 2 \n",
         "but excute result: 5 \n"},
        {"nkw_pal_get_imei", "mipc_sys_info_get_sync", [&] { return nkw_pal_get_imei(text); },
         "get imei failed for result: 2 \n", "but excute result: 5 \n"},
        {"nkw_pal_get_firmware_version", "mipc_sys_at_sync",
         [&] { return nkw_pal_get_firmware_version(text); },
         "get firmware version failed for result: 2 \n", "but excute result: 5 \n"},
        {"nkw_pal_get_eid", "mipc_sys_at_sync", [&] { return nkw_pal_get_eid(text); },
         "get eid failed for result: 2 \n", "but excute result: 5 \n"},
        {"nkw_pal_get_cellid", "mipc_nw_cell_info_get_sync",
         [&] { return nkw_pal_get_cellid(&u64); }, "get physically id failed for result: 2 \n",
         "but excute result: 5 \n"},
        {"nkw_pal_get_lac", "mipc_nw_cell_info_get_sync", [&] { return nkw_pal_get_lac(&u32); },
         "get  physically id failed for result:2 \n", "but excute result:5 \n"},
        {"nkw_pal_get_current_dataclass", "mipc_nw_ps_get_sync",
         [&] { return nkw_pal_get_current_dataclass(&u16); },
         "get nw_bearer failed for result:2 \n", "but excute result:5 \n"},
        {"nkw_pal_get_attach_apn", "mipc_apn_ia_get_sync",
         [&] { return nkw_pal_get_attach_apn(&apn); }, "get_sync failed, api_result=2. \n",
         "get_sync result_code=5. \n"},
        {"nkw_pal_get_current_sim_slot", "mipc_sys_mapping_get_sync",
         [] { return nkw_pal_get_current_sim_slot() == 255 ? -1 : 0; },
         "get_sync failed, api_result=2. \n", "mapping_get_sync result=5. \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.function);
        nkw::test::syslog_clear();
        mipc_sim::fail_next(c.call, mipc_sim::return_value(2));
        EXPECT_EQ(-1, c.query());
        expect_logged_by(c.function, c.refused);
        mipc_sim::fail_next(c.call, mipc_sim::result_code(5));
        EXPECT_EQ(-1, c.query());
        expect_logged_by(c.function, c.result);
        // A block the query holds is logged as the query's, both ways.
        expect_logged_by(c.function, "]-malloc ", true);
        expect_logged_by(c.function, "]-free ", true);
    }
}

TEST(QueryLogPrefix, MissingArgumentsAreLoggedUnderTheQuerysName) {
    const struct {
        const char *function;
        std::function<int32_t()> query;
        const char *line;
    } cases[] = {
        {"nkw_pal_get_mcc_info", [] { return nkw_pal_get_mcc_info(nullptr); },
         "get mcc failed for param \n"},
        {"nkw_pal_get_chip_type", [] { return nkw_pal_get_chip_type(nullptr); },
         "get chip type failed for param \n"},
        {"nkw_pal_get_model", [] { return nkw_pal_get_model(nullptr); },
         "get model failed for param \n"},
        {"nkw_pal_get_rssi", [] { return nkw_pal_get_rssi(nullptr); },
         "get rssi failed for param \n"},
        {"nkw_pal_get_cellid", [] { return nkw_pal_get_cellid(nullptr); },
         "get cellid failed for param \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.function);
        EXPECT_NE(0, c.query());
        expect_logged_by(c.function, c.line);
    }
}

}  // namespace
