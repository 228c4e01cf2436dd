// The adaptor's notifications: command names, quoted strings, whole lines
// and what one read of the socket turns into.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "location/gnss_test_util.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

struct CmdCase {
    const char *text;
    const char *cmd;
    bool match;
    const char *rest;  // the text at the cursor afterwards
};

TEST(GnssAtParser, CommandNamesEndAtASeparator) {
    const CmdCase cases[] = {
        {"\r\n+ELCSNMEA: \"x\"\r\n", "\r\n+ELCSNMEA", true, "\"x\"\r\n"},
        {"\r\n+ELCSNMEAEND\r\n", "\r\n+ELCSNMEA", false, "\r\n+ELCSNMEAEND\r\n"},
        {"\r\n+ELCSNMEAEND\r\n", "\r\n+ELCSNMEAEND", true, ""},
        {"\r\n+ELCSNMEA=\t \"x\"", "\r\n+ELCSNMEA", true, "\"x\""},
        {"\r\n+ELCSNMEA", "\r\n+ELCSNMEA", true, ""},
        {"\r\n+ELCSNME", "\r\n+ELCSNMEA", false, "\r\n+ELCSNME"},
        {"\r\n+ELCSNMEA,\"x\"", "\r\n+ELCSNMEA", false, "\r\n+ELCSNMEA,\"x\""},
    };
    for (const CmdCase &c : cases) {
        std::string text = c.text;
        char *cursor = text.data();
        EXPECT_EQ(c.match, nkw_pal_gnss_at_parse_cmd(&cursor, c.cmd)) << c.text;
        EXPECT_STREQ(c.rest, cursor) << c.text;
    }
}

struct StringCase {
    const char *text;
    int size;
    bool ok;
    const char *out;
    const char *rest;
};

TEST(GnssAtParser, QuotedStrings) {
    const StringCase cases[] = {
        {"\"abc\", next", 16, true, "abc", "next"},
        {"\"abc\"\r\n", 16, true, "abc", ""},
        {"  \"\",x", 16, true, "", "x"},
        {", \"abc\"", 16, false, "", "\"abc\""},
        {"12,\"abc\"", 16, false, "", "\"abc\""},
        {"\"abc", 16, false, "", ""},
        {"plain", 16, false, "", ""},
        {"\"abcd\"", 6, true, "abcd", ""},
        {"\"abcd\"", 5, false, "", "\"abcd\""},
    };
    for (const StringCase &c : cases) {
        std::string text = c.text;
        char *cursor = text.data();
        char out[32] = {};
        EXPECT_EQ(c.ok, nkw_pal_gnss_at_parse_string(&cursor, out, c.size)) << c.text;
        EXPECT_STREQ(c.out, out) << c.text;
        EXPECT_STREQ(c.rest, cursor) << c.text;
    }
    EXPECT_TRUE(syslog_contains("mtk_at_parse_string() len=4 > output_size=5 \n"));
}

struct LineCase {
    const char *name;
    std::string line;
    bool ok;
    int valid;  // afterwards; the location starts invalid
    const char *message;
};

TEST(GnssAtParser, LinesOfTheAdaptor) {
    const std::string rmc = mipc_sim::nmea_rmc('A', mipc_sim::GnssPosition{});
    const LineCase cases[] = {
        {"notification", mipc_sim::gnss_notification(rmc), true, 1, "IsValid:A 1. \n"},
        {"epoch end", mipc_sim::gnss_epoch_end(), true, 0,
         "[location_srv]================================================== \n"},
        {"end is not a notification", "\r\n+ELCSNMEAEND: \"" + rmc + "\"\r\n", true, 0,
         "=========="},
        {"unknown name", "\r\n+ELCSNMEAX: \"" + rmc + "\"\r\n", false, 0,
         "wrong at_cmd=[\r\n+ELCSNMEAX"},
        {"no quotes", "\r\n+ELCSNMEA: " + rmc + "\r\n", false, 0, "MTK_GNSS_AT_NMEA failed. \n"},
        {"payload too long", "\r\n+ELCSNMEA: \"" + std::string(600, 'x') + "\"\r\n", false, 0,
         "len=600 > output_size=512"},
        {"conversions", "\r\n+ELCSNMEA%n%s: \"%n\"\r\n", false, 0,
         "wrong at_cmd=[\r\n+ELCSNMEA%n%s"},
        {"empty", "", false, 0, "wrong at_cmd=[]. \n"},
    };
    for (const LineCase &c : cases) {
        nkw_pal_gnss_info.location.valid = 0;
        std::string line = c.line;
        EXPECT_EQ(c.ok, nkw_pal_gnss_at_client_parser(line.data())) << c.name;
        EXPECT_EQ(c.valid, nkw_pal_gnss_info.location.valid) << c.name;
        EXPECT_TRUE(syslog_contains(c.message)) << c.name;
    }
    EXPECT_EQ(&nkw_pal_gnss_info, nkw_pal_gnss_ops_get_gnss_info());
    EXPECT_FALSE(nkw_pal_gnss_at_client_parser(nullptr));
}

