// The EID, read with AT+GTESIMID=1 straight from the modem library.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;

namespace {

constexpr size_t kTextBuffer = 101;  // a longer answer is refused
constexpr size_t kEidLen = 32;

}  // namespace

extern "C" int32_t nkw_pal_get_eid(char *eid) {
    char response[kTextBuffer];
    char shown[kTextBuffer];
    std::memset(response, 0, sizeof response);
    std::memset(shown, 0, sizeof shown);
    if (!nkw::info::argument_given(eid, __func__, "eid")) return NKW_PAL_INVALID_ARG;
    mipc_sys_at_struct record;
    if (!nkw::info::at_answer(__func__, "eid", "AT+GTESIMID=1", record)) return NKW_PAL_FAIL;
    size_t length = strnlen(record.atcmd_res_ptr, sizeof record.atcmd_res_ptr);
    if (length > kTextBuffer - 1) {
        NKW_LOGE(kTag, "get eid failed for EID is null \n");
        return NKW_PAL_FAIL;
    }
    std::memcpy(response, record.atcmd_res_ptr, length);
    const char *quote = std::strchr(response, '"');
    if (quote == nullptr) {
        NKW_LOGE(kTag, "get eid failed for result: %d \n", 0);
        return NKW_PAL_FAIL;
    }
    // The closing mark is not looked for: the EID has a fixed length. A mark
    // near the end of the buffer leaves fewer bytes; the rest are written as
    // the zeroed buffer's zeros, never read from past it.
    const char *start = quote + 1;
    size_t available = static_cast<size_t>(response + sizeof response - start);
    size_t taken = available < kEidLen ? available : kEidLen;
    std::memcpy(eid, start, taken);
    std::memset(eid + taken, 0, kEidLen - taken);
    std::memcpy(shown, start, taken);
    NKW_LOGI(kTag, "operater success, eid: %s \n", shown);
    return NKW_PAL_OK;
}
