// Scenario loader: validates a whole document before touching any model, so
// a bad file leaves the simulated modem as it was.
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <sstream>
#include <thread>

#include "core.h"
#include "mipc_sim_at.h"
#include "mipc_sim_card.h"
#include "mipc_sim_data_call.h"
#include "mipc_sim_indication.h"
#include "mipc_sim_network.h"
#include "mipc_sim_nvram.h"
#include "mipc_sim_scenario.h"
#include "mipc_sim_sms.h"
#include "mipc_sim_sys_info.h"
#include "scenario_areas.h"
#include "scenario_schema.h"

namespace mipc_sim {
namespace {

using namespace schema;
using scenario::apply_data_call;
using scenario::check_data_call;

constexpr Name kRegStates[] = {{"not_registered", MIPC_NW_REG_STATE_NOT_REGISTERED},
                               {"home", MIPC_NW_REG_STATE_HOME},
                               {"searching", MIPC_NW_REG_STATE_SEARCHING},
                               {"denied", MIPC_NW_REG_STATE_DENIED},
                               {"unknown", MIPC_NW_REG_STATE_UNKNOWN},
                               {"roaming", MIPC_NW_REG_STATE_ROAMING}};
constexpr Name kSimStatuses[] = {{"ready", kSimStatusReady},
                                 {"pin_required", kSimStatusPinRequired},
                                 {"blocked", kSimStatusBlocked}};
constexpr Name kSimStates[] = {{"ready", kSimStateReady}, {"absent", kSimStateAbsent}};
constexpr Name kSmsStatuses[] = {
    {"unread", kSmsUnread}, {"read", kSmsRead}, {"unsent", kSmsUnsent}, {"sent", kSmsSent}};

// ---- Initial state: check, then apply ---------------------------------------

bool check_sim(const json &sim, const std::string &where, Problem *problem) {
    return only_keys(sim, where,
                     {"slot", "imsi", "mnc_len", "iccid", "eid", "state", "status", "pin",
                      "remaining_attempts"},
                     problem) &&
           number(sim, "slot", where, 1, true, problem) &&
           text(sim, "imsi", where, false, problem) &&
           number(sim, "mnc_len", where, 3, false, problem) &&
           text(sim, "iccid", where, false, problem) && text(sim, "eid", where, false, problem) &&
           named(sim, "state", where, kSimStates, problem) &&
           named(sim, "status", where, kSimStatuses, problem) &&
           text(sim, "pin", where, false, problem) &&
           number(sim, "remaining_attempts", where, 10, false, problem);
}

void apply_sim(const json &sim) {
    SimCard card;
    card.imsi = sim.value("imsi", card.imsi);
    card.mnc_len = sim.value("mnc_len", card.mnc_len);
    card.iccid = sim.value("iccid", card.iccid);
    card.eid = sim.value("eid", card.eid);
    card.state = value_of(sim, "state", kSimStates, card.state);
    card.status = value_of(sim, "status", kSimStatuses, card.status);
    card.pin = sim.value("pin", card.pin);
    card.remaining_attempts = sim.value("remaining_attempts", card.remaining_attempts);
    set_sim(sim["slot"].get<int>(), card);
}

bool check_cell(const json &cell, const std::string &where, Problem *problem) {
    if (!only_keys(cell, where, {"rat", "cell_id", "tac", "lac"}, problem)) return false;
    if (string_at(cell, "rat") == "lte" || string_at(cell, "rat") == "nr")
        return number(cell, "cell_id", where, cell["rat"] == "nr" ? 0xFFFFFFFFFULL : 0xFFFFFFF,
                      true, problem) &&
               number(cell, "tac", where, 0xFFFFFF, true, problem);
    return fail(problem, where + "/rat", "one of lte, nr");
}

bool check_registration(const json &reg, const std::string &where, Problem *problem) {
    return only_keys(reg, where, {"cs_state", "ps_state", "plmn", "name", "network_error"},
                     problem) &&
           named(reg, "cs_state", where, kRegStates, problem) &&
           named(reg, "ps_state", where, kRegStates, problem) &&
           text(reg, "plmn", where, false, problem) && text(reg, "name", where, false, problem) &&
           number(reg, "network_error", where, 0xFFFFFFFF, false, problem);
}

void apply_registration(const json &reg) {
    Registration r;
    r.cs_state = static_cast<uint8_t>(value_of(reg, "cs_state", kRegStates, r.cs_state));
    r.ps_state = static_cast<uint8_t>(value_of(reg, "ps_state", kRegStates, r.ps_state));
    r.plmn = reg.value("plmn", r.plmn);
    r.network_name = reg.value("name", r.network_name);
    r.network_error = reg.value("network_error", r.network_error);
    set_registration(r);
}

bool check_radio(const json &radio, const std::string &where, Problem *problem) {
    return only_keys(radio, where, {"sw", "hw"}, problem) &&
           number(radio, "sw", where, 1, true, problem) &&
           number(radio, "hw", where, 1, true, problem);
}

std::vector<mipc_nw_cell_struct> cells_of(const json &list) {
    std::vector<mipc_nw_cell_struct> cells;
    for (const json &cell : list)
        cells.push_back(
            cell["rat"] == "nr"
                ? nr_cell(cell["cell_id"].get<uint64_t>(), cell["tac"].get<uint32_t>())
                : lte_cell(cell["cell_id"].get<uint32_t>(), cell["tac"].get<uint32_t>()));
    return cells;
}

bool check_network(const json &nw, const std::string &where, Problem *problem) {
    if (!only_keys(nw, where, {"registration", "cells", "data_class", "radio", "sbp_id"}, problem))
        return false;
    if (nw.contains("registration") &&
        !check_registration(nw["registration"], where + "/registration", problem))
        return false;
    if (nw.contains("cells") && !each(nw["cells"], where + "/cells", check_cell, problem))
        return false;
    if (nw.contains("radio") && !check_radio(nw["radio"], where + "/radio", problem)) return false;
    return number(nw, "data_class", where, 0xFFFFFFFF, false, problem) &&
           number(nw, "sbp_id", where, 0xFFFFFFFF, false, problem);
}

void apply_network(const json &nw) {
    if (nw.contains("registration")) apply_registration(nw["registration"]);
    if (nw.contains("cells")) set_cells(cells_of(nw["cells"]));
    if (nw.contains("data_class")) set_data_class(nw["data_class"].get<uint32_t>());
    if (nw.contains("radio"))
        set_radio(nw["radio"]["sw"].get<uint8_t>(), nw["radio"]["hw"].get<uint8_t>());
    if (nw.contains("sbp_id")) set_sbp_id(nw["sbp_id"].get<uint32_t>());
}

bool check_stored_sms(const json &sms, const std::string &where, Problem *problem) {
    return only_keys(sms, where, {"index", "pdu", "status"}, problem) &&
           number(sms, "index", where, 0xFFFF, true, problem) && hex(sms, "pdu", where, problem) &&
           named(sms, "status", where, kSmsStatuses, problem);
}

bool check_sms(const json &sms, const std::string &where, Problem *problem) {
    return only_keys(sms, where, {"capacity", "stored"}, problem) &&
           number(sms, "capacity", where, 0xFFFF, false, problem) &&
           (!sms.contains("stored") ||
            each(sms["stored"], where + "/stored", check_stored_sms, problem));
}

void apply_sms(const json &sms) {
    if (sms.contains("capacity")) set_sms_capacity(sms["capacity"].get<uint16_t>());
    for (const json &stored : sms.value("stored", json::array()))
        store_sms(stored["index"].get<uint16_t>(), bytes_of(stored["pdu"]),
                  static_cast<uint8_t>(value_of(stored, "status", kSmsStatuses, kSmsRead)));
}

bool check_nvram_item(const json &item, const std::string &where, Problem *problem) {
    return only_keys(item, where, {"lid", "hex"}, problem) &&
           number(item, "lid", where, 0xFFFFFFFF, true, problem) &&
           hex(item, "hex", where, problem);
}

bool check_at_reply(const json &at, const std::string &where, Problem *problem) {
    return only_keys(at, where, {"prefix", "result_code", "response"}, problem) &&
           text(at, "prefix", where, true, problem) &&
           number(at, "result_code", where, 0xFFFFFFFF, false, problem) &&
           text(at, "response", where, false, problem);
}

void apply_at_reply(const json &at) {
    set_at_reply(at["prefix"].get<std::string>(), at.value("result_code", 0u),
                 at.value("response", std::string()));
}

// ---- Events -------------------------------------------------------------------

bool check_event(const json &event, const std::string &where, Problem *problem);

constexpr double kLatestEvent = 1e6;

bool check_timed_event(const json &event, const std::string &where, Problem *problem) {
    if (!event.is_object()) return fail(problem, where, "an object");
    // Bounded so the due time cannot overflow the clock.
    if (!event.contains("t") || !event["t"].is_number() || event["t"].get<double>() < 0 ||
        event["t"].get<double>() > kLatestEvent)
        return fail(problem, where + "/t", "a number of seconds from 0 to 1000000");
    json rest = event;
    rest.erase("t");
    return check_event(rest, where, problem);
}

void set_sim_state(int slot, uint32_t state) {
    SimCard card = sim(slot);
    card.state = state;
    set_sim(slot, card);
}

void set_sim_status(int slot, uint32_t status) {
    SimCard card = sim(slot);
    card.status = status;
    set_sim(slot, card);
}

// An event without its "event" key, for the events shaped as an area's object.
json body_of(const json &event) {
    json body = event;
    body.erase("event");
    return body;
}

bool check_slot_event(const json &event, const std::string &where, Problem *problem) {
    return only_keys(event, where, {"event", "slot"}, problem) &&
           number(event, "slot", where, 1, true, problem);
}

// One kind of event: its check, and what it does to the models (which push
// what a real modem would push for it).
struct EventKind {
    const char *name;
    Check check;
    void (*run)(const json &event);
};

constexpr EventKind kEvents[] = {
    {"sms",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "pdu"}, p) && hex(e, "pdu", w, p);
     },
     [](const json &e) { receive_sms(bytes_of(e["pdu"])); }},
    {"sim_removed", check_slot_event,
     [](const json &e) { set_sim_state(e["slot"].get<int>(), kSimStateAbsent); }},
    {"sim_inserted", check_slot_event,
     [](const json &e) { set_sim_state(e["slot"].get<int>(), kSimStateReady); }},
    {"sim_status",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "slot", "status"}, p) &&
                number(e, "slot", w, 1, true, p) &&
                (e.contains("status") || fail(p, w + "/status", "a SIM status (missing)")) &&
                named(e, "status", w, kSimStatuses, p);
     },
     [](const json &e) {
         set_sim_status(e["slot"].get<int>(), value_of(e, "status", kSimStatuses, 0));
     }},
    {"mapped_slot", check_slot_event, [](const json &e) { set_mapped_slot(e["slot"].get<int>()); }},
    {"registration",
     [](const json &e, const std::string &w, Problem *p) {
         return check_registration(body_of(e), w, p);
     },
     [](const json &e) { apply_registration(body_of(e)); }},
    {"cells",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "cells"}, p) &&
                (e.contains("cells") || fail(p, w + "/cells", "an array (missing)")) &&
                each(e["cells"], w + "/cells", check_cell, p);
     },
     [](const json &e) { set_cells(cells_of(e["cells"])); }},
    {"radio",
     [](const json &e, const std::string &w, Problem *p) { return check_radio(body_of(e), w, p); },
     [](const json &e) { set_radio(e["sw"].get<uint8_t>(), e["hw"].get<uint8_t>()); }},
    {"data_class",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "mask"}, p) && number(e, "mask", w, 0xFFFFFFFF, true, p);
     },
     [](const json &e) { set_data_class(e["mask"].get<uint32_t>()); }},
    {"at_reply",
     [](const json &e, const std::string &w, Problem *p) {
         return check_at_reply(body_of(e), w, p);
     },
     [](const json &e) { apply_at_reply(e); }},
    {"modem_time",
     [](const json &e, const std::string &w, Problem *p) {
         return scenario::check_modem_time(body_of(e), w, p);
     },
     [](const json &e) { scenario::apply_modem_time(body_of(e)); }},
    {"data_call_end",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "id", "cause"}, p) && number(e, "id", w, 255, true, p) &&
                number(e, "cause", w, 0xFFFFFFFF, false, p);
     },
     [](const json &e) { network_deactivate(e["id"].get<uint8_t>(), e.value("cause", 0u)); }},
    {"hotplug",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "cause"}, p) && number(e, "cause", w, 255, true, p);
     },
     [](const json &e) { push_hotplug(e["cause"].get<uint8_t>()); }},
    {"mbim_open",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "status"}, p) &&
                number(e, "status", w, 0xFFFFFFFF, true, p);
     },
     [](const json &e) { push_mbim_open(e["status"].get<uint32_t>()); }},
    {"mbim_slot_mapping",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "option", "sim_id"}, p) &&
                number(e, "option", w, 0xFFFFFFFF, true, p) &&
                number(e, "sim_id", w, 0xFFFFFFFF, true, p);
     },
     [](const json &e) {
         push_mbim_slot_mapping(e["option"].get<uint32_t>(), e["sim_id"].get<uint32_t>());
     }},
    {"mbim_connect_status",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "status", "apn"}, p) &&
                number(e, "status", w, 0xFFFFFFFF, true, p) && text(e, "apn", w, true, p);
     },
     [](const json &e) {
         push_mbim_connect_status(e["status"].get<uint32_t>(), e["apn"].get<std::string>());
     }},
    {"mbim_pin_status",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "status", "pin"}, p) &&
                number(e, "status", w, 255, true, p) && text(e, "pin", w, true, p);
     },
     [](const json &e) {
         push_mbim_pin_status(e["status"].get<uint8_t>(), e["pin"].get<std::string>());
     }},
    {"mbim_lpa_apdu",
     [](const json &e, const std::string &w, Problem *p) {
         return only_keys(e, w, {"event", "value"}, p) &&
                number(e, "value", w, 0xFFFFFFFF, true, p);
     },
     [](const json &e) { push_mbim_lpa_apdu(e["value"].get<uint32_t>()); }},
};

