// Shared pieces of the location tests: the per-test adaptor socket and the
// standard track position.
#pragma once

#include <fcntl.h>

#include <string>

#include "mipc_sim_gnss.h"

extern "C" const char *nkw_pal_sandbox_gnss_socket_name(void);

namespace nkw::test {

// Starts the simulated adaptor where this test's library looks for it.
inline bool start_adaptor(const mipc_sim::GnssAdaptorScript &script) {
    return mipc_sim::start_gnss_adaptor(nkw_pal_sandbox_gnss_socket_name(), script);
}

inline bool fd_is_open(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

// A GGA sentence with the given coordinate fields, the rest plausible.
inline std::string gga_with(const std::string &lat, const std::string &ns, const std::string &lon,
                            const std::string &ew,
                            const std::string &tail = "1,08,0.9,545.4,M,47.0,M,,") {
    return mipc_sim::nmea_sentence("GNGGA,120000.00," + lat + "," + ns + "," + lon + "," + ew +
                                   "," + tail);
}

}  // namespace nkw::test
