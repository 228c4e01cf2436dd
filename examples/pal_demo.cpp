// A small daemon on the simulated modem, in steps. Each step logs a marker
// line "step N: <title>" and prints its title and what its log lines show,
// so tools/demo.sh can show the system log step by step with an explanation.
#include <nkw_pal.h>

#include <cstdio>

#include "mipc_sim.h"
#include "mipc_sim_at.h"
#include "mipc_sim_gnss.h"
#include "mipc_sim_indication.h"

namespace {

constexpr const char *kTag = "DEMO";
constexpr uint32_t kDemoCommandId = 0x8F70;
constexpr uint16_t kParamTlv = 256;
constexpr uint16_t kResultTlv = 0;

int g_step = 0;

// Starts a step: its marker in the system log, its explanation on stdout.
void step(const char *title, const char *explanation) {
    ++g_step;
    nkw_pal_logi(kTag, "[%s:%d]-step %d: %s \n", __func__, __LINE__, g_step, title);
    std::printf("step %d: %s\n%s\n\n", g_step, title, explanation);
}

mipc_result_enum on_demo_command(mipc_msg_t *msg, void *) {
    uint16_t type = kParamTlv;
    uint16_t *type_ref = &type;
    uint32_t length = 0;
    char param[256] = {};
    // Room for any parameter the command can carry, and a terminator.
    if (nkw_pal_modem_msg_get(msg, &type_ref, param, sizeof param - 1, &length) != 0) {
        nkw_pal_loge(kTag, "[%s:%d]-demo command without a usable parameter \n", __func__,
                     __LINE__);
        return MIPC_RESULT_FAILURE;
    }
    nkw_pal_logi(kTag, "[%s:%d]-demo command received, param: %s \n", __func__, __LINE__, param);

    mipc_msg_t *reply = mipc_msg_copy_hdr(msg);
    const uint32_t ok = 0;
    mipc_msg_add_tlv(reply, kResultTlv, sizeof ok, &ok);
    mipc_result_enum sent = mipc_msg_rsp(reply);
    mipc_msg_deinit(reply);
    nkw_pal_logi(kTag, "[%s:%d]-demo command answered: %d \n", __func__, __LINE__, sent);
    return sent;
}

bool open_log() {
    step("open the system log",
         "  nkw_pal_log_init creates the semaphore that guards the log level, then opens\n"
         "  the system log under the process's name. Lines written before that (this\n"
         "  step's marker and the semaphore's) reach syslog with facility user and no\n"
         "  PID; from then on they carry facility daemon and the PID. \"malloc <address>\n"
         "  <size>\" and \"free <address>\" are the library's heap records: every\n"
         "  allocation and release is logged where it happens, so a leak shows as a\n"
         "  malloc without its free.");
    return nkw_pal_log_init() == 0;
}

bool open_modem_session() {
    step("open the modem session",
         "  nkw_pal_modem_msg_init opens the daemon's session with the modem IPC\n"
         "  library (here the simulated modem); it logs nothing when it succeeds.");
    return nkw_pal_modem_msg_init("pal_demo") == 0;
}

bool answer_modem_command() {
    step("answer a command from the modem",
         "  The daemon registers a handler for a modem command; the simulated modem\n"
         "  sends one with a text parameter (TLV 256). The handler reads it with\n"
         "  nkw_pal_modem_msg_get (MODEM lines: the TLV asked for, then its length)\n"
         "  and replies with result 0.");
    mipc_msg_register_cmd_api(kDemoCommandId, on_demo_command, 0, nullptr);
    int handled =
        mipc_sim::deliver_command(kDemoCommandId, {mipc_sim::tlv_text(kParamTlv, "AT+DEMO=42")});
    std::printf("  handler returned %d, replies sent: %zu\n\n", handled,
                mipc_sim::replies().size());
    return handled == 0;
}

constexpr uint32_t kDemoAtId = 0x8F71;

// Answers the custom command with a line of its own.
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
    std::printf("  connection %s on APN %s\n", connected ? "up" : "down", apn);
}

