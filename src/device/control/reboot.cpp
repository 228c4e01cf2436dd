// Module reboot through the shell.
#include "device/control/control.h"
#include "diag/log.h"
#include "host/device_control.h"

namespace host = nkw::host::device_control;
using nkw::device::kShellTag;
using nkw::device::kTag;

extern "C" int32_t nkw_pal_rebootModule(void) {
    NKW_LOGI(kShellTag, "[tolv system cmd] nkw pal system_cmd=%s \n", host::kRebootCommand);
    const int status = host::run_command(host::kRebootCommand);
    NKW_LOGI(kTag, "reboot module ret is: %d \n", status);
    return status != 0 ? NKW_PAL_REBOOT_FAILED : 0;
}
