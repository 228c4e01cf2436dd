// Whole acquisitions against the simulated adaptor.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <thread>

#include "device/clock_test_util.h"
#include "location/gnss_test_util.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;
using Clock = std::chrono::steady_clock;

namespace {

const std::vector<std::string> kStartStop = {"AT+ELCSSTART=", "AT+ELCSSTOP="};

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

mipc_sim::GnssAdaptorScript track(int valid_after, int epochs = 10, int interval_ms = 50) {
    mipc_sim::GnssAdaptorScript script;
    script.track.valid_after = valid_after;
    script.track.epochs = epochs;
    script.track.interval_ms = interval_ms;
    return script;
}

TEST(GnssAcquire, FixOnceTheTrackTurnsValid) {
    nkw::test::use_zone("UTC0");
    nkw_pal_sandbox_clock_set(1709251200, 0, 1);
    mipc_sim::GnssAdaptorScript script = track(3);
    script.track.position = {-33.8568, -151.2153, 58.0, 1.4, 2, 12};
    // Noise before the track must not stop it.
    script.track.prelude = {"\r\nOK\r\n", std::string("\x00\x01\xfe%n%s\n", 8),
                            "\r\n+ELCSNMEA: \"$GNRMC,1,%s%n,\"\r\n"};
    ASSERT_TRUE(nkw::test::start_adaptor(script));

    nkw_pal_gnss_result out;
    std::memset(&out, 0xAB, sizeof out);
    ASSERT_EQ(0, nkw_pal_gnss_info_acquire(30, &out));
    EXPECT_EQ(1, out.valid);
    EXPECT_NEAR(-33.8568, out.latitude, 1e-4);
    EXPECT_NEAR(-151.2153, out.longitude, 1e-4);
    EXPECT_FLOAT_EQ(58.0f, out.altitude);
    EXPECT_FLOAT_EQ(1.4f, out.radius);
    EXPECT_EQ(2, out.sat_type);
    EXPECT_EQ(12, out.sat_num);
    EXPECT_GE(out.timestamp, 1709251200);
    EXPECT_LE(out.timestamp, 1709251200 + 30);

    EXPECT_EQ(kStartStop, mipc_sim::gnss_adaptor_commands(2));
    EXPECT_FALSE(nkw::test::fd_is_open(nkw_pal_gnss_info.fd));
    EXPECT_FALSE(nkw::test::fd_is_open(nkw_pal_gnss_info.epfd));
    EXPECT_TRUE(syslog_contains("[location_srv]handle gnss data success. \n"));
    EXPECT_TRUE(syslog_contains("[location_srv]current time " + std::to_string(out.timestamp)));
    EXPECT_TRUE(syslog_contains("[location_srv]acquisition_duration is 30 s \n"));
}

TEST(GnssAcquire, AVoidStatusEndsOnlyByTheDuration) {
    ASSERT_TRUE(nkw::test::start_adaptor(track(1000, -1, 100)));
    const auto start = Clock::now();
    nkw_pal_gnss_result out{};
    EXPECT_EQ(-1, nkw_pal_gnss_info_acquire(1, &out));
    // More than one whole second of the clock must pass.
    EXPECT_GE(seconds_since(start), 1.0);
    EXPECT_EQ(0, out.valid);
    EXPECT_EQ(kStartStop, mipc_sim::gnss_adaptor_commands(2));
    EXPECT_FALSE(nkw::test::fd_is_open(nkw_pal_gnss_info.fd));
    EXPECT_FALSE(nkw::test::fd_is_open(nkw_pal_gnss_info.epfd));
    EXPECT_TRUE(syslog_contains(
        "[location_srv]quarn gps location more than acquisition_duration time. \n"));
}

TEST(GnssAcquire, AVoidStatusEndsAfter2000WakeUps) {
    // Only errors are written, so the rounds are not paced by the log.
    nkw_pal_log_set_level(NKW_PAL_LOG_ERROR);
    ASSERT_TRUE(nkw::test::start_adaptor(track(1 << 30, -1, 2)));
    const auto start = Clock::now();
    nkw_pal_gnss_result out{};
    EXPECT_EQ(-1, nkw_pal_gnss_info_acquire(3600, &out));
    EXPECT_LT(seconds_since(start), 600.0);
    EXPECT_EQ(kStartStop, mipc_sim::gnss_adaptor_commands(2));
    EXPECT_FALSE(nkw::test::fd_is_open(nkw_pal_gnss_info.fd));
}

TEST(GnssAcquire, TheDurationIsCheckedOnlyBetweenWakeUps) {
    // Silent for longer than the duration, then a valid fix: it is taken.
    mipc_sim::GnssAdaptorScript script = track(0, 5);
    script.track.silence_ms = 2500;
    ASSERT_TRUE(nkw::test::start_adaptor(script));
    const auto start = Clock::now();
    nkw_pal_gnss_result out{};
    EXPECT_EQ(0, nkw_pal_gnss_info_acquire(1, &out));
    EXPECT_GE(seconds_since(start), 2.5);
    EXPECT_EQ(1, out.valid);
}

TEST(GnssAcquire, ReadsThatCutNotificationsLoseThem) {
    mipc_sim::GnssAdaptorScript script = track(0, -1, 50);
    script.track.chunk_size = 16;
    ASSERT_TRUE(nkw::test::start_adaptor(script));
    nkw_pal_gnss_result out{};
    EXPECT_EQ(-1, nkw_pal_gnss_info_acquire(1, &out));
    EXPECT_TRUE(syslog_contains("[location_srv]unexpected data \n"));
    EXPECT_TRUE(syslog_contains("[location_srv]wrong at_cmd=["));
}

TEST(GnssAcquire, AFailedConnectionCarriesOnWithDescriptor0) {
    // No adaptor: the connection fails with 0, and descriptor 0 (here one
    // end of a socket pair in place of stdin) is what the run talks to.
    int pair[2];
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, pair));
    const int saved_stdin = dup(0);
    ASSERT_EQ(0, dup2(pair[0], 0));
    close(pair[0]);

    int status = 1;
    nkw_pal_gnss_result out{};
    std::thread run([&] { status = nkw_pal_gnss_info_acquire(30, &out); });
    char got[64] = {};
    EXPECT_GT(read(pair[1], got, sizeof got - 1), 0);
    EXPECT_STREQ("AT+ELCSSTART=\r\n", got);
    const std::string epoch = mipc_sim::gnss_epoch(mipc_sim::GnssPosition{}, 'A');
    EXPECT_EQ(static_cast<ssize_t>(epoch.size()), write(pair[1], epoch.data(), epoch.size()));
    run.join();
    std::memset(got, 0, sizeof got);
    EXPECT_GT(read(pair[1], got, sizeof got - 1), 0);
    EXPECT_STREQ("AT+ELCSSTOP=\r\n", got);

    EXPECT_EQ(0, status);
    EXPECT_NEAR(48.1173, out.latitude, 1e-4);
    EXPECT_EQ(0, nkw_pal_gnss_info.fd);
    EXPECT_TRUE(syslog_contains("socket_tcp_client_connect_local() connect() failed, abstract=1"));
    EXPECT_TRUE(syslog_contains(", fd[0]. \n"));
    dup2(saved_stdin, 0);
    close(saved_stdin);
    close(pair[1]);
}

