// mipc_init / mipc_deinit.
#include <cstdio>
#include <cstdlib>

#include "core.h"
#include "mipc_sim_control.h"
#include "mipc_sim_scenario.h"

namespace {

struct Session {
    bool open = false;
    std::string client;
};

Session &session() {
    static Session instance;
    return instance;
}

const mipc_sim::core::ResetHook kReset([] { session() = Session{}; });

}  // namespace

extern "C" mipc_result_enum mipc_init(const char *process_name_ptr) {
    using namespace mipc_sim;
    std::string client = process_name_ptr != nullptr ? process_name_ptr : "";
    core::record({"mipc_init", -1, 0, client, 0, {}});
    Fault fault{};
    if (core::take_fault("mipc_init", &fault)) return static_cast<mipc_result_enum>(fault.value);
    // A scenario that cannot be applied fails the session: running on
    // defaults instead would hide the mistake from whoever wrote it.
    if (const char *scenario = std::getenv(kScenarioEnv);
        scenario != nullptr && *scenario != '\0') {
        std::string error;
        if (!load_scenario(scenario, &error)) {
            std::fprintf(stderr, "mipc_sim: scenario refused: %s\n", error.c_str());
            return MIPC_RESULT_FAILURE;
        }
    }
    if (const char *socket = std::getenv(kControlEnv); socket != nullptr && *socket != '\0') {
        std::string error;
        if (!start_control_socket(socket, &error)) {
            std::fprintf(stderr, "mipc_sim: control socket refused: %s\n", error.c_str());
            stop_scenario();
            return MIPC_RESULT_FAILURE;
        }
    }
    std::lock_guard<std::mutex> guard(core::state_lock());
    session().open = true;
    session().client = client;
    return MIPC_RESULT_SUCCESS;
}

extern "C" mipc_result_enum mipc_deinit(void) {
    using namespace mipc_sim;
    core::record({"mipc_deinit", -1, 0, "", 0, {}});
    Fault fault{};
    if (core::take_fault("mipc_deinit", &fault)) return static_cast<mipc_result_enum>(fault.value);
    stop_control_socket();
    stop_scenario();
    std::lock_guard<std::mutex> guard(core::state_lock());
    session().open = false;
    return MIPC_RESULT_SUCCESS;
}

namespace mipc_sim {

bool session_open() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return session().open;
}

std::string session_client() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return session().client;
}

}  // namespace mipc_sim
