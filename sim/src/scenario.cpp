// Scenario loader: validates a whole document before touching any model, so
// a bad file leaves the simulated modem as it was.
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <nlohmann/json.hpp>
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

namespace mipc_sim {
namespace {

using nlohmann::json;

// A schema failure: where and what was expected there.
struct Problem {
    std::string where;
    std::string expected;
};

using Check = bool (*)(const json &, const std::string &, Problem *);

bool fail(Problem *problem, const std::string &where, const std::string &expected) {
    *problem = {where.empty() ? "/" : where, expected};
    return false;
}

bool only_keys(const json &object, const std::string &where,
               std::initializer_list<const char *> keys, Problem *problem) {
    if (!object.is_object()) return fail(problem, where, "an object");
    for (auto it = object.begin(); it != object.end(); ++it) {
        bool known = false;
        for (const char *key : keys) known = known || it.key() == key;
        if (!known) {
            std::string list;
            for (const char *key : keys) list += std::string(list.empty() ? "" : ", ") + key;
            return fail(problem, where + "/" + it.key(), "one of the keys " + list);
        }
    }
    return true;
}

bool number(const json &object, const char *key, const std::string &where, uint64_t max,
            bool required, Problem *problem) {
    if (!object.contains(key))
        return !required || fail(problem, where + "/" + key, "a number (missing)");
    const json &value = object[key];
    if (!value.is_number_unsigned() || value.get<uint64_t>() > max)
        return fail(problem, where + "/" + key, "a number from 0 to " + std::to_string(max));
    return true;
}

bool text(const json &object, const char *key, const std::string &where, bool required,
          Problem *problem) {
    if (!object.contains(key))
        return !required || fail(problem, where + "/" + key, "a string (missing)");
    return object[key].is_string() || fail(problem, where + "/" + key, "a string");
}

// The string at `key`, or "" when it is missing or not a string.
std::string string_at(const json &object, const char *key) {
    return object.contains(key) && object[key].is_string() ? object[key].get<std::string>() : "";
}

bool hex_bytes(const std::string &hex, std::vector<uint8_t> *out) {
    if (hex.size() % 2 != 0) return false;
    out->clear();
    for (size_t i = 0; i < hex.size(); i += 2) {
        auto nibble = [](char c) {
            if (c >= '0' && c <= '9') return c - '0';
            if (c >= 'a' && c <= 'f') return c - 'a' + 10;
            if (c >= 'A' && c <= 'F') return c - 'A' + 10;
            return -1;
        };
        int high = nibble(hex[i]), low = nibble(hex[i + 1]);
        if (high < 0 || low < 0) return false;
        out->push_back(static_cast<uint8_t>(high << 4 | low));
    }
    return true;
}

bool hex(const json &object, const char *key, const std::string &where, Problem *problem) {
    std::vector<uint8_t> bytes;
    if (!object.contains(key) || !object[key].is_string() ||
        !hex_bytes(object[key].get<std::string>(), &bytes) || bytes.empty())
        return fail(problem, where + "/" + key, "a non-empty string of hex digit pairs");
    return true;
}

std::vector<uint8_t> bytes_of(const json &value) {
    std::vector<uint8_t> bytes;
    hex_bytes(value.get<std::string>(), &bytes);
    return bytes;
}

bool each(const json &list, const std::string &where, Check check, Problem *problem) {
    if (!list.is_array()) return fail(problem, where, "an array");
    for (size_t i = 0; i < list.size(); ++i)
        if (!check(list[i], where + "/" + std::to_string(i), problem)) return false;
    return true;
}

// ---- Names used in documents ----------------------------------------------

struct Name {
    const char *name;
    uint32_t value;
};
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

template <size_t N>
bool named(const json &object, const char *key, const std::string &where, const Name (&names)[N],
           Problem *problem) {
    if (!object.contains(key)) return true;
    std::string list;
    for (const Name &n : names) {
        if (object[key] == n.name) return true;
        list += std::string(list.empty() ? "" : ", ") + n.name;
    }
    return fail(problem, where + "/" + key, "one of " + list);
}

template <size_t N>
uint32_t value_of(const json &object, const char *key, const Name (&names)[N], uint32_t fallback) {
    if (!object.contains(key)) return fallback;
    for (const Name &n : names)
        if (object[key] == n.name) return n.value;
    return fallback;
}

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

bool check_network(const json &nw, const std::string &where, Problem *problem) {
    if (!only_keys(nw, where, {"registration", "cells", "data_class", "radio", "sbp_id"}, problem))
        return false;
    if (nw.contains("registration") &&
        !check_registration(nw["registration"], where + "/registration", problem))
        return false;
    if (nw.contains("cells") && !each(nw["cells"], where + "/cells", check_cell, problem))
        return false;
    if (nw.contains("radio") && !(only_keys(nw["radio"], where + "/radio", {"sw", "hw"}, problem) &&
                                  number(nw["radio"], "sw", where + "/radio", 1, true, problem) &&
                                  number(nw["radio"], "hw", where + "/radio", 1, true, problem)))
        return false;
    return number(nw, "data_class", where, 0xFFFFFFFF, false, problem) &&
           number(nw, "sbp_id", where, 0xFFFFFFFF, false, problem);
}

void apply_network(const json &nw) {
    if (nw.contains("registration")) apply_registration(nw["registration"]);
    if (nw.contains("cells")) {
        std::vector<mipc_nw_cell_struct> cells;
        for (const json &cell : nw["cells"])
            cells.push_back(
                cell["rat"] == "nr"
                    ? nr_cell(cell["cell_id"].get<uint64_t>(), cell["tac"].get<uint32_t>())
                    : lte_cell(cell["cell_id"].get<uint32_t>(), cell["tac"].get<uint32_t>()));
        set_cells(cells);
    }
    if (nw.contains("data_class")) set_data_class(nw["data_class"].get<uint32_t>());
    if (nw.contains("radio"))
        set_radio(nw["radio"]["sw"].get<uint8_t>(), nw["radio"]["hw"].get<uint8_t>());
    if (nw.contains("sbp_id")) set_sbp_id(nw["sbp_id"].get<uint32_t>());
}

bool check_data_call(const json &call, const std::string &where, Problem *problem) {
    return only_keys(call, where, {"apn", "result_code", "id", "interface_id"}, problem) &&
           text(call, "apn", where, true, problem) &&
           number(call, "result_code", where, 0xFFFFFFFF, false, problem) &&
           number(call, "id", where, 255, false, problem) &&
           number(call, "interface_id", where, 255, false, problem);
}

void apply_data_call(const json &call) {
    DataCallAnswer answer;
    answer.result_code = call.value("result_code", answer.result_code);
    answer.id = call.value("id", answer.id);
    answer.interface_id = call.value("interface_id", answer.interface_id);
    set_data_call_answer(call["apn"].get<std::string>(), answer);
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

bool check_event(const json &event, const std::string &where, Problem *problem) {
    if (!event.is_object()) return fail(problem, where, "an object");
    const std::string kind = string_at(event, "event");
    if (kind == "sms")
        return only_keys(event, where, {"event", "pdu"}, problem) &&
               hex(event, "pdu", where, problem);
    if (kind == "sim_removed" || kind == "sim_inserted")
        return only_keys(event, where, {"event", "slot"}, problem) &&
               number(event, "slot", where, 1, true, problem);
    if (kind == "registration") {
        json reg = event;
        reg.erase("event");
        return check_registration(reg, where, problem);
    }
    if (kind == "data_call_end")
        return only_keys(event, where, {"event", "id", "cause"}, problem) &&
               number(event, "id", where, 255, true, problem) &&
               number(event, "cause", where, 0xFFFFFFFF, false, problem);
    if (kind == "hotplug")
        return only_keys(event, where, {"event", "cause"}, problem) &&
               number(event, "cause", where, 255, true, problem);
    if (kind == "mbim_connect_status")
        return only_keys(event, where, {"event", "status", "apn"}, problem) &&
               number(event, "status", where, 0xFFFFFFFF, true, problem) &&
               text(event, "apn", where, true, problem);
    if (kind == "mbim_pin_status")
        return only_keys(event, where, {"event", "status", "pin"}, problem) &&
               number(event, "status", where, 255, true, problem) &&
               text(event, "pin", where, true, problem);
    return fail(problem, where + "/event",
                "one of sms, sim_removed, sim_inserted, registration, data_call_end, hotplug, "
                "mbim_connect_status, mbim_pin_status");
}

void set_sim_state(int slot, uint32_t state) {
    SimCard card = sim(slot);
    card.state = state;
    set_sim(slot, card);
}

// Runs a checked event: each drives the model, which pushes what a real
// modem would push for it.
void run_event(const json &event) {
    const std::string kind = event["event"].get<std::string>();
    if (kind == "sms") {
        receive_sms(bytes_of(event["pdu"]));
    } else if (kind == "sim_removed") {
        set_sim_state(event["slot"].get<int>(), kSimStateAbsent);
    } else if (kind == "sim_inserted") {
        set_sim_state(event["slot"].get<int>(), kSimStateReady);
    } else if (kind == "registration") {
        json reg = event;
        reg.erase("event");
        apply_registration(reg);
    } else if (kind == "data_call_end") {
        network_deactivate(event["id"].get<uint8_t>(), event.value("cause", 0u));
    } else if (kind == "hotplug") {
        push_hotplug(event["cause"].get<uint8_t>());
    } else if (kind == "mbim_connect_status") {
        push_mbim_connect_status(event["status"].get<uint32_t>(), event["apn"].get<std::string>());
    } else if (kind == "mbim_pin_status") {
        push_mbim_pin_status(event["status"].get<uint8_t>(), event["pin"].get<std::string>());
    }
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
                    "nvram", "at", "timeline"},
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
    for (const json &at : doc.value("at", json::array()))
        set_at_reply(at["prefix"].get<std::string>(), at.value("result_code", 0u),
                     at.value("response", std::string()));
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
    stop_timeline();
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
