// Scenario areas: data-call answers, GNSS track, SAR and modem time, each
// driving its model's controls.
#include "scenario_areas.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>

#include "core.h"
#include "mipc_sim_data_call.h"
#include "mipc_sim_gnss.h"
#include "mipc_sim_nvram.h"
#include "mipc_sim_sar.h"
#include "mipc_sim_time.h"

namespace mipc_sim::scenario {

using namespace schema;

namespace {

// ---- Data calls -------------------------------------------------------------------

constexpr Name kPdpTypes[] = {{"ipv4", 1}, {"ipv6", 2}, {"ipv4v6", 3}};
constexpr size_t kDnsServers = 2;  // primary and secondary

template <size_t N>
bool parse_address(const std::string &text, std::array<uint8_t, N> *out) {
    static_assert(N == 4 || N == 16, "IPv4 or IPv6");
    std::array<uint8_t, N> bytes{};
    if (inet_pton(N == 4 ? AF_INET : AF_INET6, text.c_str(), bytes.data()) != 1) return false;
    if (out != nullptr) *out = bytes;
    return true;
}

template <size_t N>
bool address(const json &object, const char *key, const std::string &where, Problem *problem) {
    const char *expected = N == 4 ? "an IPv4 address such as \"10.64.0.2\""
                                  : "an IPv6 address such as \"2001:db8::2\"";
    if (!object.contains(key)) return true;
    return (object[key].is_string() && parse_address<N>(object[key].get<std::string>(), nullptr)) ||
           fail(problem, where + "/" + key, expected);
}

template <size_t N>
bool dns_list(const json &object, const char *key, const std::string &where, Problem *problem) {
    if (!object.contains(key)) return true;
    const json &list = object[key];
    const std::string at = where + "/" + key;
    if (!list.is_array() || list.size() > kDnsServers)
        return fail(problem, at, "an array of at most 2 addresses (primary, secondary)");
    for (size_t i = 0; i < list.size(); ++i) {
        json entry = {{std::to_string(i), list[i]}};
        if (!address<N>(entry, std::to_string(i).c_str(), at, problem)) return false;
    }
    return true;
}

template <size_t N>
std::array<uint8_t, N> address_at(const json &object, const char *key) {
    std::array<uint8_t, N> bytes{};
    if (object.contains(key)) parse_address<N>(object[key].get<std::string>(), &bytes);
    return bytes;
}

template <size_t N>
std::array<uint8_t, N> dns_at(const json &object, const char *key, size_t index) {
    std::array<uint8_t, N> bytes{};
    if (object.contains(key) && object[key].size() > index)
        parse_address<N>(object[key][index].get<std::string>(), &bytes);
    return bytes;
}

constexpr const char *kAddressKeys[] = {"ipv4", "ipv6", "ipv4_dns", "ipv6_dns"};

// ---- GNSS -------------------------------------------------------------------------

constexpr Name kAgpsReplies[] = {
    {"ok", static_cast<uint32_t>(AgpsReply::kOk)},
    {"split_ok", static_cast<uint32_t>(AgpsReply::kSplitOk)},
    {"error", static_cast<uint32_t>(AgpsReply::kError)},
    {"nothing", static_cast<uint32_t>(AgpsReply::kNothing)},
    {"partial_hang_up", static_cast<uint32_t>(AgpsReply::kPartialHangUp)}};
constexpr size_t kMaxAbstractName = sizeof(sockaddr_un::sun_path) - 1;
constexpr int64_t kMaxMs = 600000;

// The name the library dials: its own, or under the sandbox build the one
// carrying the sandbox root (so parallel tests never meet).
std::string adaptor_name(const json &gnss) {
    if (gnss.contains("socket")) return gnss["socket"].get<std::string>();
    const char *root = std::getenv("NKW_PAL_SANDBOX_ROOT");
    return root != nullptr && *root == '/' ? std::string(root) + "/mtk_gnssadp_at"
                                           : "mtk_gnssadp_at";
}

bool abstract_name_in_use(const std::string &name) {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, name.data(), name.size());
    const socklen_t length =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const bool in_use =
        bind(fd, reinterpret_cast<sockaddr *>(&address), length) != 0 && errno == EADDRINUSE;
    close(fd);
    return in_use;
}

struct Started {
    std::mutex lock;
    bool gnss = false;
};

Started &started() {
    static Started instance;
    return instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(started().lock);
    started().gnss = false;  // the adaptor's own reset stops it
});

// ---- SAR --------------------------------------------------------------------------

// Item sizes the library reads.
constexpr size_t kBodySarSize = 36;
constexpr size_t kTaSarSize = 52;

std::vector<uint8_t> sar_item_enabled(bool enabled, size_t size) {
    return enabled ? sar_item(1, 1, size) : sar_item(0, 0, size);
}

