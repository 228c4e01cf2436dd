// device: the module's own identity.
#include <nkw_pal.h>

#include "commands.h"

namespace nkwctl {

namespace {

constexpr size_t kText = 128;
using Getter = int32_t (*)(char *);

struct TextItem {
    const char *key;
    Getter get;
    bool personal;
};

constexpr TextItem kItems[] = {
    {"device.imei", nkw_pal_get_imei, true},
    {"device.model", nkw_pal_get_model, false},
    {"device.chip_type", nkw_pal_get_chip_type, false},
    {"device.firmware", nkw_pal_get_firmware_version, false},
    {"device.pidvid", nkw_pal_get_pidvid, false},
    {"device.manufacture_date", nkw_pal_get_manufacture_date, false},
};

int show(const Options &options) {
    Report report;
    int failed = 0;
    for (const TextItem &item : kItems) {
        char buf[kText] = {};
        const int32_t status = item.get(buf);
        // One missing item does not hide the others; the exit status tells.
        if (status != 0) {
            failed = fail(item.key, status, "the modem did not answer");
            continue;
        }
        report.text(item.key, text_of(buf, sizeof buf), item.personal);
    }
    report.number("device.sim_cd", nkw_pal_get_sim_cd_state());
    report.print(options);
    return failed;
}

}  // namespace

void add_device(CLI::App &app, Action &action) {
    auto *cmd =
        app.add_subcommand("device", "IMEI, model, chip, firmware, PID/VID, date, card detect");
    cmd->callback([&action] { action.run = show; });
}

}  // namespace nkwctl
