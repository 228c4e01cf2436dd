// Scenario areas seen through the library: a scripted data call, GNSS track,
// SAR and modem time, and events that change what the library reads.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "location/gnss_test_util.h"
#include "mipc_sim.h"
#include "mipc_sim_gnss.h"
#include "mipc_sim_sar.h"
#include "mipc_sim_scenario.h"
#include "nkw_pal.h"
#include "support/sandbox.h"

namespace {

using nkw::test::Sandbox;

void load(const std::string &name) {
    std::string error;
    ASSERT_TRUE(mipc_sim::load_scenario(NKW_PAL_SCENARIO_DIR "/" + name, &error)) << error;
}

TEST(ScenarioAreas, HomeLteScriptsTheDataCallTheFixAndSar) {
    load("home_lte.json");
    Sandbox::current().write_file("/etc/hostname", "module\n");  // the module's /etc exists
    nkw_pal_data_conn_req_t req = {};
    std::strcpy(req.apn, "internet");
    req.pdp_type = 3;
    nkw_pal_data_conn_info_t info = {};
    ASSERT_EQ(0, nkw_pal_data_conn_sync(&req, &info));
    EXPECT_EQ(1, info.data_call_id);
    EXPECT_EQ(0, info.interface_id);
    EXPECT_EQ(3, info.pdp_type);
    EXPECT_EQ(0, std::memcmp("\xc6\x33\x64\x22", info.v4_addr, 4));  // 198.51.100.34
    EXPECT_EQ(0, std::memcmp("\x20\x01\x0d\xb8\x01\x00\0\0\0\0\0\0\0\0\0\x34", info.v6_addr, 16));
    const std::string resolv = Sandbox::current().read_file("/etc/resolv.conf");
    EXPECT_EQ(0u, resolv.rfind("nameserver 192.0.2.53\nnameserver 192.0.2.54\n", 0)) << resolv;
    EXPECT_NE(std::string::npos, resolv.find("nameserver 2001:0db8:0000:0000:0000:0000:0000:0054"))
        << resolv;

    // The adaptor listens where the sandboxed library dials, by default.
    nkw_pal_gnss_result fix{};
    ASSERT_EQ(0, nkw_pal_gnss_info_acquire(10, &fix));
    EXPECT_NEAR(52.520008, fix.latitude, 1e-4);
    EXPECT_NEAR(13.404954, fix.longitude, 1e-4);
    EXPECT_EQ(9, fix.sat_num);

    EXPECT_EQ(0, nkw_pal_sar_index_switch(3));  // body SAR enabled
    mipc_sim::drain();
    EXPECT_EQ(3u, mipc_sim::sar_table().index);
}

TEST(ScenarioAreas, RoamingNrScriptsTheModemsTime) {
    load("roaming_nr.json");
    EXPECT_EQ(1777624200u, nkw_pal_get_sys_time());  // 2026-05-01T08:30:00Z
}

TEST(ScenarioAreas, AnAdaptorAlreadyServingTheNameIsLeftToIt) {
    mipc_sim::GnssAdaptorScript own;
    own.track.position.latitude = -33.5;
    ASSERT_TRUE(nkw::test::start_adaptor(own));
    load("home_lte.json");
    nkw_pal_gnss_result fix{};
    ASSERT_EQ(0, nkw_pal_gnss_info_acquire(10, &fix));
    EXPECT_NEAR(-33.5, fix.latitude, 1e-4);
    mipc_sim::stop_scenario();  // stops only what the scenario started
    EXPECT_EQ(0, nkw_pal_gnss_info_acquire(10, &fix));
}

TEST(ScenarioAreas, EventsChangeWhatTheLibraryReads) {
    const struct {
        const char *event;
        std::function<int64_t()> read;
        int64_t expected;
    } cases[] = {
        {R"({"event": "cells", "cells": [{"rat": "lte", "cell_id": 26882, "tac": 4661}]})",
         [] {
             uint64_t id = 0;
             return nkw_pal_get_cellid(&id) == 0 ? static_cast<int64_t>(id) : -1;
         },
         26882},
        {R"({"event": "at_reply", "prefix": "AT+ECSQ", "response": "+ECSQ: 3,99,-400,-440,-340,-115,-140\r\nOK"})",
         [] {
             int32_t rssi = 0;
             return nkw_pal_get_rssi(&rssi) == 0 ? rssi : -1;
         },
         -100},
        {R"({"event": "radio", "sw": 0, "hw": 1})",
         [] {
             uint32_t state = 9;
             return nkw_pal_get_radio_state(&state) == 0 ? static_cast<int64_t>(state) : -1;
         },
         0},
        {R"({"event": "sim_status", "slot": 0, "status": "pin_required"})",
         [] { return static_cast<int64_t>(nkw_pal_get_sim_status(0)); },
         2},  // PIN required, in the library's numbering
        {R"({"event": "mapped_slot", "slot": 1})",
         [] { return static_cast<int64_t>(nkw_pal_get_current_sim_slot()); }, 1},
        {R"({"event": "modem_time", "time_ms": 1700000000123, "tz_offset_min": -300})",
         [] { return static_cast<int64_t>(nkw_pal_get_sys_time()); }, 1700000000},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.event);
        std::string error;
        ASSERT_TRUE(mipc_sim::apply_event(c.event, &error)) << error;
        EXPECT_EQ(c.expected, c.read());
    }
}

}  // namespace
