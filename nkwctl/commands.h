// Every subcommand group registers itself on the top-level app and, when it
// is chosen, leaves the action to run once the options are parsed. The tool
// is compiled as one translation unit, so each group keeps its helpers in a
// namespace of its own (<group>_group).
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "output.h"

namespace nkwctl {

struct Action {
    std::function<int(const Options &)> run;
    bool needs_modem = true;  // opens the modem session around run
};

void add_device(CLI::App &app, Action &action);
void add_sim(CLI::App &app, Action &action);
void add_net(CLI::App &app, Action &action);
void add_codec(CLI::App &app, Action &action);
void add_nv(CLI::App &app, Action &action);
void add_at(CLI::App &app, Action &action);
void add_sms(CLI::App &app, Action &action);
void add_data(CLI::App &app, Action &action);
void add_monitor(CLI::App &app, Action &action);
void add_gnss(CLI::App &app, Action &action);
void add_flash(CLI::App &app, Action &action);
void add_time(CLI::App &app, Action &action);
void add_module(CLI::App &app, Action &action);
void add_sim_inject(CLI::App &app, Action &action);

}  // namespace nkwctl
