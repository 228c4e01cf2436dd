// Shared state of the simulated modem: journal, faults, reset hooks.
#pragma once

#include <mutex>
#include <string>

#include "mipc_sim.h"

struct mipc_msg_struct {
    uint16_t id;
    mipc_sim_ps_id_enum ps_id;
    std::vector<mipc_sim::Tlv> tlvs;
};

namespace mipc_sim::core {

// Guards every piece of model state; never held while a callback runs.
std::mutex &state_lock();

void record(Call call);
// The message's TLVs, copied for the journal.
std::vector<Tlv> tlvs_of(const mipc_msg_t *msg);

// Takes the next fault queued for `function`, if any.
bool take_fault(const char *function, Fault *fault);

// Model pieces register what reset() must clear.
struct ResetHook {
    explicit ResetHook(void (*clear)());
};

// Message bookkeeping for live_messages().
mipc_msg_t *new_message(uint16_t msg_id, mipc_sim_ps_id_enum ps_id);
void delete_message(mipc_msg_t *msg);

}  // namespace mipc_sim::core

namespace mipc_sim::core {
// True on the dispatcher thread, where waiting for the dispatcher would deadlock.
bool on_dispatcher_thread();
}  // namespace mipc_sim::core

namespace mipc_sim::core {
// A model's own answer to raw request `msg_id`, used when no test has
// scripted one with on_request(). Kept across reset().
struct RequestModel {
    // `kept`: callers never release these requests and confirmations; they
    // are held for the process, as the real library's pool holds them, so
    // leak checks do not count them.
    RequestModel(uint16_t msg_id, Confirmer confirmer, bool kept = false);
};
}  // namespace mipc_sim::core
