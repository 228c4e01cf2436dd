// Level of the SIM card-detect pin, from the platform's GPIO listing.
#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "host/device_identity.h"
#include "host/host.h"
#include "modem/info_tag.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;

namespace {

constexpr char kPinPrefix[] = "083:";  // pin 83 is the card-detect pin
constexpr size_t kLineBuffer = 50;
constexpr size_t kLevelIndex = 7;

}  // namespace

extern "C" int32_t nkw_pal_get_sim_cd_state(void) {
    nkw::host::Path node(nkw::host::paths::kPinctrlGpio);
    FILE *file = std::fopen(node.c_str(), "r");
    if (file == nullptr) {
        NKW_LOGE(kTag, "open mt_gpio node failed, node not exist\n \n");
        return NKW_PAL_SIM_CD_UNKNOWN;
    }
    char line[kLineBuffer];
    bool found = false;
    while (!found) {
        std::memset(line, 0, sizeof line);
        if (std::fgets(line, sizeof line, file) == nullptr) break;
        found = std::strncmp(line, kPinPrefix, sizeof kPinPrefix - 1) == 0;
    }
    std::fclose(file);
    NKW_LOGI(kTag, "sim_cd pin state: %s\n \n", line);
    // The buffer is zeroed before each read, so a short line reads as '\0' here.
    if (found && line[kLevelIndex] == '1') {
        NKW_LOGI(kTag, "sim_cd pin state is high level\n \n");
        return NKW_PAL_SIM_CD_HIGH;
    }
    if (found && line[kLevelIndex] == '0') {
        NKW_LOGI(kTag, "sim_cd pin state is low level\n \n");
        return NKW_PAL_SIM_CD_LOW;
    }
    NKW_LOGE(kTag, "[platform]: sim_cd pin state read failed\n \n");
    return NKW_PAL_SIM_CD_UNKNOWN;
}
