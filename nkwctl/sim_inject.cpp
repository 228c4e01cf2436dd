// sim-inject: pushes events into a process running on the simulated modem,
// as the standalone sim-inject tool does.
#include <cstdlib>
#include <iostream>

#include "commands.h"
#include "inject_client.h"

namespace nkwctl {

namespace sim_inject_group {
namespace {

constexpr const char *kSocketEnv = "NKW_PAL_SIM_CONTROL";

std::string socket_path;
std::vector<std::string> events;

int inject(const Options &) {
    if (socket_path.empty()) {
        const char *env = std::getenv(kSocketEnv);
        socket_path = env != nullptr ? env : "";
    }
    if (socket_path.empty())
        return fail("sim-inject", -1,
                    std::string("no control socket: give -s or set ") + kSocketEnv);
    return nkw::inject::send_events(socket_path, events, std::cin, std::cerr, "sim-inject");
}

}  // namespace
}  // namespace sim_inject_group

void add_sim_inject(CLI::App &app, Action &action) {
    using namespace sim_inject_group;
    auto *cmd = app.add_subcommand(
        "sim-inject",
        "push events (JSON, as in a scenario timeline) into a running simulated modem");
    cmd->add_option("-s,--socket", socket_path, "control socket (default: $NKW_PAL_SIM_CONTROL)");
    cmd->add_option("EVENT", events, "one JSON object each; none: one a line on stdin");
    cmd->callback([&action] {
        action.run = inject;
        action.needs_modem = false;
    });
}

}  // namespace nkwctl
