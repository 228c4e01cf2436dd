// The dual-IPC mode from the modem's configuration file.
#include <cstdio>
#include <cstring>

#include "device/control/control.h"
#include "diag/log.h"
#include "host/device_control.h"
#include "nkw_pal/codec.h"

namespace host = nkw::host::device_control;
using nkw::device::kTag;

namespace {

constexpr const char kKey[] = "dual_ipc_mode";
constexpr size_t kLineMax = 256;
constexpr int32_t kLowestMode = 1;
constexpr int32_t kHighestMode = 4;

// The key token is compared over its own length only, so an abbreviated key
// ("dual") still selects the line; configurations in the field rely on it.
bool names_the_mode(const char *key) {
    return std::strncmp(key, kKey, std::strlen(key)) == 0;
}

}  // namespace

extern "C" int32_t nkw_pal_get_dual_ipc_mode(void) {
    FILE *config = host::fopen(host::kDipcConfig, "r");
    if (config == nullptr) {
        NKW_LOGE(kTag, "dipc open config file failed, file not exist. \n");
        return NKW_PAL_IPC_MODE_UNKNOWN;
    }
    char line[kLineMax];
    while (std::fgets(line, sizeof line, config) != nullptr) {
        char *rest = nullptr;
        const char *key = strtok_r(line, ":", &rest);
        const char *value = strtok_r(nullptr, ":", &rest);
        if (key == nullptr || value == nullptr || !names_the_mode(key)) continue;
        std::fclose(config);
        const int32_t mode = nkw_pal_atoi(value);
        NKW_LOGI(kTag, "get_config_value success, dipc mode=%d \n", mode);
        return mode >= kLowestMode && mode <= kHighestMode ? mode : NKW_PAL_IPC_MODE_UNKNOWN;
    }
    std::fclose(config);
    NKW_LOGE(kTag, "get_dual_ipc_mode fail! \n");
    return NKW_PAL_IPC_MODE_UNKNOWN;
}
