// sim: status of both SIMs, identity of the active one, slot and PIN entry.
#include <nkw_pal.h>

#include <iterator>

#include "commands.h"

namespace nkwctl {

namespace sim_group {
namespace {

constexpr int32_t kSimCount = 2;
constexpr int32_t kNoSlot = 255;

constexpr TextItem kIdentity[] = {
    {"sim.imsi", nkw_pal_get_imsi, true},     {"sim.iccid", nkw_pal_get_iccid, true},
    {"sim.eid", nkw_pal_get_eid, true},       {"sim.mcc", nkw_pal_get_mcc_info, false},
    {"sim.mnc", nkw_pal_get_mnc_info, false},
};

int status(const Options &options) {
    Report report;
    for (int32_t i = 0; i < kSimCount; ++i) {
        report.number("sim." + std::to_string(i) + ".status", nkw_pal_get_sim_status(i));
    }
    report.number("sim.slot", nkw_pal_get_current_sim_slot());
    const int failed = add_texts(report, kIdentity, std::size(kIdentity));
    report.print(options);
    return failed;
}

int slot_get(const Options &options) {
    const int32_t slot = nkw_pal_get_current_sim_slot();
    if (slot == kNoSlot) return fail("sim slot", slot, "the modem did not report the slot");
    Report report;
    report.number("sim.slot", slot);
    report.print(options);
    return 0;
}

}  // namespace
}  // namespace sim_group

void add_sim(CLI::App &app, Action &action) {
    using namespace sim_group;
    auto *sim = app.add_subcommand("sim", "SIM status, identity, slot and PIN");
    sim->require_subcommand(1);
    sim->add_subcommand("status", "status of both SIMs and identity of the active one")
        ->callback([&action] { action.run = status; });

    auto *slot =
        sim->add_subcommand("slot", "print the active slot, or map SLOT to the first stack");
    static int32_t new_slot = -1;
    slot->add_option("SLOT", new_slot, "0 or 1")->check(CLI::Range(0, 1));
    slot->callback([&action, slot] {
        if (slot->count("SLOT") == 0) {
            action.run = slot_get;
            return;
        }
        action.run = [](const Options &) {
            const int32_t result = nkw_pal_sim_slot_switch(new_slot);
            return result == 0 ? 0 : fail("sim slot", result, "the modem refused the slot switch");
        };
    });

    auto *pin = sim->add_subcommand("pin", "enter PIN1");
    static std::string pin_code;
    pin->add_option("PIN", pin_code, "the PIN digits")->required();
    pin->callback([&action] {
        action.run = [](const Options &) {
            const int32_t result = nkw_pal_sim_verify_pin(pin_code.c_str());
            return result == 0 ? 0 : fail("sim pin", result, "the SIM refused the PIN");
        };
    });
}

}  // namespace nkwctl
