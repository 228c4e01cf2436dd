// USB/PCIe PHY power-down: clock-debug writes, the 4dipcd stop, then what
// the IPC mode asks for.
#include <cstring>

#include "device/control/control.h"
#include "diag/log.h"
#include "host/device_control.h"
#include "nkw_pal/modem.h"

namespace host = nkw::host::device_control;
using nkw::device::kShellTag;
using nkw::device::kTag;

namespace {

constexpr const char kPowerOffLanes[] = "pwr_off pextp_d_2lx1";
constexpr const char kPowerOffPhy[] = "pwr_off pextp_d_2lx1_phy";
constexpr const char kUsbPowerDown[] = "AT+EGMC=1,\"usb_pwrdown\"";

// The AT channel's completion type differs from the exported callback's.
void usb_power_down_done(const char *response, int32_t length) {
    nkw_pal_disable_usb_cb(reinterpret_cast<signed char *>(const_cast<char *>(response)),
                           static_cast<unsigned int>(length));
}

void power_down_by_mode(int ipc_mode) {
    switch (ipc_mode) {
        case NKW_PAL_IPC_MODE_USB:
            if (nkw_pal_at_send_async(kUsbPowerDown, std::strlen(kUsbPowerDown),
                                      usb_power_down_done) != 0) {
                NKW_LOGE(kTag, "AT cmd %s send failed \n", kUsbPowerDown);
            } else {
                NKW_LOGI(kTag, "AT cmd %s send success \n", kUsbPowerDown);
            }
            break;
        case NKW_PAL_IPC_MODE_PCIE_ONLY:
            NKW_LOGI(kTag, "dont need to disable USB in PCIE only mode \n");
            break;
        case NKW_PAL_IPC_MODE_DIPC:
            NKW_LOGI(kTag, "dont disable USB in DIPC mode \n");
            break;
        default:
            NKW_LOGE(kTag, "unsupport ipc mode \n");
            break;
    }
}

}  // namespace

void nkw_pal_disable_usb_cb(signed char *response, unsigned int length) {
    if (response == nullptr && length == 0) {
        NKW_LOGE(kTag, "[platform] disable_usb_cb failed! \n");
    }
}

extern "C" int32_t nkw_pal_disable_usb(int ipc_mode) {
    if (nkw_pal_open_write_func(host::kClockDebug, kPowerOffLanes) != 0) {
        NKW_LOGE(kTag, "write pwr_off pextp_d_2lx1 failed \n");
        return -1;
    }
    if (nkw_pal_open_read_func(host::kClockDebug) != 0) {
        NKW_LOGE(kTag, "read pwr_off pextp_d_2lx1 failed \n");
        return -1;
    }
    if (nkw_pal_open_write_func(host::kClockDebug, kPowerOffPhy) != 0) {
        NKW_LOGE(kTag, "write pwr_off pextp_d_2lx1_phy failed \n");
        return -1;
    }
    if (nkw_pal_open_read_func(host::kClockDebug) != 0) {
        NKW_LOGE(kTag, "read pwr_off pextp_d_2lx1_phy failed \n");
        return -1;
    }
    NKW_LOGI(kShellTag, "[tolv system cmd] nkw pal system_cmd=%s \n", host::kStop4dipcdCommand);
    const int status = host::run_command(host::kStop4dipcdCommand);
    NKW_LOGI(kTag, "4dipcd stop ret is: %d \n", status);
    // The service is down whatever the mode step gives.
    power_down_by_mode(ipc_mode);
    return 0;
}
