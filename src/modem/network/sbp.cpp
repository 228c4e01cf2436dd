// The modem's carrier configuration (SBP) id, through a raw request.
#include <cstring>

#include "diag/log.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;

namespace {

constexpr uint16_t kSbpRequest = 77;
constexpr uint16_t kResultTlv = 0;
constexpr uint16_t kSbpIdTlv = 257;

// A 32-bit TLV value; false when absent or too short.
bool read_u32(mipc_msg_t *msg, uint16_t type, uint32_t *value) {
    uint16_t length = 0;
    const void *raw = mipc_msg_get_val_ptr(msg, type, &length);
    if (raw == nullptr || length < sizeof *value) return false;
    std::memcpy(value, raw, sizeof *value);
    return true;
}

}  // namespace

extern "C" uint32_t nkw_pal_get_sbp_id(void) {
    // Neither message is released afterwards, and a request that could not be
    // built is sent as it is: daemons have always seen this exact sequence.
    mipc_msg_t *request = mipc_msg_init(kSbpRequest, MIPC_PS_ALL);
    mipc_msg_t *confirmation = mipc_msg_sync_timeout(request);
    uint32_t result = 0;
    if (confirmation == nullptr || !read_u32(confirmation, kResultTlv, &result) || result != 0) {
        return 0;
    }
    uint32_t sbp_id = 0;
    if (!read_u32(confirmation, kSbpIdTlv, &sbp_id)) sbp_id = 0;
    NKW_LOGI(kTag, "current sbp id :%d \n", sbp_id);
    return sbp_id;
}
