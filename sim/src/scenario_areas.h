// Scenario areas beyond the SIM, network and stores: data-call answers, the
// GNSS adaptor's track, SAR and the modem's time. Each has a check, run on
// the whole document before anything is applied, and an apply.
#pragma once

#include <string>

#include "scenario_schema.h"

namespace mipc_sim::scenario {

using schema::json;
using schema::Problem;

bool check_data_call(const json &call, const std::string &where, Problem *problem);
void apply_data_call(const json &call);

bool check_gnss(const json &gnss, const std::string &where, Problem *problem);
// Starts the adaptor with the track. True when it listens, or when another
// process already serves the name (another session on the same scenario);
// otherwise false with the reason.
bool start_gnss(const json &gnss, std::string *error);
// Stops the adaptor if start_gnss started it.
void stop_gnss();

bool check_sar(const json &sar, const std::string &where, Problem *problem);
void apply_sar(const json &sar);

bool check_modem_time(const json &time, const std::string &where, Problem *problem);
void apply_modem_time(const json &time);

}  // namespace mipc_sim::scenario