// ---- Modem time -------------------------------------------------------------------

constexpr int64_t kMinutesPerDay = 24 * 60;

// "YYYY-MM-DDTHH:MM:SSZ" as milliseconds since 1970; false for anything else.
bool utc_ms(const std::string &text, uint64_t *ms) {
    tm parts{};
    char zone = 0, end = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%c%c", &parts.tm_year, &parts.tm_mon,
                    &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec, &zone,
                    &end) != 7 ||
        zone != 'Z' || parts.tm_year < 1970)
        return false;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    const tm asked = parts;
    const time_t seconds = timegm(&parts);
    // timegm normalises 31 February and such: a changed field was not a date.
    if (seconds < 0 || parts.tm_mon != asked.tm_mon || parts.tm_mday != asked.tm_mday ||
        parts.tm_hour != asked.tm_hour || parts.tm_min != asked.tm_min ||
        parts.tm_sec != asked.tm_sec)
        return false;
    if (ms != nullptr) *ms = static_cast<uint64_t>(seconds) * 1000u;
    return true;
}

}  // namespace

bool check_data_call(const json &call, const std::string &where, Problem *problem) {
    return only_keys(call, where,
                     {"apn", "result_code", "id", "interface_id", "pdp_type", "network_apn", "ipv4",
                      "ipv6", "ipv4_dns", "ipv6_dns"},
                     problem) &&
           text(call, "apn", where, true, problem) &&
           number(call, "result_code", where, 0xFFFFFFFF, false, problem) &&
           number(call, "id", where, 255, false, problem) &&
           number(call, "interface_id", where, 255, false, problem) &&
           named(call, "pdp_type", where, kPdpTypes, problem) &&
           text(call, "network_apn", where, false, problem) &&
           address<4>(call, "ipv4", where, problem) && address<16>(call, "ipv6", where, problem) &&
           dns_list<4>(call, "ipv4_dns", where, problem) &&
           dns_list<16>(call, "ipv6_dns", where, problem);
}

void apply_data_call(const json &call) {
    DataCallAnswer answer;
    answer.result_code = call.value("result_code", answer.result_code);
    answer.id = call.value("id", answer.id);
    answer.interface_id = call.value("interface_id", answer.interface_id);
    answer.pdp_type =
        call.contains("pdp_type") ? static_cast<int>(value_of(call, "pdp_type", kPdpTypes, 0)) : -1;
    answer.apn = call.value("network_apn", answer.apn);
    // Any address given scripts them all: those left out the network did not give.
    for (const char *key : kAddressKeys) answer.addresses_set |= call.contains(key);
    answer.v4_addr = address_at<4>(call, "ipv4");
    answer.v6_addr = address_at<16>(call, "ipv6");
    answer.v4_dns_primary = dns_at<4>(call, "ipv4_dns", 0);
    answer.v4_dns_secondary = dns_at<4>(call, "ipv4_dns", 1);
    answer.v6_dns_primary = dns_at<16>(call, "ipv6_dns", 0);
    answer.v6_dns_secondary = dns_at<16>(call, "ipv6_dns", 1);
    set_data_call_answer(call["apn"].get<std::string>(), answer);
}

bool check_gnss(const json &gnss, const std::string &where, Problem *problem) {
    if (!only_keys(gnss, where,
                   {"socket", "latitude", "longitude", "altitude", "hdop", "quality", "satellites",
                    "epochs", "valid_after", "interval_ms", "silence_ms", "chunk_size",
                    "chunk_pause_ms", "prelude", "hang_up_after", "agps"},
                   problem))
        return false;
    if (gnss.contains("socket") &&
        (!gnss["socket"].is_string() || gnss["socket"].get<std::string>().empty() ||
         gnss["socket"].get<std::string>().size() > kMaxAbstractName))
        return fail(problem, where + "/socket", "a name of 1 to 107 bytes");
    if (gnss.contains("prelude")) {
        const json &prelude = gnss["prelude"];
        bool strings = prelude.is_array();
        for (size_t i = 0; strings && i < prelude.size(); ++i) strings = prelude[i].is_string();
        if (!strings) return fail(problem, where + "/prelude", "an array of strings");
    }
    return real(gnss, "latitude", where, -90, 90, problem) &&
           real(gnss, "longitude", where, -180, 180, problem) &&
           real(gnss, "altitude", where, -1000, 100000, problem) &&
           real(gnss, "hdop", where, 0, 99.9, problem) &&
           number(gnss, "quality", where, 8, false, problem) &&
           number(gnss, "satellites", where, 99, false, problem) &&
           integer(gnss, "epochs", where, -1, 1000000, false, problem) &&
           number(gnss, "valid_after", where, 1000000, false, problem) &&
           number(gnss, "interval_ms", where, kMaxMs, false, problem) &&
           number(gnss, "silence_ms", where, kMaxMs, false, problem) &&
           number(gnss, "chunk_size", where, 65536, false, problem) &&
           number(gnss, "chunk_pause_ms", where, kMaxMs, false, problem) &&
           flag(gnss, "hang_up_after", where, problem) &&
           named(gnss, "agps", where, kAgpsReplies, problem);
}

