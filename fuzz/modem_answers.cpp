// Arbitrary modem answers through the simulated modem into the response
// parsers of the SIM, network and device queries: the EID, chip type,
// firmware version, signal and serial-number answers, and raw cell-list
// records. The first byte picks the parser; outputs are heap blocks of
// exactly the size the caller promises, so a write past them is caught.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "mipc_sim_network.h"
#include "nkw_pal.h"

extern "C" int LLVMFuzzerInitialize(int *, char **[]) {
    nkw_pal_log_set_level(0);
    return 0;
}

namespace {

enum Parser { kEid, kChipType, kFirmware, kRssi, kManufactureDate, kCellList, kParsers };

// Calls `query` with an exact-size heap block.
template <typename Query>
int with_block(size_t size, Query query) {
    auto *block = static_cast<char *>(std::calloc(size, 1));
    int status = query(block);
    std::free(block);
    return status;
}

void cell_list(const uint8_t *data, size_t size) {
    // One extra entry beyond the list's capacity, and any reported count.
    std::vector<mipc_nw_cell_struct> cells((size - 1) / sizeof(mipc_nw_cell_struct) % 12);
    if (!cells.empty()) std::memcpy(cells.data(), data + 1, cells.size() * sizeof cells[0]);
    mipc_sim::set_cells(cells, data[0]);
    uint64_t cellid = 0;
    uint32_t lac = 0;
    nkw_pal_get_cellid(&cellid);
    nkw_pal_get_lac(&lac);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2 || size > 4096) return 0;
    mipc_sim::clear_journal();  // the journal would grow with every run
    const auto parser = static_cast<Parser>(data[0] % kParsers);
    const std::string answer(reinterpret_cast<const char *>(data + 2), size - 2);
    switch (parser) {
        case kEid:
            mipc_sim::set_at_reply("AT+GTESIMID", 0, answer);
            with_block(32, nkw_pal_get_eid);
            break;
        case kChipType:
            mipc_sim::set_at_reply("ATI5", 0, answer);
            with_block(18, nkw_pal_get_chip_type);  // at most 18 between the marks
            break;
        case kFirmware:
            mipc_sim::set_at_reply("ATI8", 0, answer);
            with_block(62, nkw_pal_get_firmware_version);
            break;
        case kRssi: {
            mipc_sim::set_at_reply("AT+ECSQ", 0, answer);
            mipc_sim::set_data_class(data[1] & 1 ? 0x80 : 0x20);
            int32_t rssi = 0;
            nkw_pal_get_rssi(&rssi);
            break;
        }
        case kManufactureDate: {
            mipc_sim::set_at_reply("AT+CFSN", 0, answer);
            with_block(9, nkw_pal_get_manufacture_date);
            break;
        }
        case kCellList:
        case kParsers:
            cell_list(data + 1, size - 1);
            break;
    }
    return 0;
}
