// A small daemon on the simulated modem: it opens the log and the modem
// session, registers a command handler, has the (simulated) modem send it a
// command, reads the command's parameter and answers it. Its log lines go to
// the system log, to be read with logread as on the module.
#include <nkw_pal.h>

#include <cstdio>
#include <cstring>

#include "mipc_sim.h"
#include "mipc_sim_gnss.h"

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

// Starts the simulated GNSS adaptor on the adaptor's own socket name, waits
// for a fix (the track turns valid after two epochs) and prints it with its
// time as local-time text. False only when an acquisition ran and failed.
bool show_gnss_fix() {
    mipc_sim::GnssAdaptorScript script;
    script.track.valid_after = 2;
    script.track.interval_ms = 200;
    if (!mipc_sim::start_gnss_adaptor("mtk_gnssadp_at", script)) {
        std::printf("pal_demo: GNSS adaptor socket in use, fix skipped\n");
        return true;
    }
    nkw_pal_gnss_result fix{};
    const int status = nkw_pal_gnss_info_acquire(10, &fix);
    mipc_sim::stop_gnss_adaptor();
    if (status != 0) {
        std::printf("pal_demo: no GNSS fix (%d)\n", status);
        return false;
    }
    char when[NKW_PAL_TIME_STR_SIZE] = {};
    nkw_pal_TimeStamp2TimeStr(static_cast<long>(fix.timestamp), when);
    std::printf("pal_demo: GNSS fix %.6f %.6f alt %.1f m, %d satellites, at %s\n", fix.latitude,
                fix.longitude, fix.altitude, fix.sat_num, when);
    return true;
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

    const bool fixed = show_gnss_fix();

    nkw_pal_modem_msg_deinit();
    nkw_pal_logi("DEMO", "[%s:%d]-modem session closed \n", __func__, __LINE__);
    nkw_pal_log_close();
    return handled == 0 && fixed ? 0 : 1;
}
