#include "modem/ack.h"

#include <cstdint>

namespace nkw::modem {

namespace {
constexpr uint16_t kResultTlv = 0;
constexpr uint32_t kResultOk = 0;
}  // namespace

void acknowledge(mipc_msg_t *received) {
    mipc_msg_t *reply = mipc_msg_copy_hdr(received);
    if (reply == nullptr) return;  // nothing to send, nothing to release
    mipc_msg_add_tlv(reply, kResultTlv, sizeof kResultOk, &kResultOk);
    mipc_msg_rsp(reply);
    mipc_msg_deinit(reply);
}

}  // namespace nkw::modem
