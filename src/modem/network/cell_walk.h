// The serving-cell walk shared by the cell id and area code queries.
#pragma once

#include <cstdint>

#include "modem/answer_check.h"
#include "modem/mipc.h"
#include "os/heap_record.h"

namespace nkw::info {

inline constexpr uint32_t kCellTypeGsm = MIPC_NW_CELL_TYPE_GSM;
inline constexpr uint32_t kCellTypeLte = MIPC_NW_CELL_TYPE_LTE;
inline constexpr uint32_t kCellTypeUmts = MIPC_NW_CELL_TYPE_UMTS;
inline constexpr uint32_t kCellTypeNr = MIPC_NW_CELL_TYPE_NR;

// Neither 0 nor the all-ones 32-bit "unknown" (also for the 64-bit NR id).
inline bool valid_identity(uint64_t value) {
    return value != 0 && value != 0xFFFFFFFFu;
}

// The entries a walk may read: the modem's count, within the record.
inline uint32_t walkable(const mipc_nw_cell_info_struct &record) {
    return record.cell_list_count < MIPC_NW_CELL_LIST_MAX ? record.cell_list_count
                                                          : MIPC_NW_CELL_LIST_MAX;
}

// The modem's cell list, judged and its count logged as `func`; empty (after
// the log line) when it could not be had.
HeapRecord<mipc_nw_cell_info_struct> fetch_cells(const char *func, const char *what,
                                                 Spacing spacing);

// Which identity of an entry a walk looks for.
enum class CellIdentity : uint8_t { kCellId, kAreaCode };

// The first entry with a valid identity: its value and its radio, or kNone
// when no entry has one. (Each query logs its own line per radio.)
enum class ServingRadio : uint8_t { kNone, kLte, kNr, kGsm, kUmts };
struct ServingIdentity {
    uint64_t value;
    ServingRadio radio;
};
ServingIdentity serving_identity(const char *func, const mipc_nw_cell_info_struct &record,
                                 CellIdentity which);

}  // namespace nkw::info