const EventKind *kind_of(const json &event) {
    const std::string name = string_at(event, "event");
    for (const EventKind &kind : kEvents)
        if (name == kind.name) return &kind;
    return nullptr;
}

bool check_event(const json &event, const std::string &where, Problem *problem) {
    if (!event.is_object()) return fail(problem, where, "an object");
    if (const EventKind *kind = kind_of(event)) return kind->check(event, where, problem);
    std::string names;
    for (const EventKind &kind : kEvents)
        names += std::string(names.empty() ? "" : ", ") + kind.name;
    return fail(problem, where + "/event", "one of " + names);
}

// Runs a checked event.
void run_event(const json &event) {
    kind_of(event)->run(event);
}

// ---- Timeline ---------------------------------------------------------------------

struct Timeline {
    std::mutex lock;
    std::condition_variable wake;
    bool stopping = false;
    std::thread thread;
};

Timeline &timeline() {
    static Timeline instance;
    return instance;
}

void start_timeline(json events) {
    std::stable_sort(events.begin(), events.end(), [](const json &a, const json &b) {
        return a["t"].get<double>() < b["t"].get<double>();
    });
    Timeline &line = timeline();
    line.stopping = false;
    line.thread = std::thread([events = std::move(events)] {
        const auto start = std::chrono::steady_clock::now();
        for (const json &timed : events) {
            const auto due = start + std::chrono::duration<double>(timed["t"].get<double>());
            {
                std::unique_lock<std::mutex> guard(timeline().lock);
                if (timeline().wake.wait_until(guard, due, [] { return timeline().stopping; }))
                    return;
            }
            run_event(timed);
        }
    });
}

