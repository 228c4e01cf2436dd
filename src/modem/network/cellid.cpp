// Serving cell id and its tracking or location area code, from the cell list.
#include <cinttypes>

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
    if (serving.type == nullptr) {
        NKW_LOGE(kTag, "get physically id failed for result: %d \n", 0);
        return NKW_PAL_FAIL;
    }
    *cellid = serving.value;
    NKW_LOGI(kTag, "get cellid, TYPE_%s, cellid:%" PRIu64 " \n", serving.type, *cellid);
    NKW_LOGI(kTag, "operate success, get result: %d, get_cellid: %" PRIu64 " \n",
             MIPC_RESULT_SUCCESS, *cellid);
    return NKW_PAL_OK;
}

int32_t nkw_pal_get_lac(uint32_t *lac) {
    if (!argument_given(lac, __func__, "lac")) return NKW_PAL_FAIL;
    // The double space is what this query has always logged.
    auto record = fetch_cells(__func__, " physically id", Spacing::kTight);
    if (!record) return NKW_PAL_FAIL;
    ServingIdentity serving = serving_identity(__func__, *record, CellIdentity::kAreaCode);
    if (serving.type == nullptr) {
        NKW_LOGE(kTag, "get  physically id failed for result:%d \n", 0);
        return NKW_PAL_FAIL;
    }
    *lac = static_cast<uint32_t>(serving.value);
    NKW_LOGI(kTag, "get lac, TYPE_%s, lac:%d \n", serving.type, *lac);
    NKW_LOGI(kTag, "operate success,get result:%d, get_lac:%d \n", MIPC_RESULT_SUCCESS, *lac);
    return NKW_PAL_OK;
}

}  // extern "C"
