// Raw requests sent with mipc_msg_sync_timeout and their confirmations.
#include <map>
#include <set>

#include "core.h"
#include "model_support.h"

using namespace mipc_sim;

namespace {

constexpr uint16_t kResultTlv = 0;

std::map<uint16_t, Confirmer> &confirmers() {
    static std::map<uint16_t, Confirmer> instance;
    return instance;
}

const core::ResetHook kReset([] { confirmers().clear(); });

std::map<uint16_t, Confirmer> &models() {
    static std::map<uint16_t, Confirmer> instance;
    return instance;
}

std::set<uint16_t> &kept_ids() {
    static std::set<uint16_t> instance;
    return instance;
}

}  // namespace

extern "C" mipc_msg_t *mipc_msg_sync_timeout(mipc_msg_t *msg_req_ptr) {
    Call request{"mipc_msg_sync_timeout",
                 msg_req_ptr ? msg_req_ptr->ps_id : -1,
                 msg_req_ptr ? msg_req_ptr->id : 0u,
                 "",
                 0,
                 core::tlvs_of(msg_req_ptr)};
    core::record(request);
    Fault fault{};
    bool faulted = core::take_fault("mipc_msg_sync_timeout", &fault);
    if (msg_req_ptr == nullptr) return nullptr;
    if (kept_ids().count(msg_req_ptr->id) != 0) core::keep_for_process(msg_req_ptr);
    if (faulted && fault.kind != Fault::Kind::kResultCode) return nullptr;

    std::vector<Tlv> tlvs{tlv_u32(kResultTlv, 0)};
    Confirmer confirmer;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        auto found = confirmers().find(msg_req_ptr->id);
        if (found != confirmers().end()) confirmer = found->second;
        auto model = models().find(msg_req_ptr->id);
        // A faulted request leaves the model's state alone.
        if (!confirmer && !faulted && model != models().end()) confirmer = model->second;
    }
    if (confirmer) tlvs = confirmer(request);
    if (faulted) {
        for (Tlv &tlv : tlvs) {
            if (tlv.type == kResultTlv) tlv = tlv_u32(kResultTlv, fault.value);
        }
    }
    mipc_msg_t *confirmation = make_message(msg_req_ptr->id, msg_req_ptr->ps_id, std::move(tlvs));
    if (kept_ids().count(msg_req_ptr->id) != 0) core::keep_for_process(confirmation);
    return confirmation;
}

namespace mipc_sim {

core::RequestModel::RequestModel(uint16_t msg_id, Confirmer confirmer, bool kept) {
    models()[msg_id] = std::move(confirmer);
    if (kept) kept_ids().insert(msg_id);
}

void on_request(uint16_t msg_id, Confirmer confirmer) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    confirmers()[msg_id] = std::move(confirmer);
}

}  // namespace mipc_sim
