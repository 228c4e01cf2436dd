// SAR model: the asynchronous table switch. The completion reports the mode
// and index now in force; a refused switch (result code fault) leaves the
// table as it was and reports it.
#include <cstring>

#include "mipc_sim_sar.h"
#include "model_support.h"

using namespace mipc_sim;

namespace {

SarTable &table() {
    static SarTable instance;
    return instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(core::state_lock());
    table() = SarTable{};
});

}  // namespace

extern "C" mipc_result_enum tolvaro_mipc_sys_sar_set_async(mipc_sim_ps_id_enum sim_ps_id,
                                                           mipc_sys_sar_set_cb cb,
                                                           void *cb_priv_ptr, uint32_t sar_mode,
                                                           uint32_t sar_index) {
    core::record({"tolvaro_mipc_sys_sar_set_async", sim_ps_id, 0, "", sar_index, {}});
    Fault fault{};
    const bool faulted = core::take_fault("tolvaro_mipc_sys_sar_set_async", &fault);
    if (faulted && fault.kind == Fault::Kind::kReturn)
        return static_cast<mipc_result_enum>(fault.value);
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_SUCCESS;
    const uint32_t code = faulted ? fault.value : 0;
    post([=] {
        mipc_sys_sar_struct result{};
        {
            std::lock_guard<std::mutex> guard(core::state_lock());
            if (code == 0) {
                table().mode = sar_mode;
                table().index = sar_index;
                ++table().switches;
            }
            result.result_code = code;
            result.sar_mode = table().mode;
            result.sar_index = table().index;
        }
        cb(sim_ps_id, &result, cb_priv_ptr);
    });
    return MIPC_RESULT_SUCCESS;
}

namespace mipc_sim {

std::vector<uint8_t> sar_item(uint16_t first, uint16_t second, size_t size) {
    std::vector<uint8_t> bytes(size < 4 ? 4 : size, 0);
    std::memcpy(bytes.data(), &first, sizeof first);
    std::memcpy(bytes.data() + 2, &second, sizeof second);
    return bytes;
}

void set_sar_table(uint32_t mode, uint32_t index) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    table().mode = mode;
    table().index = index;
}

SarTable sar_table() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return table();
}

}  // namespace mipc_sim