bool use_at_channel() {
    step("AT commands both ways, and an indication",
         "  The daemon registers its own AT command (+QDEMO) and subscribes to the\n"
         "  connection status; the simulated modem sends it AT+QDEMO=1, which it\n"
         "  answers through nkw_pal_at_resp, and reports a connection on \"internet\".\n"
         "  Then the daemon sends ATI8 to the modem with nkw_pal_at_send. The \"set at\n"
         "  result\" line is written at error level on every answer, by design: log\n"
         "  readers on the module look for it there; it is not a failure.");
    nkw_pal_at_cmd_reg command{"+QDEMO", kDemoAtId, nullptr, on_demo_at};
    if (nkw_pal_at_register(&command) != 0 ||
        nkw_pal_mbim_connect_status_indication_register(on_connect_status, nullptr) != 0) {
        return false;
    }
    int answered = mipc_sim::send_custom_at(kDemoAtId, "AT+QDEMO=1");
    mipc_sim::push_mbim_connect_status(1, "internet");
    char response[64] = {};
    uint32_t length = 0;
    int32_t sent = nkw_pal_at_send("ATI8\r\n", 6, response, sizeof response, &length);
    std::printf("  custom AT answered %d, ATI8 gave %d (%u bytes)\n\n", answered, sent, length);
    return answered == 0 && sent == 0;
}

bool show_gnss_fix() {
    step("a GNSS fix with its time",
         "  The simulated GNSS adaptor listens on the adaptor's socket and streams a\n"
         "  track that becomes valid after two epochs; nkw_pal_gnss_info_acquire\n"
         "  starts it, reads NMEA until a valid fix (at most 10 s) and stops it. The\n"
         "  fix's time is shown as local-time text (nkw_pal_TimeStamp2TimeStr).");
    mipc_sim::GnssAdaptorScript script;
    script.track.valid_after = 2;
    script.track.interval_ms = 200;
    if (!mipc_sim::start_gnss_adaptor("mtk_gnssadp_at", script)) {
        std::printf("  the GNSS adaptor's socket is in use: fix skipped\n\n");
        return true;
    }
    nkw_pal_gnss_result fix{};
    const int status = nkw_pal_gnss_info_acquire(10, &fix);
    mipc_sim::stop_gnss_adaptor();
    if (status != 0) {
        std::printf("  no GNSS fix (%d)\n\n", status);
        return false;
    }
    char when[NKW_PAL_TIME_STR_SIZE] = {};
    nkw_pal_TimeStamp2TimeStr(static_cast<long>(fix.timestamp), when);
    std::printf("  fix %.6f %.6f, altitude %.1f m, %d satellites, at %s\n\n", fix.latitude,
                fix.longitude, fix.altitude, fix.sat_num, when);
    return true;
}

bool show_sim_and_network() {
    step("SIM, registration and signal",
         "  The daemon reads what the simulated modem's SIM and serving network\n"
         "  report: the SIM status code (0: ready), the IMSI, the packet-service\n"
         "  registration (1: home), the serving cell id, the signal strength from\n"
         "  AT+ECSQ in dBm, and the module's IMEI. Each query logs its answer.");
    char imsi[16] = {};
    char imei[24] = {};
    uint32_t registration = 0;
    uint64_t cellid = 0;
    int32_t rssi = 0;
    const int32_t sim_status = nkw_pal_get_sim_status(0);
    const bool ok = nkw_pal_get_imsi(imsi) == 0 && nkw_pal_get_register_state(&registration) == 0 &&
                    nkw_pal_get_cellid(&cellid) == 0 && nkw_pal_get_rssi(&rssi) == 0 &&
                    nkw_pal_get_imei(imei) == 0;
    std::printf("  SIM status %d, IMSI %s, registration %u, cell %llu, RSSI %d dBm, IMEI %s\n\n",
                sim_status, imsi, registration, static_cast<unsigned long long>(cellid), rssi,
                imei);
    return ok && sim_status == 0;
}

void close_all() {
    step("close the modem session and the log",
         "  nkw_pal_modem_msg_deinit ends the session; nkw_pal_log_close closes the\n"
         "  system log and releases the semaphore (its two heap records are freed).");
    nkw_pal_modem_msg_deinit();
    nkw_pal_log_close();
}

}  // namespace

int main() {
    if (!open_log()) {
        std::fprintf(stderr, "pal_demo: log init failed\n");
        return 1;
    }
    if (!open_modem_session()) {
        std::fprintf(stderr, "pal_demo: modem session failed\n");
        nkw_pal_log_close();
        return 1;
    }
    bool ok = answer_modem_command();
    ok = use_at_channel() && ok;
    ok = show_gnss_fix() && ok;
    ok = show_sim_and_network() && ok;
    close_all();
    return ok ? 0 : 1;
}
