// nkwctl: the module's command-line view of the platform library, for people
// (default), scripts (-K, -J) and bug reports (--hide-personal).
#include <nkw_pal.h>

#include "commands.h"

namespace {

constexpr const char *kClientName = "nkwctl";

}  // namespace

int main(int argc, char **argv) {
    CLI::App app{"Queries and drives the cellular module through its platform library"};
    app.require_subcommand(1);
    nkwctl::Options options;
    bool keys = false;
    bool json = false;
    auto *k = app.add_flag("-K,--keys", keys, "stable dotted 'key : value' lines");
    app.add_flag("-J,--json", json, "one JSON document")->excludes(k);
    app.add_flag("--hide-personal", options.hide_personal,
                 "mask IMSI, ICCID, EID, IMEI, PIN, passwords and position");
    app.fallthrough();

    nkwctl::Action action;
    nkwctl::add_device(app, action);
    nkwctl::add_sim(app, action);
    nkwctl::add_net(app, action);
    nkwctl::add_data(app, action);
    nkwctl::add_sms(app, action);
    nkwctl::add_monitor(app, action);
    nkwctl::add_nv(app, action);
    nkwctl::add_at(app, action);
    nkwctl::add_codec(app, action);
    nkwctl::add_gnss(app, action);
    nkwctl::add_flash(app, action);
    nkwctl::add_time(app, action);
    nkwctl::add_module(app, action);
    nkwctl::add_sim_inject(app, action);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &e) {
        // Help is a success; every other argument error is a failure (1).
        return app.exit(e) == 0 ? 0 : 1;
    }
    options.format = json   ? nkwctl::Format::Json
                     : keys ? nkwctl::Format::Keys
                            : nkwctl::Format::People;
    if (!action.run) return nkwctl::fail("nkwctl", -1, "no command");
    if (!action.needs_modem) return action.run(options);

    const int32_t opened = nkw_pal_modem_msg_init(kClientName);
    if (opened != 0)
        return nkwctl::fail("modem session", opened, "the modem library refused the client");
    const int result = action.run(options);
    nkw_pal_modem_msg_deinit();
    return result;
}
