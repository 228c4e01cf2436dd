// The serving-cell walk shared by the cell id and area code queries.
#pragma once

#include <cstdint>

#include "modem/mipc.h"

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

}  // namespace nkw::info
