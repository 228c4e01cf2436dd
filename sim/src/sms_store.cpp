// SMS store model: messages by index; reads mark unread messages read;
// store-status indications go to every registration on the dispatcher.
#include <cstring>
#include <map>

#include "core.h"
#include "mipc_sim_sms.h"

using namespace mipc_sim;

namespace {

constexpr uint16_t kDefaultCapacity = 20;
constexpr uint16_t kDeleteAllMsg = 0x609;
constexpr uint16_t kDeleteAllTlv = 0x100;
constexpr uint16_t kResultTlv = 0;

struct Registration {
    mipc_sms_store_status_cb cb;
    void *priv;
};

struct State {
    std::map<uint16_t, StoredSms> messages;
    uint16_t capacity = kDefaultCapacity;
    std::vector<Registration> registrations;
    std::vector<SmsRequest> requests;
};

State &state() {
    static State instance;
    return instance;
}

// Registrations dropped by reset() stay reachable here: their records belong
// to the caller for the rest of the process, and leak checkers must not
// count them. Never destroyed, so they are still reachable at exit.
std::vector<Registration> &retired() {
    static auto *instance = new std::vector<Registration>;
    return *instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(core::state_lock());
    for (const Registration &r : state().registrations) retired().push_back(r);
    state() = State{};
});

bool journal_and_fault(const char *function, int ps_id, uint16_t index, uint32_t flag,
                       uint32_t format, Fault *fault) {
    core::record({function, ps_id, 0, "", index, {}});
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        state().requests.push_back({function, ps_id, index, flag, format});
    }
    return core::take_fault(function, fault);
}

// Delivers on the dispatcher and waits, as a test expects to assert after.
void push(const mipc_sms_status_struct *status) {
    std::vector<Registration> targets;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        targets = state().registrations;
    }
    bool with_record = status != nullptr;
    mipc_sms_status_struct copy{};
    if (with_record) copy = *status;
    post([targets, with_record, copy]() mutable {
        for (const Registration &r : targets)
            r.cb(MIPC_PS_ALL, with_record ? &copy : nullptr, r.priv);
    });
    if (!core::on_dispatcher_thread()) drain();
}

void push_flag(uint32_t flag, uint16_t index) {
    mipc_sms_status_struct status{};
    status.store_flag_btmp = flag;
    status.message_index = index;
    push(&status);
}

// The delete-all request clears the store when its TLV asks for all.
std::vector<Tlv> delete_all(const Call &request) {
    bool all = false;
    for (const Tlv &tlv : request.tlvs) {
        if (tlv.type == kDeleteAllTlv && tlv.value.size() == 1 && tlv.value[0] == 0) all = true;
    }
    if (!all) return {tlv_u32(kResultTlv, MIPC_RESULT_BAD_PARAM)};
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().messages.clear();
    return {tlv_u32(kResultTlv, 0)};
}

const core::RequestModel kDeleteAll(kDeleteAllMsg, delete_all);

}  // namespace