const core::ResetHook kReset([] { stop_timeline(); });

// ---- Whole document ---------------------------------------------------------------

bool check_document(const json &doc, Problem *problem) {
    if (!only_keys(doc, "",
                   {"description", "imei", "sims", "mapped_slot", "network", "data_calls", "sms",
                    "nvram", "at", "gnss", "sar", "modem_time", "timeline"},
                   problem))
        return false;
    return text(doc, "description", "", false, problem) && text(doc, "imei", "", false, problem) &&
           (!doc.contains("sims") || each(doc["sims"], "/sims", check_sim, problem)) &&
           number(doc, "mapped_slot", "", 1, false, problem) &&
           (!doc.contains("network") || check_network(doc["network"], "/network", problem)) &&
           (!doc.contains("data_calls") ||
            each(doc["data_calls"], "/data_calls", check_data_call, problem)) &&
           (!doc.contains("sms") || check_sms(doc["sms"], "/sms", problem)) &&
           (!doc.contains("nvram") || each(doc["nvram"], "/nvram", check_nvram_item, problem)) &&
           (!doc.contains("at") || each(doc["at"], "/at", check_at_reply, problem)) &&
           (!doc.contains("gnss") || scenario::check_gnss(doc["gnss"], "/gnss", problem)) &&
           (!doc.contains("sar") || scenario::check_sar(doc["sar"], "/sar", problem)) &&
           (!doc.contains("modem_time") ||
            scenario::check_modem_time(doc["modem_time"], "/modem_time", problem)) &&
           (!doc.contains("timeline") ||
            each(doc["timeline"], "/timeline", check_timed_event, problem));
}

