#include "inject_client.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <istream>
#include <ostream>

namespace nkw::inject {

namespace {

// A connected descriptor, or -1 with errno set.
int connect_to(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    if (connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0) return fd;
    const int error = errno;
    close(fd);
    errno = error;
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

bool blank(const std::string &line) {
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

}  // namespace

int send_events(const std::string &path, const std::vector<std::string> &events, std::istream &in,
                std::ostream &err, const std::string &name) {
    const int fd = connect_to(path);
    if (fd < 0) {
        err << name << ": " << path << ": " << std::strerror(errno) << "\n";
        return 1;
    }
    const bool from_input = events.empty();
    std::string line;
    int status = 0;
    for (size_t i = 0; from_input ? static_cast<bool>(std::getline(in, line)) : i < events.size();
         ++i) {
        const std::string &event = from_input ? line : events[i];
        if (blank(event)) continue;
        std::string answer;
        if (!send_event(fd, event, &answer)) {
            err << name << ": " << path << ": connection lost\n";
            status = 1;
            break;
        }
        if (answer != "ok") {
            err << name << ": " << event << ": " << answer << "\n";
            status = 1;
        }
    }
    close(fd);
    return status;
}

}  // namespace nkw::inject
