// Serving cell id and its tracking or location area code, from the cell list.

#include "diag/log.h"
#include "modem/info_tag.h"
#include "modem/network/cell_walk.h"
#include "nkw_pal/info.h"

using namespace nkw::info;

extern "C" {

int32_t nkw_pal_get_cellid(uint64_t *cellid) {
    if (!argument_given(cellid, __func__, "cellid")) return NKW_PAL_INVALID_ARG;
    auto record = fetch_cells(__func__, "physically id", Spacing::kSpaced);
    if (!record) return NKW_PAL_FAIL;
    ServingIdentity serving = serving_identity(__func__, *record, CellIdentity::kCellId);
    const unsigned long long id = serving.value;
    switch (serving.radio) {
        case ServingRadio::kLte:
            NKW_LOGI(kTag, "get cellid, TYPE_LTE, cellid:%llu \n", id);
            break;
        case ServingRadio::kNr:
            NKW_LOGI(kTag, "get cellid, TYPE_NR, cellid:%llu \n", id);
            break;
        case ServingRadio::kGsm:
            NKW_LOGI(kTag, "get cellid, TYPE_GSM, cellid:%llu \n", id);
            break;
        case ServingRadio::kUmts:
            NKW_LOGI(kTag, "get cellid, TYPE_UMTS, cellid:%llu \n", id);
            break;
        case ServingRadio::kNone:
            NKW_LOGE(kTag, "get physically id failed for result: %d \n", 0);
            return NKW_PAL_FAIL;
    }
    *cellid = serving.value;
    NKW_LOGI(kTag, "operate success, get result: %d, get_cellid: %llu \n", MIPC_RESULT_SUCCESS, id);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_lac(uint32_t *lac) {
    if (!argument_given(lac, __func__, "lac")) return NKW_PAL_FAIL;
    // The double space is what this query has always logged.
    auto record = fetch_cells(__func__, " physically id", Spacing::kTight);
    if (!record) return NKW_PAL_FAIL;
    ServingIdentity serving = serving_identity(__func__, *record, CellIdentity::kAreaCode);
    const uint32_t area = static_cast<uint32_t>(serving.value);
    switch (serving.radio) {
        case ServingRadio::kLte:
            NKW_LOGI(kTag, "get lac, TYPE_LTE, lac:%d \n", area);
            break;
        case ServingRadio::kNr:
            NKW_LOGI(kTag, "get lac, TYPE_NR, lac:%d \n", area);
            break;
        case ServingRadio::kGsm:
            NKW_LOGI(kTag, "get lac, TYPE_GSM, lac:%d \n", area);
            break;
        case ServingRadio::kUmts:
            NKW_LOGI(kTag, "get lac, TYPE_UMTS, lac:%d \n", area);
            break;
        case ServingRadio::kNone:
            NKW_LOGE(kTag, "get  physically id failed for result:%d \n", 0);
            return NKW_PAL_FAIL;
    }
    *lac = area;
    NKW_LOGI(kTag, "operate success,get result:%d, get_lac:%d \n", MIPC_RESULT_SUCCESS, *lac);
    return NKW_PAL_OK;
}

}  // extern "C"
