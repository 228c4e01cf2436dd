// SIM reset model: stacks 1 and 2 carry the two SIM slots; a reset of
// either is recorded, any other stack is refused with a result code.
#include "mipc_sim_sim_reset.h"
#include "model_support.h"

using namespace mipc_sim;

namespace {

std::vector<SimReset> &resets() {
    static std::vector<SimReset> instance;
    return instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(core::state_lock());
    resets().clear();
});

}  // namespace

extern "C" mipc_result_enum mipc_sim_reset_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                                    mipc_sim_reset_struct *result_ptr,
                                                    uint32_t pass_through_mode) {
    core::record({"mipc_sim_reset_set_sync", sim_ps_id, 0, "", pass_through_mode, {}});
    uint32_t code = 0;
    mipc_result_enum early = MIPC_RESULT_SUCCESS;
    if (core::take_call_fault("mipc_sim_reset_set_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (code == 0 && sim_ps_id != MIPC_PS0 && sim_ps_id != MIPC_PS1) code = kSimResetNoSlot;
    if (code == 0) {
        std::lock_guard<std::mutex> guard(core::state_lock());
        resets().push_back({sim_ps_id, pass_through_mode});
    }
    result_ptr->result_code = code;
    return MIPC_RESULT_SUCCESS;
}

namespace mipc_sim {

std::vector<SimReset> sim_resets() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return resets();
}

}  // namespace mipc_sim
