// Messages and TLVs.
#include <cstring>

#include "core.h"

using namespace mipc_sim;

extern "C" {

mipc_msg_t *mipc_msg_init(uint16_t msg_id, mipc_sim_ps_id_enum sim_ps_id) {
    core::record({"mipc_msg_init", sim_ps_id, msg_id, "", 0, {}});
    Fault fault{};
    if (core::take_fault("mipc_msg_init", &fault)) return nullptr;
    return core::new_message(msg_id, sim_ps_id);
}

void mipc_msg_deinit(mipc_msg_t *msg_ptr) {
    core::record(
        {"mipc_msg_deinit", msg_ptr ? msg_ptr->ps_id : -1, msg_ptr ? msg_ptr->id : 0u, "", 0, {}});
    core::delete_message(msg_ptr);
}

mipc_result_enum mipc_msg_add_tlv(mipc_msg_t *msg_ptr, uint16_t type, uint16_t len,
                                  const void *val_ptr) {
    core::record({"mipc_msg_add_tlv",
                  msg_ptr ? msg_ptr->ps_id : -1,
                  msg_ptr ? msg_ptr->id : 0u,
                  "",
                  type,
                  {tlv_bytes(type, val_ptr, val_ptr ? len : 0)}});
    Fault fault{};
    if (core::take_fault("mipc_msg_add_tlv", &fault)) {
        return static_cast<mipc_result_enum>(fault.value);
    }
    if (msg_ptr == nullptr || (val_ptr == nullptr && len != 0)) return MIPC_RESULT_BAD_PARAM;
    msg_ptr->tlvs.push_back(tlv_bytes(type, val_ptr, len));
    return MIPC_RESULT_SUCCESS;
}

void *mipc_msg_get_val_ptr(mipc_msg_t *msg_ptr, uint16_t type, uint16_t *val_len_ptr) {
    core::record({"mipc_msg_get_val_ptr",
                  msg_ptr ? msg_ptr->ps_id : -1,
                  msg_ptr ? msg_ptr->id : 0u,
                  "",
                  type,
                  {}});
    if (msg_ptr == nullptr) return nullptr;
    for (Tlv &tlv : msg_ptr->tlvs) {
        if (tlv.type != type) continue;
        if (val_len_ptr != nullptr) *val_len_ptr = static_cast<uint16_t>(tlv.value.size());
        // An empty TLV still has an address, as in the real library.
        return tlv.value.empty() ? static_cast<void *>(&tlv) : tlv.value.data();
    }
    return nullptr;
}

mipc_msg_t *mipc_msg_copy_hdr(mipc_msg_t *msg_ptr) {
    core::record({"mipc_msg_copy_hdr",
                  msg_ptr ? msg_ptr->ps_id : -1,
                  msg_ptr ? msg_ptr->id : 0u,
                  "",
                  0,
                  {}});
    Fault fault{};
    if (core::take_fault("mipc_msg_copy_hdr", &fault) || msg_ptr == nullptr) return nullptr;
    return core::new_message(msg_ptr->id, msg_ptr->ps_id);
}

}  // extern "C"

namespace mipc_sim {

mipc_msg_t *make_message(uint16_t msg_id, mipc_sim_ps_id_enum ps_id, std::vector<Tlv> tlvs) {
    mipc_msg_t *msg = core::new_message(msg_id, ps_id);
    msg->tlvs = std::move(tlvs);
    return msg;
}

}  // namespace mipc_sim
