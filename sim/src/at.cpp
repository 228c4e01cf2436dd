// AT command model.
#include <cstring>
#include <map>

#include "core.h"
#include "mipc_sim_at.h"

using namespace mipc_sim;

namespace {

struct Reply {
    uint32_t result_code;
    std::string response;
};

std::map<std::string, Reply> &scripts() {
    static std::map<std::string, Reply> instance;
    return instance;
}

const core::ResetHook kReset([] { scripts().clear(); });

Reply reply_for(const std::string &command) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    const Reply *best = nullptr;
    size_t best_len = 0;
    for (const auto &[prefix, reply] : scripts()) {
        if (command.compare(0, prefix.size(), prefix) == 0 &&
            (!best || prefix.size() >= best_len)) {
            best = &reply;
            best_len = prefix.size();
        }
    }
    return best != nullptr ? *best : Reply{0, "OK"};
}

void fill(mipc_sys_at_struct *record, const Reply &reply) {
    std::memset(record, 0, sizeof *record);
    record->result_code = reply.result_code;
    std::strncpy(record->atcmd_res_ptr, reply.response.c_str(), sizeof record->atcmd_res_ptr - 1);
}

}  // namespace

extern "C" {

mipc_result_enum mipc_sys_at_sync(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_at_struct *result_ptr,
                                  const char *atcmd_ptr) {
    std::string command = atcmd_ptr != nullptr ? atcmd_ptr : "";
    core::record({"mipc_sys_at_sync", sim_ps_id, 0, command, 0, {}});
    Fault fault{};
    bool faulted = core::take_fault("mipc_sys_at_sync", &fault);
    if (faulted && fault.kind != Fault::Kind::kResultCode) {
        return fault.kind == Fault::Kind::kReturn ? static_cast<mipc_result_enum>(fault.value)
                                                  : MIPC_RESULT_TIMEOUT;
    }
    if (result_ptr == nullptr || atcmd_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    Reply reply = reply_for(command);
    if (faulted) reply.result_code = fault.value;
    fill(result_ptr, reply);
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sys_at_async(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_at_cb cb,
                                   void *cb_priv_ptr, const char *atcmd_ptr) {
    std::string command = atcmd_ptr != nullptr ? atcmd_ptr : "";
    core::record({"mipc_sys_at_async", sim_ps_id, 0, command, 0, {}});
    Fault fault{};
    bool faulted = core::take_fault("mipc_sys_at_async", &fault);
    if (faulted && fault.kind == Fault::Kind::kReturn) {
        return static_cast<mipc_result_enum>(fault.value);
    }
    if (cb == nullptr || atcmd_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_SUCCESS;
    Reply reply = reply_for(command);
    if (faulted) reply.result_code = fault.value;
    post([sim_ps_id, cb, cb_priv_ptr, reply] {
        mipc_sys_at_struct record;
        fill(&record, reply);
        cb(sim_ps_id, &record, cb_priv_ptr);
    });
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void set_at_reply(const std::string &prefix, uint32_t result_code, const std::string &response) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    scripts()[prefix] = {result_code, response};
}

}  // namespace mipc_sim
