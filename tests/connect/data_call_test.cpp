// Data call activation against the simulated modem, with the host side in
// the sandbox: the fakes answer `ip` and `route`, the resolver file is the
// sandbox's.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_data_call.h"
#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

namespace {

using nkw::test::Sandbox;
using nkw::test::syslog_contains;

constexpr char kResolv[] = "/etc/resolv.conf";
constexpr char kV6Zero[] = "0000:0000:0000:0000:0000:0000:0000:0000";

nkw_pal_data_conn_req_t request(const char *apn, uint32_t pdp_type) {
    nkw_pal_data_conn_req_t req = {};
    std::strcpy(req.apn, apn);
    req.apn_type = 1;
    req.pdp_type = pdp_type;
    req.roaming_pdp_type = 3;
    req.auth_type = 2;
    std::strcpy(req.username, "user");
    std::strcpy(req.password, "secret");
    return req;
}

// The module's root file system has /etc; the sandbox starts empty.
class DataCall : public testing::Test {
   protected:
    void SetUp() override { Sandbox::current().write_file("/etc/hostname", "module\n"); }
};
using DataCallIndication = DataCall;

TEST_F(DataCall, Ipv4CallConfiguresRouteMtuAndBothFamiliesOfDns) {
    nkw_pal_data_conn_req_t req = request("internet", 1);
    nkw_pal_data_conn_info_t info = {};
    ASSERT_EQ(0, nkw_pal_data_conn_sync(&req, &info));

    const mipc_sim::DataCallRequest sent = mipc_sim::data_call_requests().at(0);
    EXPECT_EQ(std::vector<std::string>(
                  {"16", "internet", "1", "1", "3", "2", "user", "secret", "0", "4294967295"}),
              std::vector<std::string>(
                  {std::to_string(sent.ps_id), sent.apn, std::to_string(sent.apn_type),
                   std::to_string(sent.pdp_type), std::to_string(sent.roaming_pdp_type),
                   std::to_string(sent.auth_type), sent.username, sent.password,
                   std::to_string(sent.fallback_type), std::to_string(sent.option_bitmask)}));

    EXPECT_EQ(1, info.data_call_id);
    EXPECT_EQ(0, info.interface_id);
    EXPECT_STREQ("internet", info.apn);
    EXPECT_EQ(1, info.pdp_type);
    EXPECT_EQ(1, pdp_ip_type);
    EXPECT_EQ(0, std::memcmp("\x0a\x00\x00\x02", info.v4_addr, 4));
    EXPECT_EQ(0, std::memcmp("\xc0\x00\x02\x35", info.v4_dns, 4));

    // A check that finds nothing ends the wait at once (read as ready).
    EXPECT_EQ(
        std::vector<std::string>({"ip link show ccmni0", "ip link show ccmni0",
                                  "route add default dev ccmni0", "ip link set ccmni0 mtu 1340"}),
        Sandbox::current().commands());
    EXPECT_TRUE(syslog_contains("set default route success\n \n"));
    EXPECT_EQ(std::string("nameserver 192.0.2.53\nnameserver 192.0.2.54\n") + "nameserver " +
                  kV6Zero + "\nnameserver " + kV6Zero + "\n",
              Sandbox::current().read_file(kResolv));
    EXPECT_TRUE(syslog_contains("data call apn:internet, usrname:user, password:secret \n"));
    EXPECT_TRUE(syslog_contains("[connection_manage]: v4 s dns addr=192.0.2.54\n \n"));
}

TEST_F(DataCall, Ipv6OnlyCallWritesItsServersFirstAndZeroIpv4After) {
    mipc_sim::DataCallAnswer answer;
    answer.id = 3;
    answer.interface_id = 7;
    answer.apn = "ims.mnc001.mcc001.gprs";
    mipc_sim::set_data_call_answer("ims", answer);
    nkw_pal_data_conn_req_t req = request("ims", NKW_PAL_PDP_TYPE_IPV6);
    nkw_pal_data_conn_info_t info = {};
    ASSERT_EQ(0, nkw_pal_data_conn_sync(&req, &info));

    EXPECT_EQ(NKW_PAL_PDP_TYPE_IPV6, nkw_pal_get_pdp_ip_type());
    EXPECT_EQ(7, info.interface_id);
    EXPECT_EQ("route add default dev ccmni7", Sandbox::current().commands().at(2));
    EXPECT_EQ(
        "nameserver 2001:0db8:0000:0000:0000:0000:0000:0053\n"
        "nameserver 2001:0db8:0000:0000:0000:0000:0000:0054\n"
        "nameserver 0.0.0.0\nnameserver 0.0.0.0\n",
        Sandbox::current().read_file(kResolv));
    EXPECT_TRUE(syslog_contains("v6 addr[0]=2001:0db8:0000:0003:0000:0000:0000:0002\n \n"));

    uint8_t v6[16] = {};
    ASSERT_EQ(0, nkw_pal_data_call_get_sync(3, v6));
    EXPECT_EQ(0, std::memcmp(v6, info.v6_addr, 16));
    EXPECT_EQ(0x03, v6[7]);
}

TEST_F(DataCall, RecordKeepsTheCallersBytesWhereItWritesNothing) {
    mipc_sim::DataCallAnswer answer;
    answer.apn = std::string(100, 'a');
    answer.addresses_set = true;
    answer.v4_addr = {198, 51, 100, 7};
    answer.v6_dns_primary = {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xab, 0xcd};
    mipc_sim::set_data_call_answer("long", answer);
    nkw_pal_data_conn_req_t req = request("long", 3);
    uint8_t raw[sizeof(nkw_pal_data_conn_info_t)];
    std::memset(raw, 0xEE, sizeof raw);
    raw[8 + 100] = 'z';
    auto *info = reinterpret_cast<nkw_pal_data_conn_info_t *>(raw);
    ASSERT_EQ(0, nkw_pal_data_conn_sync(&req, info));

    EXPECT_EQ(0xEE, raw[1]);
    EXPECT_EQ(0xEE, raw[3]);
    EXPECT_EQ(std::string(100, 'a'), std::string(reinterpret_cast<char *>(raw + 8), 100));
    EXPECT_EQ('z', raw[108]);  // no terminator written behind the APN
    EXPECT_EQ(3, raw[109]);
    EXPECT_EQ(198, raw[110]);
    EXPECT_EQ(0xcd, raw[134 + 15]);
    EXPECT_TRUE(syslog_contains("[connection_manage]: v4 addr=198.51.100.7\n \n"));
}

TEST_F(DataCall, RefusalsLeaveTheRecordTheRouteAndTheResolverAlone) {
    struct Case {
        const char *function;
        mipc_sim::Fault fault;
        std::string line;
    };
    const Case cases[] = {
        {"mipc_data_call_act_sync", mipc_sim::return_value(MIPC_RESULT_TIMEOUT),
         "[connection_manage] act data call failed for result:2 \n"},
        {"mipc_data_call_act_sync", mipc_sim::result_code(33),
         "[connection_manage]: operater success, but excute result:33 \n"},
    };
    nkw_pal_data_conn_req_t req = request("internet", 2);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.line);
        mipc_sim::fail_next(c.function, c.fault);
        uint8_t raw[sizeof(nkw_pal_data_conn_info_t)];
        std::memset(raw, 0xEE, sizeof raw);
        EXPECT_EQ(-1,
                  nkw_pal_data_conn_sync(&req, reinterpret_cast<nkw_pal_data_conn_info_t *>(raw)));
        EXPECT_EQ(std::vector<uint8_t>(sizeof raw, 0xEE),
                  std::vector<uint8_t>(raw, raw + sizeof raw));
        EXPECT_TRUE(syslog_contains(c.line));
    }
    nkw_pal_data_conn_info_t info;
    EXPECT_EQ(-1, nkw_pal_data_conn_sync(nullptr, &info));
    EXPECT_EQ(-1, nkw_pal_data_conn_sync(&req, nullptr));
    EXPECT_TRUE(syslog_contains("[connection_manage]: act data_call failed for param \n"));
    EXPECT_EQ(2u, mipc_sim::data_call_requests().size());
    EXPECT_TRUE(Sandbox::current().commands().empty());
    EXPECT_FALSE(Sandbox::current().exists(kResolv));
    EXPECT_EQ(1, pdp_ip_type);
}

