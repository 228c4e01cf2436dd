// Offline log capture: configuration from NV item 34, the file set, and the
// periodic timer that dumps the system log into the next file.
#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "diag/offline/offline_log.h"
#include "host/host.h"
#include "host/offline_log.h"
#include "nkw_pal/diag.h"
#include "nkw_pal/os.h"
#include "nkw_pal/storage.h"

namespace paths = nkw::host::offline_log;
using nkw::offline_log::kTag;

namespace {

constexpr unsigned int kConfigItem = 34;
constexpr uint32_t kMillisPerMinute = 60000;
constexpr size_t kCommandMax = 40;

struct Config {
    uint8_t enabled;
    uint8_t interval_minutes;
};
static_assert(sizeof(Config) == 2, "NV item 34 holds two bytes");

// The timer lives as long as the process; there is no stop.
timer_info *g_timer = nullptr;

void on_tick(void *) {
    nkw_pal_offline_log_timeout_callback();
}

int32_t first_start() {
    if (nkw_pal_offline_log_startup() != 0) {
        NKW_LOGE(kTag, "offline_log first startup failed! \n");
        return -1;
    }
    return 0;
}

}  // namespace

extern "C" {

int32_t nkw_pal_offline_log_init(void) {
    Config config{};
    const int ret =
        nkw_pal_nvm_read(kConfigItem, reinterpret_cast<unsigned char *>(&config), sizeof config);
    if (ret != 0) {
        NKW_LOGE(kTag, "offline_log modem nv read failed, ret = %d \n", ret);
        return -1;
    }
    if (config.enabled == 0) {
        nkw::offline_log::clear();
        return 0;
    }

    nkw::host::Path record(paths::kRecord);
    struct stat info {};
    if (stat(record.c_str(), &info) == 0) {
        if (nkw::offline_log::restore() != 0) {
            NKW_LOGE(kTag, "offline_log reboot failed, clear all log file \n");
            nkw::offline_log::clear();
            if (first_start() != 0) return -1;
        }
    } else if (first_start() != 0) {
        return -1;
    }

    int status = nkw_pal_timer_create(on_tick, nullptr, "offline_log_timer", &g_timer);
    if (status != 0) {
        NKW_LOGE(kTag, "offline_log timer create failed, ret = %d \n", status);
        return -1;
    }
    status = nkw_pal_timer_start(g_timer, config.interval_minutes * kMillisPerMinute, 1);
    if (status != 0) {
        NKW_LOGE(kTag, "offline_log timer start failed, ret = %d \n", status);
        return -1;
    }
    NKW_LOGI(kTag, "offline_log init success! \n");
    return 0;
}

void nkw_pal_offline_log_timeout_callback(void) {
    uint8_t next = static_cast<uint8_t>(nkw::offline_log::g_current.load() + 1);
    if (next > nkw::offline_log::kFiles) next = 1;
    nkw::offline_log::g_current.store(next);

    nkw::host::Path base(paths::kBase);
    char command[kCommandMax + nkw::host::kPathMax] = {};
    std::snprintf(command, kCommandMax + nkw::offline_log::path_growth(), "logread > %s%d.log",
                  base.c_str(), next);
    // Results are not checked: the next tick tries again.
    nkw::host::run_shell(command);
    nkw_pal_offline_log_record(nkw::offline_log::g_current.load());
}

}  // extern "C"
