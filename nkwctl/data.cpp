// data: data calls brought up, queried and ended, and interface counters.
#include <arpa/inet.h>
#include <nkw_pal.h>

#include <cstring>
#include <iostream>

#include "commands.h"
#include "stop_signal.h"

namespace nkwctl {

namespace data_group {
namespace {

struct Request {
    std::string apn;
    uint32_t apn_type = 0;
    uint32_t pdp_type = 0;
    uint32_t roaming_pdp_type = 0;
    uint32_t auth_type = 0;
    std::string username;
    std::string password;
};

Request request;
bool hold = false;
unsigned int call_id = 0;
std::string ifname;

std::string address(int family, const uint8_t *bytes) {
    char text[INET6_ADDRSTRLEN] = {};
    inet_ntop(family, bytes, text, sizeof text);
    return text;
}

// On a PC the call lives in this process's simulated modem: holding it lets
// other commands use the interface, and the release shows at the end.
int hold_until_stopped(uint32_t id) {
    std::cout << std::flush;
    std::cerr << "data connect: holding call " << id << "; Ctrl-C releases it" << std::endl;
    while (!stop_requested({1, 0})) {
    }
    const uint8_t call = static_cast<uint8_t>(id);
    const int32_t status = nkw_pal_data_conn_release(&call);
    if (status != 0) return fail("data release", status, "the call was not released");
    std::cerr << "data connect: call " << id << " released" << std::endl;
    return 0;
}

int connect(const Options &options) {
    nkw_pal_data_conn_req_t req = {};
    std::strncpy(req.apn, request.apn.c_str(), sizeof req.apn - 1);
    std::strncpy(req.username, request.username.c_str(), sizeof req.username - 1);
    std::strncpy(req.password, request.password.c_str(), sizeof req.password - 1);
    req.apn_type = request.apn_type;
    req.pdp_type = request.pdp_type;
    req.roaming_pdp_type = request.roaming_pdp_type;
    req.auth_type = request.auth_type;
    nkw_pal_data_conn_info_t info = {};
    const int32_t status = nkw_pal_data_conn_sync(&req, &info);
    if (status != 0) return fail("data connect", status, "the call was not activated");
    Report report;
    report.number("data.call_id", info.data_call_id);
    report.text("data.interface", "ccmni" + std::to_string(info.interface_id));
    report.text("data.apn", text_of(info.apn, sizeof info.apn));
    report.number("data.pdp_type", info.pdp_type);
    report.text("data.ipv4", address(AF_INET, info.v4_addr));
    report.text("data.ipv6", address(AF_INET6, info.v6_addr));
    report.text("data.dns.ipv4", address(AF_INET, info.v4_dns));
    report.text("data.dns.ipv6", address(AF_INET6, info.v6_dns));
    report.print(options);
    return hold ? hold_until_stopped(info.data_call_id) : 0;
}

int query(const Options &options) {
    uint8_t v6[16] = {};
    const int32_t status = nkw_pal_data_call_get_sync(static_cast<uint8_t>(call_id), v6);
    if (status != 0) return fail("data query", status, "no such active call");
    Report report;
    report.number("data.call_id", call_id);
    report.text("data.ipv6", address(AF_INET6, v6));
    report.number("data.pdp_type", nkw_pal_get_pdp_ip_type());
    report.print(options);
    return 0;
}

int disconnect(const Options &) {
    const uint8_t id = static_cast<uint8_t>(call_id);
    const int32_t status = nkw_pal_data_conn_release(&id);
    return status == 0 ? 0 : fail("data disconnect", status, "the call was not released");
}

int traffic(const Options &options) {
    uint32_t tx = 0;
    uint32_t rx = 0;
    const int32_t status = nkw_pal_get_traffic_by_interface_name(ifname.c_str(), &tx, &rx);
    if (status != 0)
        return fail("data traffic", status, "the interface counters could not be read");
    Report report;
    report.number("data." + ifname + ".tx_bytes", tx);
    report.number("data." + ifname + ".rx_bytes", rx);
    report.print(options);
    return 0;
}

}  // namespace
}  // namespace data_group

void add_data(CLI::App &app, Action &action) {
    using namespace data_group;
    auto *data = app.add_subcommand("data", "data calls and interface counters");
    data->require_subcommand(1);
    auto *up = data->add_subcommand("connect", "activate a call; route, MTU and resolver follow");
    up->add_option("APN", request.apn)
        ->required()
        ->check(CLI::Validator(
            [](std::string &apn) {
                return apn.size() < NKW_PAL_APN_LEN ? std::string() : std::string("APN too long");
            },
            "APN"));
    up->add_option("--type", request.pdp_type, "PDP type (modem's code)");
    up->add_option("--roaming-type", request.roaming_pdp_type, "roaming PDP type (modem's code)");
    up->add_option("--apn-type", request.apn_type, "APN type (modem's code)");
    up->add_option("--auth", request.auth_type, "authentication type (modem's code)");
    up->add_option("--user", request.username);
    up->add_option("--password", request.password);
    up->add_flag("--hold", hold, "keep the call until interrupted, then release it");
    up->callback([&action] {
        if (hold) take_stop_signals();
        action.run = connect;
    });

    auto *get = data->add_subcommand("query", "IPv6 address of an active call");
    get->add_option("ID", call_id)->required()->check(CLI::Range(0, 255));
    get->callback([&action] { action.run = query; });
    auto *down = data->add_subcommand("disconnect", "end a call (route and resolver stay)");
    down->add_option("ID", call_id)->required()->check(CLI::Range(0, 255));
    down->callback([&action] { action.run = disconnect; });
    auto *counters = data->add_subcommand("traffic", "sent and received bytes of an interface");
    counters->add_option("IFNAME", ifname)->required();
    counters->callback([&action] {
        action.run = traffic;
        action.needs_modem = false;
    });
}

}  // namespace nkwctl