// The wait reads the check's "not ready" as ready, so only an interface that
// is up, running and addressed costs the full 30 rounds.
TEST_F(DataCall, OnlyAnInterfaceTheCheckCallsReadyRunsTheWholeWait) {
    const std::string running = "3: ccmni0: <UP,LOWER_UP> mtu 1500 state UP mode DEFAULT RUNNING\n";
    const struct {
        std::string link, addr;
        size_t checks;  // `ip link show` runs
        bool gave_up;
    } cases[] = {
        {"3: ccmni0: <BROADCAST,MULTICAST> mtu 1500 state DOWN\n", "", 2, false},
        {running, "    inet 0.0.0.0/32 scope global ccmni0\n", 2, false},
        {running, "    inet 10.0.0.2/24 scope global ccmni0\n", 31, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.addr);
        mipc_sim::reset();
        nkw::test::syslog_clear();
        const Sandbox &box = Sandbox::current();
        std::remove((box.root() + "/commands.log").c_str());
        box.set_fake_answer("ip link show", c.link, 0);
        box.set_fake_answer("ip addr show", c.addr, 0);
        nkw_pal_data_conn_req_t req = request("internet", 1);
        nkw_pal_data_conn_info_t info = {};
        ASSERT_EQ(0, nkw_pal_data_conn_sync(&req, &info));

        size_t checks = 0;
        for (const std::string &command : box.commands())
            checks += command == "ip link show ccmni0";
        EXPECT_EQ(c.checks, checks);
        EXPECT_EQ(c.checks - 1, nkw::test::syslog_matching("ccmni retry times:").size());
        EXPECT_EQ(c.gave_up,
                  syslog_contains("Error: ccmni interface not ready after 30 retries\n \n"));
        EXPECT_EQ(c.gave_up, syslog_contains("still try to set default route\n \n"));
        EXPECT_EQ(!c.gave_up, syslog_contains("set default route success\n \n"));
        EXPECT_EQ("ip link set ccmni0 mtu 1340", box.commands().back());
    }
}

