// System information model: the IMEI the modem reports.
#include <algorithm>
#include <cstring>

#include "core.h"
#include "mipc_sim_sys_info.h"
#include "model_support.h"

using namespace mipc_sim;

namespace {

constexpr char kDefaultImei[] = "350000000000017";

std::string &stored_imei() {
    static std::string instance = kDefaultImei;
    return instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(core::state_lock());
    stored_imei() = kDefaultImei;
});

}  // namespace

extern "C" mipc_result_enum mipc_sys_info_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                                   mipc_sys_info_struct *result_ptr) {
    core::record({"mipc_sys_info_get_sync", sim_ps_id, 0, "", 0, {}});
    uint32_t code = 0;
    mipc_result_enum early{};
    if (core::take_call_fault("mipc_sys_info_get_sync", &code, &early)) return early;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    std::lock_guard<std::mutex> guard(core::state_lock());
    result_ptr->result_code = code;
    const std::string &imei = stored_imei();
    std::memcpy(result_ptr->imei, imei.data(), std::min(imei.size(), sizeof result_ptr->imei - 1));
    return MIPC_RESULT_SUCCESS;
}

namespace mipc_sim {

void set_imei(const std::string &imei) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    stored_imei() = imei;
}

std::string imei() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return stored_imei();
}

}  // namespace mipc_sim
