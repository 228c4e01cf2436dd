// Time model: the modem's network time.
#include <sys/time.h>

#include <cstring>

#include "core.h"
#include "mipc_sim_time.h"

using namespace mipc_sim;

namespace {

constexpr uint32_t kSourceNetwork = 1;

struct State {
    bool scripted = false;
    ModemTime time;
};

State &state() {
    static State instance;
    return instance;
}

const core::ResetHook kReset([] { state() = State{}; });

ModemTime current() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    if (state().scripted) return state().time;
    timeval now{};
    gettimeofday(&now, nullptr);
    ModemTime time;
    time.time_ms =
        static_cast<uint64_t>(now.tv_sec) * 1000u + static_cast<uint64_t>(now.tv_usec) / 1000u;
    time.time_source = kSourceNetwork;
    return time;
}

}  // namespace

extern "C" {

mipc_result_enum mipc_sys_time_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                        mipc_sys_time_struct *result_ptr) {
    core::record({"mipc_sys_time_get_sync", sim_ps_id, 0, "", 0, {}});
    Fault fault{};
    bool faulted = core::take_fault("mipc_sys_time_get_sync", &fault);
    if (faulted && fault.kind != Fault::Kind::kResultCode) {
        return fault.kind == Fault::Kind::kReturn ? static_cast<mipc_result_enum>(fault.value)
                                                  : MIPC_RESULT_TIMEOUT;
    }
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    const ModemTime time = current();
    std::memset(result_ptr, 0, sizeof *result_ptr);
    result_ptr->result_code = faulted ? fault.value : 0;
    result_ptr->time_ms = time.time_ms;
    result_ptr->tz_offset_min = time.tz_offset_min;
    result_ptr->dst = time.dst;
    result_ptr->time_source = time.time_source;
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void set_modem_time(const ModemTime &time) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().scripted = true;
    state().time = time;
}

}  // namespace mipc_sim