TEST_F(DataCall, QueryAndReleaseJudgeTheModemAsShipped) {
    nkw_pal_data_conn_req_t req = request("internet", 3);
    nkw_pal_data_conn_info_t info = {};
    ASSERT_EQ(0, nkw_pal_data_conn_sync(&req, &info));
    std::string resolv = Sandbox::current().read_file(kResolv);
    size_t commands = Sandbox::current().commands().size();

    uint8_t v6[16] = {0x11};
    EXPECT_EQ(-1, nkw_pal_data_call_get_sync(1, nullptr));
    EXPECT_TRUE(syslog_contains("[connection_manage]: ipv6_addr is NULL \n"));
    mipc_sim::fail_next("mipc_data_call_get_sync", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(-1, nkw_pal_data_call_get_sync(1, v6));
    EXPECT_TRUE(syslog_contains("mipc_data_call_get_sync get info fail \n"));
    // The record's result code is not judged: an unknown call reads as zeros.
    EXPECT_EQ(0, nkw_pal_data_call_get_sync(9, v6));
    EXPECT_EQ(std::vector<uint8_t>(16, 0), std::vector<uint8_t>(v6, v6 + 16));

    uint8_t id = 9;
    EXPECT_EQ(-1, nkw_pal_data_conn_release(nullptr));
    EXPECT_TRUE(syslog_contains("[platform] data connection_release failed for param \n"));
    EXPECT_EQ(-1, nkw_pal_data_conn_release(&id));
    EXPECT_TRUE(syslog_contains("[platform] operater success, but excute result:1 \n"));
    id = info.data_call_id;
    mipc_sim::fail_next("mipc_data_call_deact_sync", mipc_sim::return_value(MIPC_RESULT_TIMEOUT));
    EXPECT_EQ(-1, nkw_pal_data_conn_release(&id));
    EXPECT_TRUE(syslog_contains("[platform] data call deact failed for result:2 \n"));
    EXPECT_EQ(0, nkw_pal_data_conn_release(&id));
    EXPECT_TRUE(syslog_contains("[platform] tolv data call deact success, id:1 \n"));
    EXPECT_TRUE(mipc_sim::active_data_calls().empty());
    EXPECT_EQ(MIPC_PS_ALL, mipc_sim::calls_to("mipc_data_call_deact_sync").back().ps_id);

    EXPECT_EQ(resolv, Sandbox::current().read_file(kResolv));
    EXPECT_EQ(commands, Sandbox::current().commands().size());
}

std::vector<nkw_pal_data_call_deact_t> ended;  // filled on the dispatcher thread
void on_ended(const nkw_pal_data_call_deact_t *info) {
    ended.push_back(*info);
}

TEST_F(DataCallIndication, NetworkEndedCallsReachEveryCallback) {
    int user = 0;
    mipc_sim::fail_next("mipc_data_call_deact_register", mipc_sim::return_value(1));
    EXPECT_EQ(-1, nkw_pal_data_connection_deactivated_regisetr(on_ended, &user));
    EXPECT_TRUE(syslog_contains("[platform] mipc_data_call_deact_register callback failed \n"));
    ASSERT_EQ(0, nkw_pal_data_connection_deactivated_regisetr(on_ended, &user));
    ASSERT_EQ(0, nkw_pal_data_connection_deactivated_regisetr(on_ended, nullptr));
    ASSERT_EQ(0, nkw_pal_data_connection_deactivated_regisetr(nullptr, &user));
    nkw_pal_data_conn_req_t req = request("internet", 1);
    nkw_pal_data_conn_info_t info = {};
    ASSERT_EQ(0, nkw_pal_data_conn_sync(&req, &info));
    ASSERT_TRUE(mipc_sim::network_deactivate(info.data_call_id, 36));

    ASSERT_EQ(2u, ended.size());
    for (const nkw_pal_data_call_deact_t &record : ended) {
        EXPECT_EQ(0u, record.result_code);
        EXPECT_EQ(1u, record.data_call_id);
        EXPECT_EQ(36u, record.network_cause);
    }
    EXPECT_EQ(3u, nkw::test::syslog_matching(
                      "dc_deact_data get, result code: 0, id: 1, network code: 36 \n")
                      .size());
    EXPECT_TRUE(syslog_contains(
        "data_connection_deact_ind_cb info_p is invalid, callback to cntmgr fail \n"));
    EXPECT_TRUE(mipc_sim::active_data_calls().empty());
}

}  // namespace
