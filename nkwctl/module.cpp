// module: IPC mode and host state; reboot, SIM reset, interrupt pins, USB
// power-down and the SAR table only as subcommands of their own.
#include <nkw_pal.h>

#include <vector>

#include "commands.h"

namespace nkwctl {

namespace module_group {
namespace {

constexpr unsigned int kDefaultRandom = 16;
constexpr unsigned int kMaxRandom = 4096;

unsigned int sim = 0;
int usb_mode = -1;  // -1: the configured mode
unsigned int sar_index = 0;
unsigned int random_length = kDefaultRandom;

int show(const Options &options) {
    Report report;
    report.number("module.ipc_mode", nkw_pal_get_dual_ipc_mode());
    report.number("module.below_os", nkw_pal_below_os_status_check());
    report.print(options);
    return 0;
}

int random_bytes(const Options &options) {
    std::vector<unsigned char> bytes(random_length);
    const int32_t status = nkw_pal_rng_generate(bytes.data(), random_length);
    if (status != 0) return fail("module random", status, "no random bytes");
    Report report;
    report.text("module.random", hex_of(bytes.data(), bytes.size()));
    report.print(options);
    return 0;
}

int done(const char *what, int32_t status, const char *reason) {
    return status == 0 ? 0 : fail(what, status, reason);
}

// Commands without arguments and without a modem session.
struct Step {
    const char *name;
    const char *help;
    int (*run)(const Options &);
};

constexpr Step kSteps[] = {
    {"reboot", "reboot the module",
     [](const Options &) {
         return done("module reboot", nkw_pal_rebootModule(), "the reboot command failed");
     }},
    {"w-disable-off", "switch off the W_DISABLE interrupt pin",
     [](const Options &) {
         return done("module w-disable-off", nkw_pal_disable_w_disable(), "the pin node refused");
     }},
    {"gnss-irq-off", "switch off the GNSS interrupt pin",
     [](const Options &) {
         return done("module gnss-irq-off", nkw_pal_disable_gnss_irq(), "the pin node refused");
     }},
};

}  // namespace
}  // namespace module_group

void add_module(CLI::App &app, Action &action) {
    using namespace module_group;
    auto *module = app.add_subcommand("module", "IPC mode, reboot, SIM reset, pins, USB, SAR");
    module->callback([&action] {
        if (!action.run) {
            action.run = show;
            action.needs_modem = false;
        }
    });
    for (const Step &step : kSteps) {
        module->add_subcommand(step.name, step.help)->callback([&action, &step] {
            action.run = step.run;
            action.needs_modem = false;
        });
    }

    auto *reset = module->add_subcommand("sim-reset", "reset SIM 0 or 1");
    reset->add_option("SIM", sim)->required()->check(CLI::Range(0, 1));
    reset->callback([&action] {
        action.run = [](const Options &) {
            return done("module sim-reset", nkw_pal_resetSIM(static_cast<unsigned char>(sim)),
                        "the modem refused the SIM reset");
        };
    });

    auto *usb = module->add_subcommand("usb-off", "power down the PCIe PHY, stop 4dipcd, USB off");
    usb->add_option("--mode", usb_mode, "IPC mode 1-4 (default: the configured one)")
        ->check(CLI::Range(1, 4));
    usb->callback([&action] {
        action.run = [](const Options &) {
            const int mode = usb_mode > 0 ? usb_mode : nkw_pal_get_dual_ipc_mode();
            return done("module usb-off", nkw_pal_disable_usb(mode), "a clock step failed");
        };
    });

    auto *sar = module->add_subcommand("sar", "switch the SAR table");
    sar->add_option("INDEX", sar_index)->required();
    sar->callback([&action] {
        action.run = [](const Options &) {
            return done("module sar", nkw_pal_sar_index_switch(sar_index),
                        "the SAR table was not switched");
        };
    });

    auto *random = module->add_subcommand("random", "random bytes from the kernel, as hex");
    random->add_option("LENGTH", random_length)->check(CLI::Range(1u, kMaxRandom));
    random->callback([&action] {
        action.run = random_bytes;
        action.needs_modem = false;
    });
}

}  // namespace nkwctl
