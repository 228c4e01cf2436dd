#include "modem/answer_check.h"

#include <cstring>

#include "diag/log.h"
#include "modem/info_tag.h"

namespace nkw::info {

bool argument_given(const void *argument, const char *func, const char *what) {
    if (argument != nullptr) return true;
    NKW_LOGE_IN(func, kTag, "get %s failed for param \n", what);
    return false;
}

bool answer_ok(const char *func, const char *what, mipc_result_enum result, uint32_t result_code,
               Spacing spacing) {
    const bool tight = spacing == Spacing::kTight;
    if (result != MIPC_RESULT_SUCCESS) {
        if (tight) {
            NKW_LOGE_IN(func, kTag, "get %s failed for result:%d \n", what, result);
        } else {
            NKW_LOGE_IN(func, kTag, "get %s failed for result: %d \n", what, result);
        }
        return false;
    }
    if (result_code != 0) {
        if (tight) {
            NKW_LOGE_IN(func, kTag, "operater success, but excute result:%d \n", result_code);
        } else {
            NKW_LOGE_IN(func, kTag, "operater success, but excute result: %d \n", result_code);
        }
        return false;
    }
    return true;
}

bool call_ok(const char *func, const char *call, mipc_result_enum result, uint32_t result_code,
             CodeLabel label) {
    if (result != MIPC_RESULT_SUCCESS) {
        NKW_LOGE_IN(func, kTag, "%s failed, api_result=%d. \n", call, result);
        return false;
    }
    if (result_code != 0) {
        if (label == CodeLabel::kResultCode) {
            NKW_LOGE_IN(func, kTag, "%s result_code=%d. \n", call, result_code);
        } else {
            NKW_LOGE_IN(func, kTag, "%s result=%d. \n", call, result_code);
        }
        return false;
    }
    return true;
}

bool at_answer(const char *func, const char *what, const char *command,
               mipc_sys_at_struct &record) {
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_sys_at_sync(MIPC_PS_ALL, &record, command);
    return answer_ok(func, what, result, record.result_code);
}

}  // namespace nkw::info
