// Data call release. The host side (route, MTU, resolver file) stays.
#include <cstring>

#include "connect/tag.h"
#include "diag/log.h"
#include "modem/mipc.h"
#include "nkw_pal/connect.h"

using nkw::connect::kTag;

extern "C" int32_t nkw_pal_data_conn_release(const uint8_t *data_call_id) {
    if (data_call_id == nullptr) {
        NKW_LOGE(kTag, "[platform] data connection_release failed for param \n");
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "[platform] entering data call deact: %d \n", *data_call_id);
    mipc_data_call_deact_struct record;
    std::memset(&record, 0, sizeof record);
    int32_t result = mipc_data_call_deact_sync(MIPC_PS_ALL, &record, *data_call_id);
    if (result != 0) {
        NKW_LOGE(kTag, "[platform] data call deact failed for result:%d \n", result);
        return NKW_PAL_FAIL;
    }
    if (record.result_code != 0) {
        NKW_LOGE(kTag, "[platform] operater success, but excute result:%d \n", record.result_code);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "[platform] tolv data call deact success, id:%d \n", *data_call_id);
    return NKW_PAL_OK;
}
