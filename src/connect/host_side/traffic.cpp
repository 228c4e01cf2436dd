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

// What tells the rx and tx reads apart in the log.
struct CounterLabels {
    const char *path;
    const char *open;
};
constexpr CounterLabels kRxLabels{"path url", "open fd"};
constexpr CounterLabels kTxLabels{"path2 url", "open fd2"};

// One counter of `ifname` into `out`; false once the failure is logged under
// the caller's name. Only -1 from read fails: an empty counter reads as 0.
bool read_counter(const char *func, const char *pattern, const char *ifname,
                  const CounterLabels &labels, uint32_t *out) {
    char path[kPathSize];
    if (!counter_path(path, pattern, ifname)) {
        NKW_LOGE_IN(func, kTag, "[TRAFFIC]: interface name too long: %s \n", ifname);
        return false;
    }
    NKW_LOGI_IN(func, kTag, "[TRAFFIC]: %s: %s \n", labels.path, path);
    int fd = open(nkw::host::Path(path).c_str(), O_RDONLY);
    if (fd < 0) {
        NKW_LOGE_IN(func, kTag, "[TRAFFIC]:%s failed \n", labels.open);
        return false;
    }
    char value[kValueSize];
    std::memset(value, 0, sizeof value);
    if (read(fd, value, kValueRead) == -1) {
        NKW_LOGE_IN(func, kTag, "[TRAFFIC]:read fd failed \n");
        close(fd);
        return false;
    }
    *out = static_cast<uint32_t>(nkw_pal_atoi(value));
    close(fd);
    return true;
}

}  // namespace

extern "C" int32_t nkw_pal_get_traffic_by_interface_name(const char *ifname, uint32_t *tx_bytes,
                                                         uint32_t *rx_bytes) {
    NKW_LOGD(kTag, "[TRAFFIC]: entering~ \n");
    if (ifname == nullptr || tx_bytes == nullptr || rx_bytes == nullptr) {
        NKW_LOGE(kTag, "[TRAFFIC]: invalid param! \n");
        return NKW_PAL_FAIL;
    }
    if (!read_counter(__func__, nkw::host::paths::kRxBytesPattern, ifname, kRxLabels, rx_bytes) ||
        !read_counter(__func__, nkw::host::paths::kTxBytesPattern, ifname, kTxLabels, tx_bytes)) {
        return NKW_PAL_FAIL;
    }
    NKW_LOGD(kTag, "[TRAFFIC]: get success, get tx:%d, rx:%d \n", *tx_bytes, *rx_bytes);
    return NKW_PAL_OK;
}
