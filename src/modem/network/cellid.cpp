// Serving cell id and its tracking or location area code, from the cell list.
#include <cinttypes>

#include "diag/log.h"
#include "modem/info_tag.h"
#include "modem/network/cell_walk.h"
#include "nkw_pal/info.h"
#include "os/heap_record.h"

using namespace nkw::info;

namespace {

constexpr uint8_t kListCapacity = MIPC_NW_CELL_LIST_MAX;

}  // namespace

extern "C" {

int32_t nkw_pal_get_cellid(uint64_t *cellid) {
    if (cellid == nullptr) {
        NKW_LOGE(kTag, "get cellid failed for param \n");
        return NKW_PAL_INVALID_ARG;
    }
    auto record = nkw::HeapRecord<mipc_nw_cell_info_struct>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "cell_info mem malloc failed \n");
        return NKW_PAL_FAIL;
    }
    record->cell_list_count = kListCapacity;
    mipc_result_enum result = mipc_nw_cell_info_get_sync(MIPC_PS_ALL, record.get());
    if (result != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "get physically id failed for result: %d \n", result);
        return NKW_PAL_FAIL;
    }
    if (record->result_code != 0) {
        NKW_LOGE(kTag, "operater success, but excute result: %d \n", record->result_code);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "listcount: %d \n", record->cell_list_count);
    // GSM and UMTS entries are judged by the first entry's type, on purpose.
    const uint32_t first_type = record->cell_list[0].cell_type;
    uint32_t count = walkable(*record);
    for (uint32_t i = 0; i < count; ++i) {
        const mipc_nw_cell_struct &cell = record->cell_list[i];
        NKW_LOGI(kTag, "type: cell_info->cell_list[%d].cell_type: %d \n", i, cell.cell_type);
        if (cell.cell_type == kCellTypeLte && valid_identity(cell.lte_cell_id)) {
            *cellid = cell.lte_cell_id;
            NKW_LOGI(kTag, "get cellid, TYPE_LTE, cellid:%" PRIu64 " \n", *cellid);
        } else if (cell.cell_type == kCellTypeNr && valid_identity(cell.nr_cell_id)) {
            *cellid = cell.nr_cell_id;
            NKW_LOGI(kTag, "get cellid, TYPE_NR, cellid:%" PRIu64 " \n", *cellid);
        } else if (first_type == kCellTypeGsm && valid_identity(cell.gw_cell_id)) {
            *cellid = cell.gw_cell_id;
            NKW_LOGI(kTag, "get cellid, TYPE_GSM, cellid:%" PRIu64 " \n", *cellid);
        } else if (first_type == kCellTypeUmts && valid_identity(cell.gw_cell_id)) {
            *cellid = cell.gw_cell_id;
            NKW_LOGI(kTag, "get cellid, TYPE_UMTS, cellid:%" PRIu64 " \n", *cellid);
        } else {
            continue;
        }
        NKW_LOGI(kTag, "operate success, get result: %d, get_cellid: %" PRIu64 " \n", result,
                 *cellid);
        return NKW_PAL_OK;
    }
    NKW_LOGE(kTag, "get physically id failed for result: %d \n", 0);
    return NKW_PAL_FAIL;
}

int32_t nkw_pal_get_lac(uint32_t *lac) {
    if (lac == nullptr) {
        NKW_LOGE(kTag, "get lac failed for param \n");
        return NKW_PAL_FAIL;
    }
    auto record = nkw::HeapRecord<mipc_nw_cell_info_struct>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "cell_info mem malloc failed \n");
        return NKW_PAL_FAIL;
    }
    record->cell_list_count = kListCapacity;
    mipc_result_enum result = mipc_nw_cell_info_get_sync(MIPC_PS_ALL, record.get());
    if (result != MIPC_RESULT_SUCCESS) {
        NKW_LOGE(kTag, "get  physically id failed for result:%d \n", result);
        return NKW_PAL_FAIL;
    }
    if (record->result_code != 0) {
        NKW_LOGE(kTag, "operater success, but excute result:%d \n", record->result_code);
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "listcount:%d \n", record->cell_list_count);
    const uint32_t first_type = record->cell_list[0].cell_type;
    uint32_t count = walkable(*record);
    for (uint32_t i = 0; i < count; ++i) {
        const mipc_nw_cell_struct &cell = record->cell_list[i];
        NKW_LOGI(kTag, "type: cell_info->cell_list[%d].cell_type: %d \n", i, cell.cell_type);
        if (cell.cell_type == kCellTypeLte && valid_identity(cell.lte_tac)) {
            *lac = cell.lte_tac;
            NKW_LOGI(kTag, "get lac, TYPE_LTE, lac:%d \n", *lac);
        } else if (cell.cell_type == kCellTypeNr && valid_identity(cell.nr_tac)) {
            *lac = cell.nr_tac;
            NKW_LOGI(kTag, "get lac, TYPE_NR, lac:%d \n", *lac);
        } else if (first_type == kCellTypeGsm && valid_identity(cell.gw_lac)) {
            *lac = cell.gw_lac;
            NKW_LOGI(kTag, "get lac, TYPE_GSM, lac:%d \n", *lac);
        } else if (first_type == kCellTypeUmts && valid_identity(cell.gw_lac)) {
            *lac = cell.gw_lac;
            NKW_LOGI(kTag, "get lac, TYPE_UMTS, lac:%d \n", *lac);
        } else {
            continue;
        }
        NKW_LOGI(kTag, "operate success,get result:%d, get_lac:%d \n", result, *lac);
        return NKW_PAL_OK;
    }
    NKW_LOGE(kTag, "get  physically id failed for result:%d \n", 0);
    return NKW_PAL_FAIL;
}

}  // extern "C"
