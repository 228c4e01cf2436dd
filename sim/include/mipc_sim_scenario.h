// Scenario files: a JSON document setting the initial state of every model
// area and an optional timeline of events (sim/scenarios/README.md).
#pragma once

#include <string>

namespace mipc_sim {

// mipc_init loads the scenario named here, when set.
inline constexpr const char *kScenarioEnv = "NKW_PAL_SIM_SCENARIO";

// Applies the scenario at `path` and starts its timeline. On failure nothing
// of the timeline runs and `error` names the path, where the document is
// wrong and what was expected there.
bool load_scenario(const std::string &path, std::string *error);

// Checks a scenario document without applying it; `error` as above, without the path.
bool check_scenario(const std::string &text, std::string *error);

// Applies one timeline event (a JSON object) now, as if its time had come.
bool apply_event(const std::string &event, std::string *error);

// Stops a running timeline (reset() does too).
void stop_timeline();

// Stops what a scenario started: its timeline and its GNSS adaptor (the
// session's end does this).
void stop_scenario();

}  // namespace mipc_sim
