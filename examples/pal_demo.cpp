// A small daemon on the simulated modem: it opens the log and the modem
// session, registers a command handler, has the (simulated) modem send it a
// command, reads the command's parameter and answers it. Its log lines go to
// the system log, to be read with logread as on the module.
#include <nkw_pal.h>

#include <cstdio>
#include <cstring>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "mipc_sim_indication.h"

namespace {

constexpr uint32_t kDemoCommandId = 0x8F70;
constexpr uint16_t kParamTlv = 256;
constexpr uint16_t kResultTlv = 0;

mipc_result_enum on_demo_command(mipc_msg_t *msg, void *) {
    uint16_t type = kParamTlv;
    uint16_t *type_ref = &type;
    uint32_t needed = 0;
    // First ask for the size, then fetch the value into a buffer that fits.
    nkw_pal_modem_msg_get(msg, &type_ref, nullptr, 0, &needed);
    char param[256] = {};
    if (needed >= sizeof param ||
        nkw_pal_modem_msg_get(msg, &type_ref, param, sizeof param - 1, &needed) != 0) {
        nkw_pal_loge("DEMO", "[%s:%d]-demo command without a usable parameter \n", __func__,
                     __LINE__);
        return MIPC_RESULT_FAILURE;
    }
    nkw_pal_logi("DEMO", "[%s:%d]-demo command received, param: %s \n", __func__, __LINE__, param);

    mipc_msg_t *reply = mipc_msg_copy_hdr(msg);
    const uint32_t ok = 0;
    mipc_msg_add_tlv(reply, kResultTlv, sizeof ok, &ok);
    mipc_result_enum sent = mipc_msg_rsp(reply);
    mipc_msg_deinit(reply);
    nkw_pal_logi("DEMO", "[%s:%d]-demo command answered: %d \n", __func__, __LINE__, sent);
    return sent;
}

// ---- AT channel and indications ----

constexpr uint32_t kDemoAtId = 0x8F71;

// Answers the custom command with the line the modem forwarded.
int32_t on_demo_at(nkw_pal_modem_msg_t *msg) {
    uint16_t type = mipc_sim::kAtCommandLineTlv;
    uint16_t *type_ref = &type;
    char line[128] = {};
    uint32_t len = 0;
    if (nkw_pal_modem_msg_get(msg, &type_ref, line, sizeof line - 1, &len) != 0) return -1;
    static constexpr char kDone[] = "+QDEMO: done";
    nkw_pal_at_reply reply{0, kDone, sizeof kDone - 1, nullptr, 0};
    return nkw_pal_at_resp(msg, &reply);
}

void on_connect_status(int32_t connected, const char *apn, void *) {
    std::printf("pal_demo: connection %s on APN %s\n", connected ? "up" : "down", apn);
}

// Registers a custom AT command and subscribes to connection events, then
// has the simulated modem use both. Returns 0 when everything answered.
int demo_at_channel() {
    nkw_pal_at_cmd_reg command{"+QDEMO", kDemoAtId, nullptr, on_demo_at};
    if (nkw_pal_at_register(&command) != 0 ||
        nkw_pal_mbim_connect_status_indication_register(on_connect_status, nullptr) != 0) {
        return 1;
    }
    int answered = mipc_sim::send_custom_at(kDemoAtId, "AT+QDEMO=1");
    mipc_sim::push_mbim_connect_status(1, "internet");
    char response[64] = {};
    uint32_t length = 0;
    int32_t sent = nkw_pal_at_send("ATI8\r\n", 6, response, sizeof response, &length);
    std::printf("pal_demo: custom AT answered %d, ATI8 gave %d (%u bytes)\n", answered, sent,
                length);
    return answered == 0 && sent == 0 ? 0 : 1;
}

}  // namespace

int main() {
    if (nkw_pal_log_init() != 0) {
        std::fprintf(stderr, "pal_demo: log init failed\n");
        return 1;
    }
    if (nkw_pal_modem_msg_init("pal_demo") != 0) {
        std::fprintf(stderr, "pal_demo: modem session failed\n");
        nkw_pal_log_close();
        return 1;
    }
    nkw_pal_logi("DEMO", "[%s:%d]-modem session open \n", __func__, __LINE__);
    mipc_msg_register_cmd_api(kDemoCommandId, on_demo_command, 0, nullptr);

    // The simulated modem forwards a command to us, as the real one would.
    int handled =
        mipc_sim::deliver_command(kDemoCommandId, {mipc_sim::tlv_text(kParamTlv, "AT+DEMO=42")});
    std::printf("pal_demo: handler returned %d, replies sent: %zu\n", handled,
                mipc_sim::replies().size());

    handled |= demo_at_channel();

    nkw_pal_modem_msg_deinit();
    nkw_pal_logi("DEMO", "[%s:%d]-modem session closed \n", __func__, __LINE__);
    nkw_pal_log_close();
    return handled == 0 ? 0 : 1;
}
