// Whether the host side is in the below-OS state: the PCIe status first,
// then the connect-mode file. Every failure reads as "not below".
#include <fcntl.h>

#include <cstdio>

#include "device/control/control.h"
#include "diag/log.h"
#include "host/device_control.h"

namespace host = nkw::host::device_control;
using nkw::device::kTag;

namespace {
// _IOWR('K', 3, int)
constexpr unsigned long kPcieStatusRequest = 0xC0044B03;
constexpr int kAboveOs = 1;
}  // namespace

extern "C" int32_t nkw_pal_below_os_status_check(void) {
    const int fd = host::open(host::kPcieDipc, O_RDWR);
    if (fd < 0) {
        NKW_LOGE(kTag, "pcie pcie_dipc open error. \n");
        return 0;
    }
    int status = 0;
    if (host::ioctl(fd, kPcieStatusRequest, &status) < 0) {
        host::close(fd);
        NKW_LOGE(kTag, "pcie status ioctl error\n \n");
        return 0;
    }
    host::close(fd);
    NKW_LOGI(kTag, "pcie status %d. \n", status);
    if (status == kAboveOs) {
        NKW_LOGI(kTag, "is above os status. \n");
        return 0;
    }

    FILE *mode = host::fopen(host::kConnectMode, "r+");
    if (mode == nullptr) {
        NKW_LOGE(kTag, "open pcie verno file failed. \n");
        return 0;
    }
    char first[2] = {};
    const size_t got = std::fread(first, 1, sizeof first, mode);
    std::fclose(mode);
    // An empty file reads as "not '1'", like a zero byte.
    if (got == 0 || first[0] != '1') {
        NKW_LOGI(kTag, "is below os status. \n");
        return 1;
    }
    NKW_LOGI(kTag, "is above os status. \n");
    return 0;
}