bool start_gnss(const json &gnss, std::string *error) {
    GnssAdaptorScript script;
    GnssPosition &position = script.track.position;
    position.latitude = gnss.value("latitude", position.latitude);
    position.longitude = gnss.value("longitude", position.longitude);
    position.altitude = gnss.value("altitude", position.altitude);
    position.hdop = gnss.value("hdop", position.hdop);
    position.quality = gnss.value("quality", position.quality);
    position.satellites = gnss.value("satellites", position.satellites);
    GnssTrack &track = script.track;
    track.epochs = gnss.value("epochs", track.epochs);
    track.valid_after = gnss.value("valid_after", track.valid_after);
    track.interval_ms = gnss.value("interval_ms", track.interval_ms);
    track.silence_ms = gnss.value("silence_ms", track.silence_ms);
    track.chunk_size = gnss.value("chunk_size", track.chunk_size);
    track.chunk_pause_ms = gnss.value("chunk_pause_ms", track.chunk_pause_ms);
    track.prelude = gnss.value("prelude", track.prelude);
    track.hang_up_after = gnss.value("hang_up_after", track.hang_up_after);
    script.agps = static_cast<AgpsReply>(
        value_of(gnss, "agps", kAgpsReplies, static_cast<uint32_t>(script.agps)));

    const std::string name = adaptor_name(gnss);
    if (abstract_name_in_use(name)) return true;
    if (!start_gnss_adaptor(name, script)) {
        *error = "the GNSS adaptor cannot listen on @" + name;
        return false;
    }
    std::lock_guard<std::mutex> guard(started().lock);
    started().gnss = true;
    return true;
}

void stop_gnss() {
    bool ours = false;
    {
        std::lock_guard<std::mutex> guard(started().lock);
        std::swap(ours, started().gnss);
    }
    if (ours) stop_gnss_adaptor();
}

bool check_sar(const json &sar, const std::string &where, Problem *problem) {
    return only_keys(sar, where, {"body_sar", "ta_sar", "mode", "index"}, problem) &&
           flag(sar, "body_sar", where, problem) && flag(sar, "ta_sar", where, problem) &&
           number(sar, "mode", where, 0xFFFFFFFF, false, problem) &&
           number(sar, "index", where, 0xFFFFFFFF, false, problem);
}

void apply_sar(const json &sar) {
    if (sar.contains("body_sar"))
        set_nvram_item(kBodySarLid, sar_item_enabled(sar["body_sar"].get<bool>(), kBodySarSize));
    if (sar.contains("ta_sar"))
        set_nvram_item(kTaSarLid, sar_item_enabled(sar["ta_sar"].get<bool>(), kTaSarSize));
    const SarTable table = sar_table();
    set_sar_table(sar.value("mode", table.mode), sar.value("index", table.index));
}

bool check_modem_time(const json &time, const std::string &where, Problem *problem) {
    if (!only_keys(time, where, {"utc", "time_ms", "tz_offset_min", "dst", "source"}, problem))
        return false;
    if (time.contains("utc") == time.contains("time_ms"))
        return fail(problem, where + "/utc", "either utc or time_ms (one of them)");
    if (time.contains("utc") &&
        !(time["utc"].is_string() && utc_ms(time["utc"].get<std::string>(), nullptr)))
        return fail(problem, where + "/utc", "a time such as \"2026-05-01T08:30:00Z\"");
    return number(time, "time_ms", where, 253402300799999ULL, false, problem) &&
           integer(time, "tz_offset_min", where, -kMinutesPerDay, kMinutesPerDay, false, problem) &&
           number(time, "dst", where, 1, false, problem) &&
           number(time, "source", where, 0xFFFFFFFF, false, problem);
}

void apply_modem_time(const json &time) {
    ModemTime modem;
    if (time.contains("utc")) {
        utc_ms(time["utc"].get<std::string>(), &modem.time_ms);
    } else {
        modem.time_ms = time["time_ms"].get<uint64_t>();
    }
    modem.tz_offset_min = time.value("tz_offset_min", modem.tz_offset_min);
    modem.dst = time.value("dst", modem.dst);
    modem.time_source = time.value("source", 1u);  // as the network gave it
    set_modem_time(modem);
}

}  // namespace mipc_sim::scenario
