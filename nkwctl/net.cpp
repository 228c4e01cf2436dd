// net: registration, serving cell, signal, radio and attach APN.
#include <nkw_pal.h>

#include "commands.h"

namespace nkwctl {

namespace net_group {
namespace {

int show(const Options &options) {
    Report report;
    reg_info reg = {};
    int32_t status = nkw_pal_get_register_info(&reg);
    if (status != 0) return fail("net registration", status, "the modem did not answer");
    report.text("net.operator", text_of(reg.network_name, sizeof reg.network_name));
    report.number("net.mcc", reg.mcc);
    report.number("net.mnc", reg.mnc);

    uint64_t cellid = 0;
    if ((status = nkw_pal_get_cellid(&cellid)) != 0)
        return fail("net cell id", status, "the modem did not answer");
    report.number("net.cell_id", static_cast<int64_t>(cellid));
    uint32_t lac = 0;
    if ((status = nkw_pal_get_lac(&lac)) != 0)
        return fail("net lac", status, "the modem did not answer");
    report.number("net.lac", lac);
    uint16_t dataclass = 0;
    if ((status = nkw_pal_get_current_dataclass(&dataclass)) != 0)
        return fail("net data class", status, "the modem did not answer");
    report.number("net.dataclass", dataclass);
    int32_t rssi = 0;
    if ((status = nkw_pal_get_rssi(&rssi)) != 0)
        return fail("net rssi", status, "the modem did not answer");
    report.number("net.rssi", rssi);
    uint32_t radio = 0;
    if ((status = nkw_pal_get_radio_state(&radio)) != 0)
        return fail("net radio", status, "the modem did not answer");
    report.number("net.radio", radio);
    report.number("net.sbp_id", nkw_pal_get_sbp_id());
    uint32_t ps_state = 0;
    if ((status = nkw_pal_get_register_state(&ps_state)) != 0)
        return fail("net registration state", status, "the modem did not answer");
    report.number("net.ps_state", ps_state);
    report.print(options);
    return 0;
}

int apn(const Options &options) {
    attach_apn_info info = {};
    const int32_t status = nkw_pal_get_attach_apn(&info);
    if (status != 0) return fail("net apn", status, "the modem did not answer");
    Report report;
    report.text("net.apn.name", text_of(info.apn, sizeof info.apn));
    report.text("net.apn.username", text_of(info.username, sizeof info.username), true);
    report.text("net.apn.password", text_of(info.password, sizeof info.password), true);
    report.number("net.apn.pdp_type", info.pdp_type);
    report.number("net.apn.roaming_pdp_type", info.roaming_pdp_type);
    report.number("net.apn.auth_type", info.auth_type);
    report.print(options);
    return 0;
}

}  // namespace
}  // namespace net_group

void add_net(CLI::App &app, Action &action) {
    using namespace net_group;
    auto *net = app.add_subcommand("net", "registration, cell, signal, radio, attach APN");
    net->callback([&action] {
        if (!action.run) action.run = show;
    });
    net->add_subcommand("apn", "the initial-attach APN")->callback([&action] { action.run = apn; });

    // Packet-service attach and detach: the modem's values 1 and 0.
    for (const auto &[name, ps_state] :
         {std::pair<const char *, int32_t>{"attach", 1}, {"detach", 0}}) {
        const int32_t wanted = ps_state;
        net->add_subcommand(name, "packet-service attach (1) or detach (0)")
            ->callback([&action, wanted] {
                action.run = [wanted](const Options &) {
                    const int32_t result = nkw_pal_ps_attach(wanted);
                    return result == 0
                               ? 0
                               : fail("net attach", result, "the modem did not reach the state");
                };
            });
    }

    auto *radio = net->add_subcommand("radio", "switch the radio on (1) or off (0)");
    static int32_t state = 0;
    radio->add_option("STATE", state, "0 or 1")->required()->check(CLI::Range(0, 1));
    radio->callback([&action] {
        action.run = [](const Options &) {
            const int32_t result = nkw_pal_set_radio_state(state);
            return result == 0 ? 0 : fail("net radio", result, "the modem refused the radio state");
        };
    });
}

}  // namespace nkwctl
