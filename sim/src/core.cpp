// Journal, fault queue and reset of the simulated modem.
#include "core.h"

#include <cstring>
#include <deque>
#include <map>

namespace mipc_sim {
namespace {

struct State {
    std::vector<Call> journal;
    std::map<std::string, std::deque<Fault>> faults;
    int live_messages = 0;
};

State &state() {
    static State instance;
    return instance;
}

std::vector<void (*)()> &reset_hooks() {
    static std::vector<void (*)()> hooks;
    return hooks;
}

Tlv make_tlv(uint16_t type, const void *data, size_t size) {
    Tlv tlv{type, std::vector<uint8_t>(size)};
    if (size != 0) std::memcpy(tlv.value.data(), data, size);
    return tlv;
}

}  // namespace

namespace core {

std::mutex &state_lock() {
    static std::mutex lock;
    return lock;
}

void record(Call call) {
    std::lock_guard<std::mutex> guard(state_lock());
    state().journal.push_back(std::move(call));
}

std::vector<Tlv> tlvs_of(const mipc_msg_t *msg) {
    if (msg == nullptr) return {};
    return msg->tlvs;
}

bool take_fault(const char *function, Fault *fault) {
    std::lock_guard<std::mutex> guard(state_lock());
    auto found = state().faults.find(function);
    if (found == state().faults.end() || found->second.empty()) return false;
    *fault = found->second.front();
    found->second.pop_front();
    return true;
}

ResetHook::ResetHook(void (*clear)()) {
    reset_hooks().push_back(clear);
}

mipc_msg_t *new_message(uint16_t msg_id, mipc_sim_ps_id_enum ps_id) {
    {
        std::lock_guard<std::mutex> guard(state_lock());
        ++state().live_messages;
    }
    return new mipc_msg_struct{msg_id, ps_id, {}};
}

void delete_message(mipc_msg_t *msg) {
    if (msg == nullptr) return;
    {
        std::lock_guard<std::mutex> guard(state_lock());
        --state().live_messages;
    }
    delete msg;
}

}  // namespace core

Tlv tlv_u8(uint16_t type, uint8_t value) {
    return make_tlv(type, &value, sizeof value);
}
Tlv tlv_u32(uint16_t type, uint32_t value) {
    return make_tlv(type, &value, sizeof value);
}
Tlv tlv_text(uint16_t type, const std::string &text, bool with_nul) {
    return make_tlv(type, text.c_str(), text.size() + (with_nul ? 1 : 0));
}
Tlv tlv_bytes(uint16_t type, const void *data, size_t size) {
    return make_tlv(type, data, size);
}

void reset() {
    drain();
    for (void (*clear)() : reset_hooks()) clear();
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().journal.clear();
    state().faults.clear();
}

std::vector<Call> journal() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return state().journal;
}

std::vector<Call> calls_to(const std::string &function) {
    std::vector<Call> matching;
    for (Call &call : journal()) {
        if (call.function == function) matching.push_back(std::move(call));
    }
    return matching;
}

void clear_journal() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().journal.clear();
}

void fail_next(const std::string &function, Fault fault) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().faults[function].push_back(fault);
}

Fault return_value(uint32_t value) {
    return {Fault::Kind::kReturn, value};
}
Fault result_code(uint32_t code) {
    return {Fault::Kind::kResultCode, code};
}
Fault no_confirmation() {
    return {Fault::Kind::kNoConfirmation, 0};
}

int live_messages() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return state().live_messages;
}

}  // namespace mipc_sim
