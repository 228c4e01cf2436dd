// Switching off the W_DISABLE and GNSS interrupt pins.
#include <fcntl.h>

#include "device/control/control.h"
#include "diag/log.h"
#include "host/device_control.h"

namespace host = nkw::host::device_control;
using nkw::device::kTag;

namespace {

// Written with its terminating NUL: the driver compares 12 bytes.
constexpr char kOff[] = "gtfmode_off";
static_assert(sizeof kOff == 12, "the pin driver expects 12 bytes");

// 0 or -1; the caller logs success under its own name.
int32_t switch_off(const char *node) {
    const int fd = host::open(node, O_RDWR | O_NOCTTY);
    if (fd < 0) {
        NKW_LOGE(kTag, "fail to open gtfmodeflag, fd is %d\n \n", fd);
        return -1;
    }
    if (host::write(fd, kOff, sizeof kOff) < 0) {
        NKW_LOGE(kTag, "fail to write gtfmode_off, fd is %d\n \n", fd);
        host::close(fd);
        return -1;
    }
    host::close(fd);
    return 0;
}

}  // namespace

extern "C" {

int32_t nkw_pal_disable_w_disable(void) {
    if (switch_off(host::kWDisableFlag) != 0) return -1;
    NKW_LOGI(kTag, "disable w_disable eint success \n");
    return 0;
}

int32_t nkw_pal_disable_gnss_irq(void) {
    if (switch_off(host::kGnssIrqFlag) != 0) return -1;
    NKW_LOGI(kTag, "disable gnss_irq eint success \n");
    return 0;
}

}  // extern "C"
