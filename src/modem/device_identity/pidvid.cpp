// PCI subsystem vendor and device ids, from NV item 32, as one hex text.
#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "nkw_pal/info.h"
#include "nkw_pal/storage.h"

using nkw::info::kTag;

namespace {

constexpr unsigned int kPidVidItem = 32;

// The item's layout: device id first, then vendor id.
struct SubsystemIds {
    uint16_t ssdid;
    uint16_t ssvid;
};
static_assert(sizeof(SubsystemIds) == 4, "NV item 32 is 4 bytes");

constexpr size_t kTextSize = 9;  // two 16-bit ids in hex and the NUL

}  // namespace

extern "C" int32_t nkw_pal_get_pidvid(char *pidvid) {
    if (!nkw::info::argument_given(pidvid, __func__, "pidvid")) return NKW_PAL_INVALID_ARG;
    SubsystemIds ids{};
    int ret = nkw_pal_nvm_read(kPidVidItem, reinterpret_cast<unsigned char *>(&ids), sizeof ids);
    if (ret != 0) {
        NKW_LOGI(kTag, "get mcf ssvid ssdid failed, ret: %d \n", ret);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "get mcf ssvid: 0x%x, ssdid: 0x%x \n", ids.ssvid, ids.ssdid);
    char text[kTextSize];
    std::snprintf(text, sizeof text, "%x%x", ids.ssvid, ids.ssdid);
    NKW_LOGI(kTag, "get pidvid: %s \n", text);
    std::memcpy(pidvid, text, std::strlen(text) + 1);
    return NKW_PAL_OK;
}
