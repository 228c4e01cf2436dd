// Command and indication handlers the library registers, delivery of
// messages to them, and the replies they send.
#include <future>
#include <map>
#include <utility>

#include "core.h"

using namespace mipc_sim;

namespace {

struct CommandHandler {
    mipc_msg_cmd_cb cb;
    void *priv;
};
struct IndicationHandler {
    mipc_msg_ind_cb cb;
    void *priv;
};

struct Handlers {
    std::map<uint32_t, CommandHandler> commands;
    std::map<std::pair<int, uint32_t>, IndicationHandler> indications;
    std::vector<Call> replies;
};

Handlers &handlers() {
    static Handlers instance;
    return instance;
}

// The library hands its registration records over for the rest of the
// process; once forgotten here they stay reachable, as they would from the
// real modem library, so leak checkers do not report them.
std::vector<void *> &retired_records() {
    static auto *instance = new std::vector<void *>;  // never destroyed: scanned until exit
    return *instance;
}

const core::ResetHook kReset([] {
    for (const auto &[id, handler] : handlers().commands) retired_records().push_back(handler.priv);
    for (const auto &[key, handler] : handlers().indications) {
        retired_records().push_back(handler.priv);
    }
    handlers() = Handlers{};
});

// Runs `work` on the dispatcher and waits for it, unless already there.
template <typename Work>
auto on_dispatcher_and_wait(Work work) -> decltype(work()) {
    if (core::on_dispatcher_thread()) return work();
    std::packaged_task<decltype(work())()> task(std::move(work));
    auto result = task.get_future();
    post([&task] { task(); });
    return result.get();
}

}  // namespace

extern "C" {

mipc_result_enum mipc_msg_register_cmd_api(uint32_t msg_id, mipc_msg_cmd_cb cb, uint32_t flags,
                                           void *priv_ptr) {
    core::record({"mipc_msg_register_cmd_api", -1, msg_id, "", flags, {}});
    Fault fault{};
    if (core::take_fault("mipc_msg_register_cmd_api", &fault)) {
        return static_cast<mipc_result_enum>(fault.value);
    }
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::lock_guard<std::mutex> guard(core::state_lock());
    handlers().commands[msg_id] = {cb, priv_ptr};
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_msg_register_ind_api(mipc_sim_ps_id_enum sim_ps_id, uint32_t msg_id,
                                           mipc_msg_ind_cb cb, uint32_t flags, void *priv_ptr) {
    core::record({"mipc_msg_register_ind_api", sim_ps_id, msg_id, "", flags, {}});
    Fault fault{};
    if (core::take_fault("mipc_msg_register_ind_api", &fault)) {
        return static_cast<mipc_result_enum>(fault.value);
    }
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::lock_guard<std::mutex> guard(core::state_lock());
    handlers().indications[{sim_ps_id, msg_id}] = {cb, priv_ptr};
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_msg_rsp(mipc_msg_t *msg_rsp_ptr) {
    Call call{"mipc_msg_rsp",
              msg_rsp_ptr ? msg_rsp_ptr->ps_id : -1,
              msg_rsp_ptr ? msg_rsp_ptr->id : 0u,
              "",
              0,
              core::tlvs_of(msg_rsp_ptr)};
    core::record(call);
    Fault fault{};
    if (core::take_fault("mipc_msg_rsp", &fault)) return static_cast<mipc_result_enum>(fault.value);
    if (msg_rsp_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::lock_guard<std::mutex> guard(core::state_lock());
    handlers().replies.push_back(std::move(call));
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

int deliver_command(uint32_t msg_id, std::vector<Tlv> tlvs) {
    CommandHandler handler{};
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        auto found = handlers().commands.find(msg_id);
        if (found == handlers().commands.end()) return -1;
        handler = found->second;
    }
    // Message headers carry 16-bit ids.
    mipc_msg_t *msg = make_message(static_cast<uint16_t>(msg_id), MIPC_PS_ALL, std::move(tlvs));
    int result =
        on_dispatcher_and_wait([&] { return static_cast<int>(handler.cb(msg, handler.priv)); });
    core::delete_message(msg);
    return result;
}

bool deliver_indication(mipc_sim_ps_id_enum ps_id, uint16_t msg_id, std::vector<Tlv> tlvs) {
    IndicationHandler handler{};
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        auto found = handlers().indications.find({ps_id, msg_id});
        if (found == handlers().indications.end()) return false;
        handler = found->second;
    }
    mipc_msg_t *msg = make_message(msg_id, ps_id, std::move(tlvs));
    on_dispatcher_and_wait([&] {
        handler.cb(msg, handler.priv);
        return true;
    });
    core::delete_message(msg);
    return true;
}

std::vector<Call> replies() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return handlers().replies;
}

std::vector<Call> replies_to(uint32_t msg_id) {
    std::vector<Call> matching;
    for (Call &reply : replies()) {
        if (reply.msg_id == static_cast<uint16_t>(msg_id)) matching.push_back(std::move(reply));
    }
    return matching;
}

}  // namespace mipc_sim
