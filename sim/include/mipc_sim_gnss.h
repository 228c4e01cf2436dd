// Simulated GNSS adaptor: a server on the adaptor's abstract local socket
// that speaks its AT dialect. It answers the start and stop commands, streams
// "+ELCSNMEA" notifications from a scripted track after a start (one epoch
// of GGA and RMC closed by "+ELCSNMEAEND"), and answers the AGPS mode
// command as scripted. Part of the simulated modem library; reset() stops it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace mipc_sim {

struct GnssPosition {
    double latitude = 48.1173;  // signed decimal degrees
    double longitude = 11.516667;
    double altitude = 545.4;  // metres
    double hdop = 0.9;
    int quality = 1;  // GGA fix quality
    int satellites = 8;
};

struct GnssTrack {
    GnssPosition position;
    int epochs = 10;        // epochs streamed after a start; -1 streams without end
    int valid_after = 0;    // epochs whose RMC status is 'V' before it turns 'A'
    int interval_ms = 100;  // between epochs
    int silence_ms = 0;     // after the start, before the first epoch
    // Each write cut into pieces of this many bytes, chunk_pause_ms apart,
    // so the reader sees partial lines; 0 sends each epoch in one write.
    size_t chunk_size = 0;
    int chunk_pause_ms = 20;
    // Raw bytes sent as they are (one write each) right after a start, before
    // the track: broken lines, binary garbage, conversion characters.
    std::vector<std::string> prelude;
    bool hang_up_after = false;  // drop the connection after the last epoch
};

enum class AgpsReply {
    kOk,             // "\r\nOK\r\n"
    kSplitOk,        // "\r\nO", a pause, then "K\r\n"
    kError,          // "\r\nERROR\r\n" twice, a pause apart, then hangs up
    kNothing,        // hangs up without a word
    kPartialHangUp,  // "\r\nO", then hangs up
};

struct GnssAdaptorScript {
    GnssTrack track;
    AgpsReply agps = AgpsReply::kOk;
};

// Listens on `socket_name` in the abstract namespace. False (with the reason
// on stderr) when the name is taken or the socket cannot be made.
bool start_gnss_adaptor(const std::string &socket_name, const GnssAdaptorScript &script);
// Hangs up every connection and stops listening.
void stop_gnss_adaptor();

// Commands received, in order, without their "\r\n". Waits up to `wait_ms`
// for at least `at_least` of them.
std::vector<std::string> gnss_adaptor_commands(size_t at_least = 0, int wait_ms = 2000);
// Connections accepted so far.
int gnss_adaptor_connections();

// Building blocks of the stream, for tests that feed the parsers directly.
std::string nmea_sentence(const std::string &body);  // "$<body>*<checksum>"
std::string nmea_gga(const GnssPosition &position);
std::string nmea_rmc(char status, const GnssPosition &position);
std::string gnss_notification(const std::string &nmea);  // "\r\n+ELCSNMEA: \"<nmea>\"\r\n"
std::string gnss_epoch_end();                            // "\r\n+ELCSNMEAEND\r\n"
// One epoch as the adaptor streams it.
std::string gnss_epoch(const GnssPosition &position, char status);

}  // namespace mipc_sim
