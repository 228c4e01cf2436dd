// sim-inject: pushes events into a process running on the simulated modem,
// through its control socket. Events are JSON objects as in a scenario
// timeline (without "t"), given as arguments or one a line on stdin.
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "inject_client.h"

namespace {

int usage() {
    std::cerr
        << "usage: sim-inject [-s SOCKET] [EVENT...]\n"
           "  Sends each EVENT (a JSON object, e.g. '{\"event\":\"hotplug\",\"cause\":12}'),\n"
           "  or each line of stdin when none is given, to the control socket\n"
           "  (-s, else $NKW_PAL_SIM_CONTROL). Exit status 1 if any is refused.\n";
    return 2;
}

}  // namespace

int main(int argc, char **argv) {
    const char *env = std::getenv("NKW_PAL_SIM_CONTROL");
    std::string path = env != nullptr ? env : "";
    std::vector<std::string> events;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-s" && i + 1 < argc) {
            path = argv[++i];
        } else if (arg == "-h" || arg == "--help" || arg == "-s") {
            return usage();
        } else {
            events.push_back(arg);
        }
    }
    if (path.empty()) return usage();
    return nkw::inject::send_events(path, events, std::cin, std::cerr, "sim-inject");
}
