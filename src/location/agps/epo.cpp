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

int open_setting(const char *fixed_path) {
    nkw::host::Path path(fixed_path);
    return open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, kFileMode);
}

// The text goes in without a line end.
bool write_setting(int fd, const char *text) {
    const size_t length = std::strlen(text);
    return write(fd, text, length) == static_cast<ssize_t>(length);
}

}  // namespace

int nkw_pal_write_file(int value) {
    const EpoLines &lines = kEpoLines[value >= 0 && value <= 3 ? value : 3];
    using nkw::host::gnss::paths::kGpsConf;
    using nkw::host::gnss::paths::kMnlProp;
    // A failure closes whatever was opened, so no descriptor is leaked.
    const int mnl_fd = open_setting(kMnlProp);
    if (mnl_fd < 0) {
        NKW_LOGE("AGPS", "open %s error \n", kMnlProp);
        return NKW_PAL_FAIL;
    }
    if (!write_setting(mnl_fd, lines.mnl_prop)) {
        close(mnl_fd);
        return NKW_PAL_FAIL;
    }
    const int gps_fd = open_setting(kGpsConf);
    if (gps_fd < 0) {
        NKW_LOGE("AGPS", "open %s error \n", kGpsConf);
        close(mnl_fd);
        return NKW_PAL_FAIL;
    }
    const bool written = write_setting(gps_fd, lines.gps_conf);
    close(gps_fd);
    close(mnl_fd);
    return written ? NKW_PAL_OK : NKW_PAL_FAIL;
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