extern "C" {

mipc_result_enum mipc_sms_read_sync(mipc_sim_ps_id_enum sim_ps_id, mipc_sms_read_struct *result_ptr,
                                    uint32_t flag, uint16_t message_index, uint32_t format) {
    Fault fault{};
    bool faulted =
        journal_and_fault("mipc_sms_read_sync", sim_ps_id, message_index, flag, format, &fault);
    if (faulted && fault.kind == Fault::Kind::kReturn)
        return static_cast<mipc_result_enum>(fault.value);
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_TIMEOUT;
    if (result_ptr == nullptr || result_ptr->sms_pdu_count == 0) return MIPC_RESULT_BAD_PARAM;
    uint16_t capacity = result_ptr->sms_pdu_count;
    std::memset(result_ptr, 0, sizeof *result_ptr);
    result_ptr->sms_pdu_count = capacity;
    result_ptr->message_index = message_index;
    std::lock_guard<std::mutex> guard(core::state_lock());
    auto found = state().messages.find(message_index);
    if (faulted) {
        result_ptr->result_code = fault.value;
    } else if (found == state().messages.end()) {
        result_ptr->result_code = kSmsEmptyIndex;
    } else {
        StoredSms &sms = found->second;
        size_t size = sms.pdu.size() < MIPC_SMS_PDU_LEN ? sms.pdu.size() : MIPC_SMS_PDU_LEN;
        std::memcpy(result_ptr->pdu, sms.pdu.data(), size);
        size_t smsc = sms.pdu.empty() ? 0 : sms.pdu[0] + 1u;
        result_ptr->pdu_len = static_cast<uint8_t>(size > smsc ? size - smsc : 0);
        result_ptr->status = sms.status;
        result_ptr->sms_class = sms.sms_class;
        result_ptr->sms_pdu_count = 1;
        if (sms.status == kSmsUnread) sms.status = kSmsRead;  // reading marks it read
    }
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sms_delete_sync(mipc_sim_ps_id_enum sim_ps_id,
                                      mipc_sms_delete_struct *result_ptr, uint32_t flag,
                                      uint16_t message_index) {
    Fault fault{};
    bool faulted =
        journal_and_fault("mipc_sms_delete_sync", sim_ps_id, message_index, flag, 0, &fault);
    if (faulted && fault.kind == Fault::Kind::kReturn)
        return static_cast<mipc_result_enum>(fault.value);
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_TIMEOUT;
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (faulted) {
        result_ptr->result_code = fault.value;
        return MIPC_RESULT_SUCCESS;
    }
    std::lock_guard<std::mutex> guard(core::state_lock());
    result_ptr->result_code = state().messages.erase(message_index) == 1 ? 0 : kSmsEmptyIndex;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sms_store_status_register(mipc_sim_ps_id_enum sim_ps_id,
                                                mipc_sms_store_status_cb cb, void *cb_priv_ptr) {
    Fault fault{};
    if (journal_and_fault("mipc_sms_store_status_register", sim_ps_id, 0, 0, 0, &fault))
        return fault.kind == Fault::Kind::kReturn ? static_cast<mipc_result_enum>(fault.value)
                                                  : MIPC_RESULT_FAILURE;
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().registrations.push_back({cb, cb_priv_ptr});
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void store_sms(uint16_t index, const std::vector<uint8_t> &pdu, uint8_t status, uint8_t sms_class) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().messages[index] = {pdu, status, sms_class};
}

int receive_sms(const std::vector<uint8_t> &pdu, uint8_t sms_class) {
    int index = -1;
    bool now_full = false;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        State &s = state();
        for (uint16_t i = 0; i < s.capacity; ++i) {
            if (s.messages.count(i) == 0) {
                s.messages[i] = {pdu, kSmsUnread, sms_class};
                index = i;
                break;
            }
        }
        now_full = s.messages.size() >= s.capacity;
    }
    if (index >= 0) push_flag(MIPC_SMS_STORE_FLAG_NEW_MSG, static_cast<uint16_t>(index));
    // A store with no room left reports the index of the message that filled it.
    if (now_full) push_flag(MIPC_SMS_STORE_FLAG_FULL, static_cast<uint16_t>(index < 0 ? 0 : index));
    return index;
}

void set_sms_capacity(uint16_t capacity) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().capacity = capacity;
}

bool stored_sms(uint16_t index, StoredSms *out) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    auto found = state().messages.find(index);
    if (found == state().messages.end()) return false;
    if (out != nullptr) *out = found->second;
    return true;
}

size_t stored_sms_count() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return state().messages.size();
}

void push_sms_store_status(const mipc_sms_status_struct &status) {
    push(&status);
}

void push_sms_store_status_without_record() {
    push(nullptr);
}

std::vector<SmsRequest> sms_requests() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return state().requests;
}

}  // namespace mipc_sim
