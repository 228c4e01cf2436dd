// AGPS modes: the adaptor's AGPS switch and the EPO setting together.
#include "diag/log.h"
#include "location/agps/agps.h"
#include "nkw_pal/location.h"

namespace {

struct Mode {
    unsigned char agps_enable;
    int epo_value;
};
constexpr Mode kModes[] = {
    {0, 0}, {1, 0}, {0, 2}, {0, 3}, {0, 1}, {1, 2}, {1, 1},
};
constexpr unsigned int kModeCount = sizeof kModes / sizeof kModes[0];

}  // namespace

extern "C" {

int nkw_pal_agps_config(unsigned int mode) {
    if (mode >= kModeCount) {
        NKW_LOGE("AGPS", "agpsCFGmode parameter error \n");
        return NKW_PAL_FAIL;
    }
    // Both steps always run, so the files follow the mode even when the
    // adaptor does not answer.
    const int enabled = nkw_pal_agps_enable(kModes[mode].agps_enable);
    const int configured = nkw_pal_agps_epo_qepo_config(kModes[mode].epo_value);
    if (enabled == NKW_PAL_FAIL || configured == NKW_PAL_FAIL) {
        NKW_LOGE("AGPS", " nkw_pal_agps_config fail \n");
        return NKW_PAL_FAIL;
    }
    NKW_LOGI("AGPS", " nkw_pal_agps_config success \n");
    return NKW_PAL_OK;
}

}  // extern "C"
