// monitor: every indication the library offers, one event per line, until
// interrupted (or --count events, or --seconds).
#include <nkw_pal.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <iostream>
#include <mutex>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "stop_signal.h"

namespace nkwctl {

namespace monitor_group {
namespace {

using Fields = std::vector<std::pair<std::string, nlohmann::json>>;

const Options *chosen = nullptr;
std::mutex print_lock;
std::atomic<unsigned int> events{0};
unsigned int count = 0;    // 0: until interrupted
unsigned int seconds = 0;  // 0: until interrupted
bool stopped = false;      // under print_lock

// Callbacks arrive on the modem library's thread, possibly several at once.
void emit(const char *name, const Fields &fields) {
    std::lock_guard<std::mutex> hold(print_lock);
    if (stopped || (count != 0 && events.load() >= count)) return;
    if (chosen->format == Format::Json) {
        nlohmann::json body = nlohmann::json::object();
        for (const auto &[key, value] : fields) body[key] = value;
        std::cout << nlohmann::json{{"event", name}, {"fields", body}}.dump() << std::endl;
    } else if (chosen->format == Format::Keys) {
        for (const auto &[key, value] : fields)
            std::cout << name << "." << key << " : " << value << "\n";
        std::cout << std::flush;
    } else {
        std::cout << name;
        for (const auto &[key, value] : fields) std::cout << " " << key << "=" << value;
        std::cout << std::endl;
    }
    events.fetch_add(1);
}

nlohmann::json personal(const std::string &value) {
    return chosen->hide_personal ? std::string("********") : value;
}

void on_sim(int32_t sim_id, int32_t status, void *) {
    emit("sim_status", {{"sim_id", sim_id}, {"status", status}});
}
void on_register(uint32_t state, void *) {
    emit("register_state", {{"state", state}});
}
void on_deact(const nkw_pal_data_call_deact_t *info) {
    emit("data_call_ended", {{"call_id", info->data_call_id},
                             {"result", info->result_code},
                             {"cause", info->network_cause}});
}
void on_sms(sms_store_event event, void *) {
    const char *name = event.event == NKW_PAL_SMS_EVENT_STORAGE_FULL ? "sms_store_full" : "sms_new";
    emit(name, {{"index", event.message_index}});
}
void on_hotplug(int32_t plugged, void *) {
    emit("hotplug", {{"plugged", plugged}});
}
void on_mbim_open(int32_t status, void *) {
    emit("mbim_open", {{"status", status}});
}
void on_slot(int32_t option, int32_t sim_id, void *) {
    emit("mbim_slot_mapping", {{"option", option}, {"sim_id", sim_id}});
}
void on_pin(nkw_pal_mbim_pin_info *pin, void *) {
    emit("mbim_sim_pin",
         {{"status", pin->status}, {"pin", personal(text_of(pin->pin, sizeof pin->pin))}});
}
void on_connect(int32_t connected, const char *apn, void *) {
    emit("mbim_connect", {{"connected", connected}, {"apn", apn != nullptr ? apn : ""}});
}
void on_lpa(int32_t value, void *) {
    emit("mbim_lpa_apdu", {{"value", value}});
}

struct Subscription {
    const char *name;
    int32_t (*subscribe)();
};

constexpr Subscription kSubscriptions[] = {
    {"sim status", [] { return nkw_pal_sim_status_indication_register(on_sim, nullptr); }},
    {"registration",
     [] { return nkw_pal_register_state_indication_register(on_register, nullptr); }},
    {"data call end",
     [] { return nkw_pal_data_connection_deactivated_regisetr(on_deact, nullptr); }},
    {"sms store", [] { return nkw_pal_sms_store_state_indication_register(on_sms, nullptr); }},
    {"hotplug", [] { return nkw_pal_hotplug_status_indication_register(on_hotplug, nullptr); }},
    {"mbim open",
     [] { return nkw_pal_mbim_open_status_indication_register(on_mbim_open, nullptr); }},
    {"mbim slot",
     [] { return nkw_pal_mbim_sim_slot_mapping_indication_register(on_slot, nullptr); }},
    {"mbim pin", [] { return nkw_pal_mbim_simpin_status_indication_register(on_pin, nullptr); }},
    {"mbim connect",
     [] { return nkw_pal_mbim_connect_status_indication_register(on_connect, nullptr); }},
    {"mbim lpa",
     [] { return nkw_pal_mbim_lpa_auth_server_apdu_indication_register(on_lpa, nullptr); }},
};

int run(const Options &options) {
    chosen = &options;
    for (const Subscription &s : kSubscriptions) {
        const int32_t status = s.subscribe();
        if (status != 0)
            return fail(std::string("monitor ") + s.name, status, "the subscription was refused");
    }
    // Scripts wait for this line before they make the first event happen.
    std::cerr << "monitor: ready, " << std::size(kSubscriptions)
              << " indications subscribed; Ctrl-C stops" << std::endl;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    const timespec poll = {0, 100 * 1000 * 1000};
    for (;;) {
        if (stop_requested(poll)) break;
        if (count != 0 && events.load() >= count) break;
        if (seconds != 0 && std::chrono::steady_clock::now() >= deadline) break;
    }
    // Events still arriving while the session closes are not printed.
    std::lock_guard<std::mutex> hold(print_lock);
    stopped = true;
    return 0;
}

}  // namespace
}  // namespace monitor_group

void add_monitor(CLI::App &app, Action &action) {
    using namespace monitor_group;
    auto *monitor = app.add_subcommand(
        "monitor", "print every indication, one event per line, until interrupted");
    monitor->add_option("--count", count, "stop after this many events");
    monitor->add_option("--seconds", seconds, "stop after this many seconds");
    monitor->callback([&action] {
        take_stop_signals();
        action.run = run;
    });
}

}  // namespace nkwctl