// One end of a socket pair, read by the library; the test writes the other.
struct Feed {
    int fds[2] = {-1, -1};
    Feed() { EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, fds)); }
    ~Feed() {
        close(fds[0]);
        close(fds[1]);
    }
    void send_bytes(const std::string &bytes) {
        ASSERT_EQ(static_cast<ssize_t>(bytes.size()), write(fds[1], bytes.data(), bytes.size()));
    }
};

struct ReadCase {
    const char *name;
    std::string data;
    int valid;            // afterwards; the location starts invalid
    const char *message;  // expected in the log
};

TEST(GnssDataHandle, SplitsOneReadIntoLines) {
    const mipc_sim::GnssPosition at;
    const std::string epoch = mipc_sim::gnss_epoch(at, 'A');
    const std::string rmc = mipc_sim::gnss_notification(mipc_sim::nmea_rmc('A', at));
    const ReadCase cases[] = {
        {"whole epoch", epoch, 1, "latitude:4807.0380 48.117298. \n"},
        {"line cut at the end of the read", rmc.substr(0, rmc.size() - 1), 0,
         "gps receive data %s"},
        {"read ends after an opening line", epoch + "\r\n", 1, "[location_srv]unexpected data \n"},
        {"opening line alone", "\r\n+ELCSNMEAEND", 0, "[location_srv]  00000 0d 0a   \n"},
        {"binary garbage", std::string("\x01\xff\0\n\r\n\0\x80%n%s\r\n", 14) + rmc, 1,
         "wrong at_cmd=[\x01\xff]. \n"},
        {"conversions in the data", "%n%s%x%n\n", 0, "receive data %s] %n%s%x%n\n"},
        {"over-long line is cut", "\r\n+ELCSNMEA: \"" + std::string(5000, 'x') + "\"\r\n" + rmc, 1,
         "wrong at_cmd=["},
    };
    for (const ReadCase &c : cases) {
        nkw::test::syslog_clear();
        nkw_pal_gnss_info.location.valid = 0;
        Feed feed;
        feed.send_bytes(c.data);
        EXPECT_TRUE(nkw_pal_gnss_gnss_data_handle(feed.fds[0])) << c.name;
        EXPECT_EQ(c.valid, nkw_pal_gnss_info.location.valid) << c.name;
        EXPECT_TRUE(syslog_contains(c.message)) << c.name;
    }
}

TEST(GnssDataHandle, AHangUpClosesTheDescriptor) {
    Feed feed;
    close(feed.fds[1]);
    feed.fds[1] = -1;
    EXPECT_FALSE(nkw_pal_gnss_gnss_data_handle(feed.fds[0]));
    EXPECT_FALSE(nkw::test::fd_is_open(feed.fds[0]));
    feed.fds[0] = -1;
    EXPECT_TRUE(syslog_contains("the connection between EM and GNSS Adaptor is broken \n"));
}

TEST(GnssRequests, StartAndStopCommands) {
    Feed feed;
    nkw_pal_gnss_info.fd = feed.fds[0];
    EXPECT_TRUE(nkw_pal_gnss_ops_start_gnss());
    EXPECT_TRUE(nkw_pal_gnss_ops_stop_gnss());
    char got[64] = {};
    EXPECT_GT(read(feed.fds[1], got, sizeof got - 1), 0);
    EXPECT_STREQ("AT+ELCSSTART=\r\nAT+ELCSSTOP=\r\n", got);
    EXPECT_TRUE(syslog_contains("[location_srv]start gnss fd:"));
    EXPECT_TRUE(syslog_contains("[location_srv]stop gnss sucessful. \n"));

    // A peer that hung up: no SIGPIPE, a refusal with the error text
    // logged literally in the place of the format.
    close(feed.fds[1]);
    feed.fds[1] = -1;
    EXPECT_FALSE(nkw_pal_gnss_start_request(feed.fds[0]));
    EXPECT_TRUE(syslog_contains("[location_srv]write() failed, reason=[%s]%d.] Broken pipe"));
    nkw_pal_gnss_info.fd = -1;
    EXPECT_FALSE(nkw_pal_gnss_ops_stop_gnss());
    EXPECT_TRUE(syslog_contains("[location_srv]stop gnss failed. \n"));
}

TEST(GnssDump, SixteenBytesALine) {
    unsigned char bytes[20];
    for (int i = 0; i < 20; ++i) bytes[i] = static_cast<unsigned char>(i);
    nkw_pal_gnss_dump_buff(bytes, 20);
    EXPECT_TRUE(syslog_contains("[location_srv]len=20. \n"));
    EXPECT_TRUE(syslog_contains(
        "[location_srv]  00000 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f   \n"));
    EXPECT_TRUE(syslog_contains("[location_srv]  00010 10 11 12 13   \n"));
    nkw_pal_gnss_dump_buff(nullptr, 4);
    nkw_pal_gnss_dump_buff(bytes, -1);
    EXPECT_TRUE(syslog_contains("[location_srv]len=-1. \n"));
}

}  // namespace
