// Control interface of the simulated modem: what tests, the example daemon
// and tools use to set the modem up, push messages to the library, script
// answers, inject faults and read back the journal of calls received.
//
// Each area of the modem model (AT, SIM, network, ...) has a header of its
// own beside this one: mipc_sim_<area>.h.
//
// The simulated modem implements the modem IPC client interface
// (mipc_msg.h). Every callback it makes (command and indication handlers,
// asynchronous completions) runs on its own dispatcher thread, as the real
// library's do.
#pragma once

#include <mipc_msg.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace mipc_sim {

struct Tlv {
    uint16_t type;
    std::vector<uint8_t> value;
};

// Builders for TLV values.
Tlv tlv_u8(uint16_t type, uint8_t value);
Tlv tlv_u32(uint16_t type, uint32_t value);
Tlv tlv_text(uint16_t type, const std::string &text, bool with_nul = true);
Tlv tlv_bytes(uint16_t type, const void *data, size_t size);

// One call the simulated modem received.
struct Call {
    std::string function;   // e.g. "mipc_sys_at_sync"
    int ps_id = -1;         // protocol-stack id, -1 where the call has none
    uint32_t msg_id = 0;    // message id, where the call has one
    std::string text;       // AT command or other text argument
    int64_t arg = 0;        // the call's other number: TLV type asked for, flags
    std::vector<Tlv> tlvs;  // TLVs of the message sent (requests, replies)
};

// Forgets every registration, script, fault, journal entry and message, and
// waits for the dispatcher to finish what it was running. Call before each test.
void reset();

// ---- Journal -------------------------------------------------------------
std::vector<Call> journal();
std::vector<Call> calls_to(const std::string &function);
void clear_journal();

// ---- Faults --------------------------------------------------------------
// Each fault applies to the next call of `function` only, in the order added.
struct Fault {
    enum class Kind {
        kReturn,          // the call returns `value` (a mipc_result_enum or NULL for pointers)
        kResultCode,      // the call succeeds but its record's result_code is `value`
        kNoConfirmation,  // a request gets no confirmation (sync: NULL; async: never completes)
    };
    Kind kind;
    uint32_t value;
};
void fail_next(const std::string &function, Fault fault);
Fault return_value(uint32_t value);
Fault result_code(uint32_t code);
Fault no_confirmation();

// ---- Session -------------------------------------------------------------
bool session_open();
std::string session_client();

// ---- Messages --------------------------------------------------------------
// Builds a message as the modem would send it; owned by the caller until it
// is handed to deliver_*() or released with mipc_msg_deinit.
mipc_msg_t *make_message(uint16_t msg_id, mipc_sim_ps_id_enum ps_id, std::vector<Tlv> tlvs);
// Messages created and not yet released (leak checks).
int live_messages();

// Pushes a command message to the handler registered for its id and waits
// for the handler to return. Returns the handler's result, or -1 when no
// handler is registered. The message is released afterwards.
int deliver_command(uint32_t msg_id, std::vector<Tlv> tlvs);
// Pushes an indication to the handler registered for (ps_id, msg_id) and
// waits for it. Returns false when nothing is registered.
bool deliver_indication(mipc_sim_ps_id_enum ps_id, uint16_t msg_id, std::vector<Tlv> tlvs);
// Replies the library sent with mipc_msg_rsp, oldest first.
std::vector<Call> replies();
// Replies to messages of id `msg_id` (its low 16 bits, as headers carry them).
std::vector<Call> replies_to(uint32_t msg_id);

// ---- Requests ----------------------------------------------------------------
// Confirmation TLVs for raw requests sent with mipc_msg_sync_timeout. By
// default a request is confirmed with TLV 0 = 0 (uint32).
using Confirmer = std::function<std::vector<Tlv>(const Call &request)>;
void on_request(uint16_t msg_id, Confirmer confirmer);

// ---- Dispatcher ----------------------------------------------------------------
// Runs `work` on the dispatcher thread and returns at once.
void post(std::function<void()> work);
// Waits until the dispatcher has nothing queued or running.
void drain();

}  // namespace mipc_sim
