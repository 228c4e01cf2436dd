#include "modem/network/cell_walk.h"

#include "diag/log.h"
#include "modem/info_tag.h"

namespace nkw::info {

HeapRecord<mipc_nw_cell_info_struct> fetch_cells(const char *func, const char *what,
                                                 Spacing spacing) {
    // The allocation is logged, and freed, under the query's name.
    auto record = HeapRecord<mipc_nw_cell_info_struct>::allocate(sizeof(mipc_nw_cell_info_struct),
                                                                 true, func, __LINE__);
    if (!record) {
        NKW_LOGE_IN(func, kTag, "cell_info mem malloc failed \n");
        return record;
    }
    record->cell_list_count = MIPC_NW_CELL_LIST_MAX;
    mipc_result_enum result = mipc_nw_cell_info_get_sync(MIPC_PS_ALL, record.get());
    if (!answer_ok(func, what, result, record->result_code, spacing)) {
        record.reset();
        return record;
    }
    if (spacing == Spacing::kTight) {
        NKW_LOGI_IN(func, kTag, "listcount:%d \n", record->cell_list_count);
    } else {
        NKW_LOGI_IN(func, kTag, "listcount: %d \n", record->cell_list_count);
    }
    return record;
}

ServingIdentity serving_identity(const char *func, const mipc_nw_cell_info_struct &record,
                                 CellIdentity which) {
    const bool cell_id = which == CellIdentity::kCellId;
    // GSM and UMTS entries are judged by the first entry's type, on purpose.
    const uint32_t first_type = record.cell_list[0].cell_type;
    uint32_t count = walkable(record);
    for (uint32_t i = 0; i < count; ++i) {
        const mipc_nw_cell_struct &cell = record.cell_list[i];
        NKW_LOGI_IN(func, kTag, "type: cell_info->cell_list[%d].cell_type: %d \n", i,
                    cell.cell_type);
        const uint64_t lte = cell_id ? cell.lte_cell_id : cell.lte_tac;
        const uint64_t nr = cell_id ? cell.nr_cell_id : cell.nr_tac;
        const uint64_t gw = cell_id ? cell.gw_cell_id : cell.gw_lac;
        if (cell.cell_type == kCellTypeLte && valid_identity(lte)) return {lte, ServingRadio::kLte};
        if (cell.cell_type == kCellTypeNr && valid_identity(nr)) return {nr, ServingRadio::kNr};
        if (first_type == kCellTypeGsm && valid_identity(gw)) return {gw, ServingRadio::kGsm};
        if (first_type == kCellTypeUmts && valid_identity(gw)) return {gw, ServingRadio::kUmts};
    }
    return {0, ServingRadio::kNone};
}

}  // namespace nkw::info
