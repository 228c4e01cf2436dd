// NVRAM model of the simulated modem: items by LID (record 1), holding the
// bytes last written. A fresh model holds one factory item, the PCI subsystem
// ids (LID 0xE111: 01 77 4B 1D). Faults by return value and result code go through
// fail_next() of mipc_sim.h under the call's name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mipc_sim {

// Result code of a read of a LID that holds no item, or of another record.
inline constexpr uint32_t kNvramNoItem = 0x1001;

// Sets (replaces) the bytes of item `lid`.
void set_nvram_item(uint32_t lid, const std::vector<uint8_t> &bytes);
// The bytes of item `lid`, if it exists.
std::optional<std::vector<uint8_t>> nvram_item(uint32_t lid);

// One NVRAM request as the modem received it.
struct NvramRequest {
    std::string function;  // mipc_sys_nvram_{read,write}_{sync,async}
    int ps_id;
    uint32_t lid;
    uint16_t record_idx;
    uint16_t size;
};
std::vector<NvramRequest> nvram_requests();

}  // namespace mipc_sim