TEST(GnssAcquire, ANullResultIsRefusedBeforeConnecting) {
    ASSERT_TRUE(nkw::test::start_adaptor(track(0)));
    EXPECT_EQ(-1, nkw_pal_gnss_info_acquire(5, nullptr));
    EXPECT_EQ(0, mipc_sim::gnss_adaptor_connections());
}

TEST(GnssConnect, AnAdaptorThatHangsUpIsReadUntilTheEnd) {
    // Step by step, as an acquisition would: after the hang-up the read
    // fails and the descriptor is closed (an acquisition would then wait on
    // an empty epoll set, so this is not run as one).
    mipc_sim::GnssAdaptorScript script = track(5, 2, 10);
    script.track.hang_up_after = true;
    ASSERT_TRUE(nkw::test::start_adaptor(script));
    const int fd =
        nkw_pal_gnss_socket_tcp_client_connect_local(true, nkw_pal_sandbox_gnss_socket_name());
    ASSERT_GT(fd, 0);
    ASSERT_TRUE(nkw_pal_gnss_start_request(fd));
    int reads = 0;
    while (nkw_pal_gnss_gnss_data_handle(fd)) ASSERT_LT(++reads, 100);
    EXPECT_GT(reads, 0);
    EXPECT_FALSE(nkw::test::fd_is_open(fd));
    EXPECT_EQ(0, nkw_pal_gnss_info.location.valid);
    EXPECT_EQ(2u, nkw::test::syslog_matching("==========").size());
}

TEST(GnssConnect, AbstractAndPathNames) {
    ASSERT_TRUE(nkw::test::start_adaptor(track(0)));
    const int fd =
        nkw_pal_gnss_socket_tcp_client_connect_local(true, nkw_pal_sandbox_gnss_socket_name());
    EXPECT_GT(fd, 0);
    close(fd);
    const std::string path = "/nonexistent/" + std::string(200, 'x');
    EXPECT_EQ(0, nkw_pal_gnss_socket_tcp_client_connect_local(false, path.c_str()));
    EXPECT_EQ(0, nkw_pal_gnss_socket_tcp_client_connect_local(true, "%n%s"));
    EXPECT_TRUE(syslog_contains("abstract=1 name=[%n%s] reason=["));
    EXPECT_FALSE(nkw_pal_gnss_epoll_add_fd(-1, 0));
    EXPECT_TRUE(syslog_contains("epoll_add_fd() epoll_ctl() failed reason=["));
}

}  // namespace
