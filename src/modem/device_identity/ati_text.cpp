// Chip type and firmware version: the quoted text of the ATI5 and ATI8 answers.
#include <cstring>

#include "diag/log.h"
#include "modem/device_identity/quoted_answer.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;
using nkw::info::take_window;

namespace {

// A name that does not close within these first bytes is a failure.
constexpr size_t kChipWindow = 20;
constexpr size_t kVersionWindow = 64;

}  // namespace

extern "C" {

int32_t nkw_pal_get_chip_type(char *chip_type) {
    if (chip_type == nullptr) {
        NKW_LOGE(kTag, "get chip type failed for param \n");
        return NKW_PAL_INVALID_ARG;
    }
    mipc_sys_at_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_sys_at_sync(MIPC_PS_ALL, &record, "ATI5\r\n");
    if (result != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "get chip type failed for result: %d \n", result);
        return NKW_PAL_FAIL;
    }
    if (record.result_code != 0) {
        NKW_LOGE(kTag, "operater success, but excute result: %d \n", record.result_code);
        return NKW_PAL_FAIL;
    }
    char local[kChipWindow + 1];
    take_window(record.atcmd_res_ptr, sizeof record.atcmd_res_ptr, local, kChipWindow);
    const char *p1 = std::strchr(local, '"');
    if (p1 != nullptr) NKW_LOGI(kTag, "p1: %s \n", p1);
    const char *p2 = p1 != nullptr ? std::strchr(p1 + 1, '"') : nullptr;
    if (p2 != nullptr) NKW_LOGI(kTag, "p2: %s \n", p2);
    if (p1 == nullptr || p2 == nullptr) {
        NKW_LOGE(kTag, "get chip type failed for result: %d \n", 0);
        return NKW_PAL_FAIL;
    }
    size_t length = static_cast<size_t>(p2 - p1 - 1);
    std::memcpy(chip_type, p1 + 1, length);
    NKW_LOGI(kTag, "get chip type: %.*s \n", static_cast<int>(length), p1 + 1);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_firmware_version(char *version) {
    if (version == nullptr) {
        NKW_LOGE(kTag, "get firmware version failed for param \n");
        return NKW_PAL_INVALID_ARG;
    }
    mipc_sys_at_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_sys_at_sync(MIPC_PS_ALL, &record, "ATI8\r\n");
    if (result != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "get firmware version failed for result: %d \n", result);
        return NKW_PAL_FAIL;
    }
    if (record.result_code != 0) {
        NKW_LOGE(kTag, "operater success, but excute result: %d \n", record.result_code);
        return NKW_PAL_FAIL;
    }
    char local[kVersionWindow + 1];
    take_window(record.atcmd_res_ptr, sizeof record.atcmd_res_ptr, local, kVersionWindow);
    const char *p1 = std::strchr(local, '"');
    if (p1 != nullptr) NKW_LOGI(kTag, "p1: %s \n", p1);
    const char *p2 = p1 != nullptr ? std::strchr(p1 + 1, '"') : nullptr;
    if (p2 != nullptr) NKW_LOGI(kTag, "p2: %s \n", p2);
    if (p1 == nullptr || p2 == nullptr) {
        NKW_LOGE(kTag, "get firmware version failed for result: %d \n", 0);
        return NKW_PAL_FAIL;
    }
    size_t length = static_cast<size_t>(p2 - p1 - 1);
    std::memcpy(version, p1 + 1, length);
    NKW_LOGI(kTag, "get firmware version: %.*s \n", static_cast<int>(length), p1 + 1);
    return NKW_PAL_OK;
}

}  // extern "C"
