// The EPO/QEPO setting in the GNSS service's configuration files.
#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "diag/log.h"
#include "host/gnss.h"
#include "host/host.h"
#include "location/agps/agps.h"
#include "nkw_pal/common.h"

namespace {

struct EpoLines {
    const char *mnl_prop;
    const char *gps_conf;
};
constexpr EpoLines kEpoLines[] = {
    {"EPO_enabled=0", "EPO_ENABLE=0"},
    {"EPO_enabled=1", "EPO_ENABLE=1"},
    {"EPO_enabled=2", "EPO_ENABLE=1"},
    {"EPO_enabled=3", "EPO_ENABLE=0"},
};
// New files readable by the GNSS service, writable by the owner only.
constexpr mode_t kFileMode = 0644;

// Opens, truncates and writes `text` without a line end. The descriptor is
// left open for the caller to close once both files are written.
int write_setting(const char *fixed_path, const char *text, int *fd) {
    nkw::host::Path path(fixed_path);
    *fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, kFileMode);
    if (*fd < 0) {
        NKW_LOGE("AGPS", "open %s error \n", fixed_path);
        return NKW_PAL_FAIL;
    }
    const size_t length = std::strlen(text);
    if (write(*fd, text, length) != static_cast<ssize_t>(length)) return NKW_PAL_FAIL;
    return NKW_PAL_OK;
}

}  // namespace

int nkw_pal_write_file(int value) {
    const EpoLines &lines = kEpoLines[value >= 0 && value <= 3 ? value : 3];
    int mnl_fd = -1;
    int gps_fd = -1;
    int result = write_setting(nkw::host::gnss::paths::kMnlProp, lines.mnl_prop, &mnl_fd);
    if (result == NKW_PAL_OK) {
        result = write_setting(nkw::host::gnss::paths::kGpsConf, lines.gps_conf, &gps_fd);
    }
    // Whatever was opened is closed, on failure too.
    if (gps_fd >= 0) close(gps_fd);
    if (mnl_fd >= 0) close(mnl_fd);
    return result;
}

int nkw_pal_agps_epo_qepo_config(int value) {
    const int setting = value == 0 || value == 1 || value == 2 ? value : 3;
    if (nkw_pal_write_file(setting) == NKW_PAL_FAIL) {
        NKW_LOGE("AGPS", "write to %s error. \n", nkw::host::gnss::paths::kMnlProp);
        NKW_LOGE("AGPS", "epo qepo config fail.\n \n");
        return NKW_PAL_FAIL;
    }
    NKW_LOGI("AGPS",
             "epo qepo config success. disable_disable:0,enable_enable:1 enable_disable:2 "
             "disable_enable. current:%d\n \n",
             value);
    return NKW_PAL_OK;
}
