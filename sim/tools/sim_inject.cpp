// sim-inject: pushes events into a process running on the simulated modem,
// through its control socket. Events are JSON objects as in a scenario
// timeline (without "t"), given as arguments or one a line on stdin.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace {

int usage() {
    std::cerr
        << "usage: sim-inject [-s SOCKET] [EVENT...]\n"
           "  Sends each EVENT (a JSON object, e.g. '{\"event\":\"hotplug\",\"cause\":12}'),\n"
           "  or each line of stdin when none is given, to the control socket\n"
           "  (-s, else $NKW_PAL_SIM_CONTROL). Exit status 1 if any is refused.\n";
    return 2;
}

int connect_to(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0)
        return fd;
    if (fd >= 0) close(fd);
    return -1;
}

// Sends one event and reads its one-line answer.
bool send_event(int fd, const std::string &event, std::string *answer) {
    const std::string line = event + "\n";
    if (send(fd, line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size()))
        return false;
    answer->clear();
    char c;
    while (recv(fd, &c, 1, 0) == 1) {
        if (c == '\n') return true;
        answer->push_back(c);
    }
    return false;
}

}  // namespace

int main(int argc, char **argv) {
    const char *env = std::getenv("NKW_PAL_SIM_CONTROL");
    std::string path = env != nullptr ? env : "";
    std::vector<std::string> events;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-s" && i + 1 < argc) {
            path = argv[++i];
        } else if (arg == "-h" || arg == "--help" || arg == "-s") {
            return usage();
        } else {
            events.push_back(arg);
        }
    }
    if (path.empty()) return usage();
    const int fd = connect_to(path);
    if (fd < 0) {
        std::cerr << "sim-inject: " << path << ": " << std::strerror(errno) << "\n";
        return 1;
    }
    bool from_stdin = events.empty();
    std::string line;
    int status = 0;
    for (size_t i = 0;
         from_stdin ? static_cast<bool>(std::getline(std::cin, line)) : i < events.size(); ++i) {
        const std::string &event = from_stdin ? line : events[i];
        if (event.find_first_not_of(" \t\r") == std::string::npos) continue;
        std::string answer;
        if (!send_event(fd, event, &answer)) {
            std::cerr << "sim-inject: " << path << ": connection lost\n";
            status = 1;
            break;
        }
        if (answer != "ok") {
            std::cerr << "sim-inject: " << event << ": " << answer << "\n";
            status = 1;
        }
    }
    close(fd);
    return status;
}
