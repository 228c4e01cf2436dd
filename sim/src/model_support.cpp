#include "model_support.h"

#include <vector>

namespace mipc_sim::core {

bool take_call_fault(const char *function, uint32_t *code, mipc_result_enum *early) {
    Fault fault{};
    if (!take_fault(function, &fault)) return false;
    if (fault.kind == Fault::Kind::kResultCode) {
        *code = fault.value;
        return false;
    }
    *early = fault.kind == Fault::Kind::kReturn ? static_cast<mipc_result_enum>(fault.value)
                                                : MIPC_RESULT_TIMEOUT;
    return true;
}

void keep_for_process(void *record) {
    // Never destroyed: leak checks run after static destructors.
    static auto *records = new std::vector<void *>;
    std::lock_guard<std::mutex> guard(state_lock());
    records->push_back(record);
}

}  // namespace mipc_sim::core
