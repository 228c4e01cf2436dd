// AT command model: an answer table by command prefix, synchronous and
// asynchronous requests, and custom commands forwarded to the library.
#include <chrono>
#include <cstring>
#include <map>
#include <thread>

#include "core.h"
#include "mipc_sim_at.h"

using namespace mipc_sim;

namespace {

struct DefaultAnswer {
    const char *prefix;
    const char *response;
};

// What a module of this kind answers to the commands the library sends.
constexpr DefaultAnswer kDefaults[] = {
    {"AT+GTMBIMSYNC", "OK"},
    {"AT+GTESIMID", "+GTESIMID: \"89049032000001000000000000000017\"\r\nOK"},
    {"AT+ECSQ", "+ECSQ: 22,99,-280,-440,-340,-52,-120\r\nOK"},
    {"ATI5", "\"NKW5G01\"\r\nOK"},
    {"ATI8", "\"NKW_FW_1.0.0\"\r\nOK"},
    {"AT+CFSN", "+CFSN: \"NKW0PG0001\"\r\nOK"},
    {"AT+EGMC", "OK"},
};

std::map<std::string, AtReply> defaults() {
    std::map<std::string, AtReply> table;
    for (const DefaultAnswer &answer : kDefaults) table[answer.prefix].response = answer.response;
    return table;
}

std::map<std::string, AtReply> &table() {
    static std::map<std::string, AtReply> instance = defaults();
    return instance;
}

// Answers that arrive later: each waits on a thread of its own, so a slow
// answer does not hold up the dispatcher.
std::vector<std::thread> &delayed() {
    static std::vector<std::thread> instance;
    return instance;
}

const core::ResetHook kReset([] {
    std::vector<std::thread> waiting;
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        table() = defaults();
        waiting.swap(delayed());
    }
    for (std::thread &thread : waiting) thread.join();
    drain();  // what the delayed answers posted
});

void fill(mipc_sys_at_struct *record, const AtReply &reply) {
    std::memset(record, 0, sizeof *record);
    record->result_code = reply.result_code;
    std::strncpy(record->atcmd_res_ptr, reply.response.c_str(), sizeof record->atcmd_res_ptr - 1);
}

// The table's answer with a queued fault applied; false: no answer at all.
bool answer(const char *function, const std::string &command, AtReply *reply,
            mipc_result_enum *returned) {
    *reply = at_reply_for(command);
    *returned = MIPC_RESULT_SUCCESS;
    Fault fault{};
    if (!core::take_fault(function, &fault)) return true;
    switch (fault.kind) {
        case Fault::Kind::kReturn:
            *returned = static_cast<mipc_result_enum>(fault.value);
            return false;
        case Fault::Kind::kResultCode:
            reply->result_code = fault.value;
            return true;
        case Fault::Kind::kNoConfirmation:
            reply->confirmed = false;
            return true;
    }
    return true;
}

}  // namespace

extern "C" {

mipc_result_enum mipc_sys_at_sync(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_at_struct *result_ptr,
                                  const char *atcmd_ptr) {
    std::string command = atcmd_ptr != nullptr ? atcmd_ptr : "";
    core::record({"mipc_sys_at_sync", sim_ps_id, 0, command, 0, {}});
    AtReply reply;
    mipc_result_enum returned{};
    if (!answer("mipc_sys_at_sync", command, &reply, &returned)) return returned;
    if (result_ptr == nullptr || atcmd_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (reply.delay_ms != 0) std::this_thread::sleep_for(std::chrono::milliseconds(reply.delay_ms));
    if (!reply.confirmed) return MIPC_RESULT_TIMEOUT;
    fill(result_ptr, reply);
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sys_at_async(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_at_cb cb,
                                   void *cb_priv_ptr, const char *atcmd_ptr) {
    std::string command = atcmd_ptr != nullptr ? atcmd_ptr : "";
    core::record({"mipc_sys_at_async", sim_ps_id, 0, command, 0, {}});
    AtReply reply;
    mipc_result_enum returned{};
    if (!answer("mipc_sys_at_async", command, &reply, &returned)) return returned;
    if (cb == nullptr || atcmd_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (!reply.confirmed) return MIPC_RESULT_SUCCESS;
    auto complete = [sim_ps_id, cb, cb_priv_ptr, reply] {
        mipc_sys_at_struct record;
        fill(&record, reply);
        cb(sim_ps_id, &record, cb_priv_ptr);
    };
    if (reply.delay_ms == 0) {
        post(complete);
        return MIPC_RESULT_SUCCESS;
    }
    std::lock_guard<std::mutex> guard(core::state_lock());
    delayed().emplace_back([complete, delay = reply.delay_ms] {
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        post(complete);
    });
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void set_at_reply(const std::string &prefix, uint32_t result_code, const std::string &response) {
    AtReply reply;
    reply.result_code = result_code;
    reply.response = response;
    set_at_reply(prefix, reply);
}

void set_at_reply(const std::string &prefix, const AtReply &reply) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    table()[prefix] = reply;
}

AtReply at_reply_for(const std::string &command) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    const AtReply *best = nullptr;
    size_t best_len = 0;
    for (const auto &[prefix, reply] : table()) {
        if (command.compare(0, prefix.size(), prefix) == 0 &&
            (best == nullptr || prefix.size() >= best_len)) {
            best = &reply;
            best_len = prefix.size();
        }
    }
    if (best != nullptr) return *best;
    AtReply ok;
    ok.response = "OK";
    return ok;
}

int send_custom_at(uint32_t cmd_id, const std::string &line, std::vector<Tlv> extra) {
    std::vector<Tlv> tlvs{tlv_text(kAtCommandLineTlv, line)};
    for (Tlv &tlv : extra) tlvs.push_back(std::move(tlv));
    return deliver_command(cmd_id, std::move(tlvs));
}

}  // namespace mipc_sim
