// nkwctl monitor driven from another process through the simulated modem's
// control socket, as a daemon developer reproduces a field problem: each
// injected event is printed once, and an interrupt ends the monitor cleanly.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "run.h"
#include "support/sandbox.h"

namespace {

using nkw::test::Background;
using nkw::test::Sandbox;

// Sends one event line and returns the socket's answer line ("" when it
// cannot be reached).
std::string inject(const std::string &socket_path, const std::string &event) {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socket_path.c_str(), sizeof address.sun_path - 1);
    std::string answer;
    if (connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0 &&
        send(fd, (event + "\n").data(), event.size() + 1, MSG_NOSIGNAL) ==
            static_cast<ssize_t>(event.size() + 1)) {
        char c = 0;
        while (recv(fd, &c, 1, 0) == 1 && c != '\n') answer += c;
    }
    close(fd);
    return answer;
}

TEST(NkwctlMonitor, InjectedEventsArePrintedOneEachUntilInterrupted) {
    const std::string socket_path = Sandbox::current().path("/sim.sock");
    // Subscriptions last for the process by design: no leak report at exit.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    setenv("NKW_PAL_SIM_CONTROL", socket_path.c_str(), 1);
    Background monitor("-K monitor");
    unsetenv("NKW_PAL_SIM_CONTROL");
    // The socket opens with the session, the subscriptions follow: events
    // are made to happen once the monitor says it is ready.
    ASSERT_TRUE(monitor.wait_for_err("monitor: ready")) << monitor.err();

    const struct {
        const char *event;
        const char *printed;
    } cases[] = {
        {R"({"event": "hotplug", "cause": 11})", "hotplug.plugged : 0\n"},
        {R"({"event": "registration", "cs_state": "roaming", "ps_state": "roaming"})",
         "register_state.state : 4\n"},  // roaming, in the library's numbering
        {R"({"event": "sim_removed", "slot": 0})",
         "sim_status.sim_id : 0\nsim_status.status : 5\n"},
        {R"({"event": "sms", "pdu": "07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07"})",
         "sms_new.index : 0\n"},
        {R"({"event": "mbim_open", "status": 1})", "mbim_open.status : 1\n"},
        {R"({"event": "mbim_slot_mapping", "option": 1, "sim_id": 1})",
         "mbim_slot_mapping.option : 1\nmbim_slot_mapping.sim_id : 1\n"},
        {R"({"event": "mbim_lpa_apdu", "value": 7})", "mbim_lpa_apdu.value : 7\n"},
        {R"({"event": "mbim_connect_status", "status": 3, "apn": "internet"})",  // disconnected
         "mbim_connect.connected : 0\nmbim_connect.apn : \"internet\"\n"},
    };
    std::string expected;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.event);
        EXPECT_EQ("ok", inject(socket_path, c.event));
        expected += c.printed;
        EXPECT_EQ(expected, monitor.out());
    }
    // A refused line is answered and prints nothing.
    EXPECT_EQ(0u, inject(socket_path, R"({"event": "mbim_open"})").rfind("error at /status", 0));
    EXPECT_EQ(expected, monitor.out());

    EXPECT_EQ(0, monitor.interrupt());
    EXPECT_EQ(expected, monitor.out());
    struct stat gone {};
    EXPECT_NE(0, stat(socket_path.c_str(), &gone)) << "the session's end removes its socket";
}

}  // namespace
