// Byte counters of a network interface, read from sysfs.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "connect/tag.h"
#include "diag/log.h"
#include "host/connect.h"
#include "host/host.h"
#include "nkw_pal/codec.h"
#include "nkw_pal/connect.h"

using nkw::connect::kTag;

namespace {

constexpr size_t kPathSize = 100;
constexpr size_t kValueSize = 32;
constexpr size_t kValueRead = 30;

// Formats the counter path for `ifname`; false when the name does not fit.
bool counter_path(char (&path)[kPathSize], const char *pattern, const char *ifname) {
    std::memset(path, 0, sizeof path);
    int n = std::snprintf(path, sizeof path, pattern, ifname);
    return n > 0 && static_cast<size_t>(n) < sizeof path;
}

}  // namespace

extern "C" int32_t nkw_pal_get_traffic_by_interface_name(const char *ifname, uint32_t *tx_bytes,
                                                         uint32_t *rx_bytes) {
    NKW_LOGD(kTag, "[TRAFFIC]: entering~ \n");
    if (ifname == nullptr || tx_bytes == nullptr || rx_bytes == nullptr) {
        NKW_LOGE(kTag, "[TRAFFIC]: invalid param! \n");
        return NKW_PAL_FAIL;
    }
    char path[kPathSize];
    char value[kValueSize];

    if (!counter_path(path, nkw::host::paths::kRxBytesPattern, ifname)) {
        NKW_LOGE(kTag, "[TRAFFIC]: interface name too long: %s \n", ifname);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "[TRAFFIC]: path url: %s \n", path);
    int fd = open(nkw::host::Path(path).c_str(), O_RDONLY);
    if (fd < 0) {
        NKW_LOGE(kTag, "[TRAFFIC]:open fd failed \n");
        return NKW_PAL_FAIL;
    }
    std::memset(value, 0, sizeof value);
    // Only -1 fails: an empty counter reads as 0.
    if (read(fd, value, kValueRead) == -1) {
        NKW_LOGE(kTag, "[TRAFFIC]:read fd failed \n");
        close(fd);
        return NKW_PAL_FAIL;
    }
    *rx_bytes = static_cast<uint32_t>(nkw_pal_atoi(value));
    close(fd);

    // Same length as the rx path, which fitted.
    counter_path(path, nkw::host::paths::kTxBytesPattern, ifname);
    NKW_LOGI(kTag, "[TRAFFIC]: path2 url: %s \n", path);
    fd = open(nkw::host::Path(path).c_str(), O_RDONLY);
    if (fd < 0) {
        NKW_LOGE(kTag, "[TRAFFIC]:open fd2 failed \n");
        return NKW_PAL_FAIL;
    }
    std::memset(value, 0, sizeof value);
    if (read(fd, value, kValueRead) == -1) {
        NKW_LOGE(kTag, "[TRAFFIC]:read fd failed \n");
        close(fd);
        return NKW_PAL_FAIL;
    }
    *tx_bytes = static_cast<uint32_t>(nkw_pal_atoi(value));
    close(fd);

    NKW_LOGD(kTag, "[TRAFFIC]: get success, get tx:%d, rx:%d \n", *tx_bytes, *rx_bytes);
    return NKW_PAL_OK;
}
