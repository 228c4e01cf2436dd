// Answering a custom AT command the modem forwarded.
#include <cstdint>

#include "diag/log.h"
#include "modem/at/at_records.h"

using nkw::modem::at::kTag;

namespace {

constexpr uint16_t kResultTlv = 0;
constexpr uint16_t kParam1Tlv = 1;
constexpr uint16_t kParam2Tlv = 2;

struct Param {
    uint16_t type;
    const void *data;
    uint32_t len;
};

bool present(const Param &param) {
    return param.data != nullptr && param.len != 0;
}

// A TLV length is 16 bits: a longer parameter cannot be sent and is refused
// rather than cut.
bool add_param(mipc_msg_t *reply, const Param &param) {
    return param.len <= UINT16_MAX &&
           mipc_msg_add_tlv(reply, param.type, static_cast<uint16_t>(param.len), param.data) ==
               MIPC_RESULT_SUCCESS;
}

}  // namespace

extern "C" int32_t nkw_pal_at_resp(nkw_pal_modem_msg_t *msg, const nkw_pal_at_reply *r) {
    if (msg == nullptr || r == nullptr) {
        NKW_LOGF(kTag, "The input parameters is incorrect \n");
        return NKW_PAL_INVALID_ARG;
    }
    mipc_msg_t *reply = mipc_msg_copy_hdr(static_cast<mipc_msg_t *>(msg));
    if (reply == nullptr) {
        NKW_LOGE(kTag, "build MIPC message failed. \n");
        return NKW_PAL_BAD_MESSAGE;
    }
    mipc_msg_add_tlv(reply, kResultTlv, sizeof r->result, &r->result);
    // Error level on purpose: daemons' log filters look for this line there.
    NKW_LOGE(kTag, "set at result: %d \n", r->result);

    const Param params[] = {{kParam1Tlv, r->param1, r->param1_len},
                            {kParam2Tlv, r->param2, r->param2_len}};
    for (const Param &param : params) {
        if (!present(param)) {
            // The text names param1 for both parameters; log filters match it as it is.
            NKW_LOGD(kTag, "There is no param1 infoarmtion. \n");
            continue;
        }
        if (!add_param(reply, param)) {
            NKW_LOGE(kTag, "set at result failed \n");
            mipc_msg_deinit(reply);
            return NKW_PAL_FAIL;
        }
    }

    mipc_result_enum sent = mipc_msg_rsp(reply);
    if (sent == MIPC_RESULT_SUCCESS) {
        NKW_LOGI(kTag, "at response success. \n");
    } else {
        NKW_LOGE(kTag, "at response failed. \n");
    }
    mipc_msg_deinit(reply);
    return sent;
}
