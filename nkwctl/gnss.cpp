// gnss: a position fix from the GNSS adaptor, AGPS settings, and NMEA text
// parsed as the library parses it (for field debugging).
#include <fcntl.h>
#include <nkw_pal.h>
#include <unistd.h>

#include <cstdio>

#include "commands.h"

namespace nkwctl {

namespace gnss_group {
namespace {

constexpr unsigned int kDefaultSeconds = 30;
constexpr int kDegreeDecimals = 6;
constexpr int kMetreDecimals = 1;
constexpr unsigned int kHighestAgpsMode = 6;

unsigned int seconds = kDefaultSeconds;
unsigned int agps_mode = 0;
unsigned int agps_on = 0;
std::string nmea;

// The position is personal; the fix quality is not.
void add_location(Report &report, const nkw_pal_gnss_location &where) {
    report.number("gnss.valid", where.valid);
    report.real("gnss.latitude", where.latitude, kDegreeDecimals, true);
    report.real("gnss.longitude", where.longitude, kDegreeDecimals, true);
    report.real("gnss.altitude", where.altitude, kMetreDecimals);
    report.real("gnss.hdop", where.radius, kMetreDecimals);
    report.number("gnss.fix_quality", where.sat_type);
    report.number("gnss.satellites", where.sat_num);
}

// Puts /dev/null on a standard descriptor for the object's life. The library
// ends every NMEA epoch with "\r\n" on standard output, which would break
// -K and -J output; and when the adaptor cannot be reached it goes on with
// descriptor 0, which must not read the user's terminal (read-only, its
// start request then fails at once instead of waiting for ever).
class NullDescriptor {
   public:
    NullDescriptor(int fd, int access) : fd_(fd) {
        std::fflush(stdout);
        const int null = open("/dev/null", access | O_CLOEXEC);
        if (null >= 0 && (saved_ = dup(fd_)) >= 0) dup2(null, fd_);
        if (null >= 0) close(null);
    }
    ~NullDescriptor() {
        std::fflush(stdout);
        if (saved_ < 0) return;
        dup2(saved_, fd_);
        close(saved_);
    }
    NullDescriptor(const NullDescriptor &) = delete;
    NullDescriptor &operator=(const NullDescriptor &) = delete;

   private:
    int fd_;
    int saved_ = -1;
};

int acquire(nkw_pal_gnss_result *result) {
    const NullDescriptor input(STDIN_FILENO, O_RDONLY);
    const NullDescriptor output(STDOUT_FILENO, O_WRONLY);
    return nkw_pal_gnss_info_acquire(seconds, result);
}

int fix(const Options &options) {
    nkw_pal_gnss_result result = {};
    const int status = acquire(&result);
    if (status != 0) return fail("gnss fix", status, "no valid fix from the GNSS adaptor");
    Report report;
    add_location(report, {result.valid, result.latitude, result.longitude, result.altitude,
                          result.radius, result.sat_type, result.sat_num});
    report.number("gnss.timestamp", result.timestamp);
    report.print(options);
    return 0;
}

int parse(const Options &options) {
    nkw_pal_gnss_location where = {};
    nkw_pal_gnss_parse_location_from_nmea(nmea.c_str(), &where);
    Report report;
    add_location(report, where);
    report.print(options);
    return 0;
}

int agps_config(const Options &) {
    const int status = nkw_pal_agps_config(agps_mode);
    return status == 0 ? 0 : fail("gnss agps mode", status, "the AGPS mode was not applied");
}

int agps_enable(const Options &) {
    const int status = nkw_pal_agps_enable(static_cast<unsigned char>(agps_on));
    return status == 0 ? 0 : fail("gnss agps enable", status, "the GNSS adaptor refused");
}

// None of these needs a modem session: the adaptor has a socket of its own.
void choose(Action &action, int (*run)(const Options &)) {
    action.run = run;
    action.needs_modem = false;
}

}  // namespace
}  // namespace gnss_group

void add_gnss(CLI::App &app, Action &action) {
    using namespace gnss_group;
    auto *gnss = app.add_subcommand("gnss", "position fix, AGPS and NMEA parsing");
    gnss->require_subcommand(1);
    auto *get = gnss->add_subcommand("fix", "start the receiver and wait for a valid fix");
    get->add_option("--seconds", seconds, "how long to wait")->check(CLI::Range(1, 3600));
    get->callback([&action] { choose(action, fix); });

    auto *text = gnss->add_subcommand("nmea", "the position in NMEA text ($GNGGA and $GNRMC)");
    text->add_option("TEXT", nmea)->required();
    text->callback([&action] { choose(action, parse); });

    auto *agps = gnss->add_subcommand("agps", "AGPS settings");
    agps->require_subcommand(1);
    auto *mode = agps->add_subcommand("mode", "set AGPS and EPO as mode 0-6");
    mode->add_option("MODE", agps_mode)->required()->check(CLI::Range(0u, kHighestAgpsMode));
    mode->callback([&action] { choose(action, agps_config); });
    auto *enable = agps->add_subcommand("enable", "switch AGPS in the adaptor on (1) or off (0)");
    enable->add_option("STATE", agps_on)->required()->check(CLI::Range(0, 1));
    enable->callback([&action] { choose(action, agps_enable); });
}

}  // namespace nkwctl
