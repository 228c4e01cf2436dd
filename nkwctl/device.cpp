// device: the module's own identity.
#include <nkw_pal.h>

#include <iterator>

#include "commands.h"

namespace nkwctl {

namespace device_group {
namespace {

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
    const int failed = add_texts(report, kItems, std::size(kItems));
    report.number("device.sim_cd", nkw_pal_get_sim_cd_state());
    report.print(options);
    return failed;
}

}  // namespace
}  // namespace device_group

void add_device(CLI::App &app, Action &action) {
    using namespace device_group;
    auto *cmd =
        app.add_subcommand("device", "IMEI, model, chip, firmware, PID/VID, date, card detect");
    cmd->callback([&action] { action.run = show; });
}

}  // namespace nkwctl