void apply_document(const json &doc) {
    if (doc.contains("imei")) set_imei(doc["imei"].get<std::string>());
    for (const json &sim : doc.value("sims", json::array())) apply_sim(sim);
    if (doc.contains("mapped_slot")) set_mapped_slot(doc["mapped_slot"].get<int>());
    if (doc.contains("network")) apply_network(doc["network"]);
    for (const json &call : doc.value("data_calls", json::array())) apply_data_call(call);
    if (doc.contains("sms")) apply_sms(doc["sms"]);
    for (const json &item : doc.value("nvram", json::array()))
        set_nvram_item(item["lid"].get<uint32_t>(), bytes_of(item["hex"]));
    for (const json &at : doc.value("at", json::array())) apply_at_reply(at);
    if (doc.contains("sar")) scenario::apply_sar(doc["sar"]);
    if (doc.contains("modem_time")) scenario::apply_modem_time(doc["modem_time"]);
}

// Line and column (from 1) of byte offset `byte` (from 1, as the parser counts).
std::string position(const std::string &text, size_t byte) {
    size_t line = 1, column = 1;
    for (size_t i = 0; i + 1 < byte && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

bool parse(const std::string &text, json *doc, std::string *error) {
    try {
        *doc = json::parse(text);
    } catch (const json::parse_error &e) {
        // The parser's message after its "[json.exception...] " prefix says what it expected.
        std::string what = e.what();
        const size_t detail = what.find("syntax error");
        *error = position(text, e.byte) + ": " +
                 (detail == std::string::npos ? what : what.substr(detail));
        return false;
    } catch (const json::exception &e) {
        // Such as a number too large for any type; the parser gives no position for these.
        const std::string what = e.what();
        const size_t detail = what.find("] ");
        *error = detail == std::string::npos ? what : what.substr(detail + 2);
        return false;
    }
    return true;
}

bool parse_and_check(const std::string &text, json *doc, std::string *error) {
    if (!parse(text, doc, error)) return false;
    Problem problem;
    if (!check_document(*doc, &problem)) {
        *error = "at " + problem.where + ": expected " + problem.expected;
        return false;
    }
    return true;
}

}  // namespace

bool check_scenario(const std::string &text, std::string *error) {
    json doc;
    return parse_and_check(text, &doc, error);
}

bool load_scenario(const std::string &path, std::string *error) {
    std::ifstream file(path);
    if (!file) {
        *error = path + ": cannot be read";
        return false;
    }
    std::stringstream content;
    content << file.rdbuf();
    json doc;
    std::string why;
    if (!parse_and_check(content.str(), &doc, &why)) {
        *error = path + ": " + why;
        return false;
    }
    stop_scenario();
    // First, so an adaptor that cannot listen refuses the scenario before
    // anything else of it is applied.
    if (doc.contains("gnss") && !scenario::start_gnss(doc["gnss"], &why)) {
        *error = path + ": " + why;
        return false;
    }
    apply_document(doc);
    if (doc.contains("timeline")) start_timeline(doc["timeline"]);
    return true;
}

bool apply_event(const std::string &event, std::string *error) {
    json doc;
    if (!parse(event, &doc, error)) return false;
    Problem problem;
    if (!check_event(doc, "", &problem)) {
        *error = "at " + problem.where + ": expected " + problem.expected;
        return false;
    }
    run_event(doc);
    return true;
}

void stop_scenario() {
    stop_timeline();
    scenario::stop_gnss();
}

void stop_timeline() {
    Timeline &line = timeline();
    {
        std::lock_guard<std::mutex> guard(line.lock);
        line.stopping = true;
    }
    line.wake.notify_all();
    if (line.thread.joinable() && line.thread.get_id() != std::this_thread::get_id())
        line.thread.join();
}

}  // namespace mipc_sim
