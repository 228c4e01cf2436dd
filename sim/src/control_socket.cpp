// Live event injection: a local stream socket taking the same events as a
// scenario timeline, one JSON object a line, each answered "ok" or
// "error <why>" on a line of its own.
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "core.h"
#include "mipc_sim_control.h"
#include "mipc_sim_scenario.h"

namespace mipc_sim {
namespace {

struct Control {
    std::mutex lock;  // start and stop only; the listener thread reads none of it
    int listener = -1;
    int stop_pipe[2] = {-1, -1};
    std::string path;
    std::thread thread;
};

Control &control() {
    static Control instance;
    return instance;
}

// Waits for `fd` to be readable; false once the stop pipe is.
bool wait_readable(int fd, int stop) {
    pollfd fds[2] = {{fd, POLLIN, 0}, {stop, POLLIN, 0}};
    while (poll(fds, 2, -1) < 0)
        if (errno != EINTR) return false;
    return (fds[1].revents & POLLIN) == 0;
}

bool send_all(int fd, const std::string &text) {
    for (size_t sent = 0; sent < text.size();) {
        const ssize_t n = send(fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        sent += static_cast<size_t>(n);
    }
    return true;
}

// A line longer than this is refused, so a stray writer cannot grow us without bound.
constexpr size_t kMaxLine = 64 * 1024;

void serve_client(int client, int stop) {
    std::string pending;
    char buffer[4096];
    while (wait_readable(client, stop)) {
        const ssize_t n = recv(client, buffer, sizeof buffer, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        pending.append(buffer, static_cast<size_t>(n));
        for (size_t end; (end = pending.find('\n')) != std::string::npos;
             pending.erase(0, end + 1)) {
            const std::string line = pending.substr(0, end);
            if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
            std::string error;
            const bool ok = apply_event(line, &error);
            if (!send_all(client, ok ? std::string("ok\n") : "error " + error + "\n")) return;
        }
        if (pending.size() > kMaxLine) {
            send_all(client, "error line longer than 65536 bytes\n");
            return;
        }
    }
}

void serve(int listener, int stop) {
    while (wait_readable(listener, stop)) {
        const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) continue;
        serve_client(client, stop);
        close(client);
    }
}

const core::ResetHook kReset([] { stop_control_socket(); });

}  // namespace

bool start_control_socket(const std::string &path, std::string *error) {
    stop_control_socket();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        *error = path + ": not a usable socket path (1 to 107 bytes)";
        return false;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    // A socket left by a process that died is replaced; any other file is kept.
    struct stat existing {};
    if (lstat(path.c_str(), &existing) == 0 && S_ISSOCK(existing.st_mode)) unlink(path.c_str());

    Control &c = control();
    std::lock_guard<std::mutex> guard(c.lock);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0 ||
        bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
        listen(listener, 4) != 0 || pipe2(c.stop_pipe, O_CLOEXEC) != 0) {
        *error = path + ": " + std::strerror(errno);
        if (listener >= 0) close(listener);
        return false;
    }
    c.listener = listener;
    c.path = path;
    c.thread = std::thread(serve, c.listener, c.stop_pipe[0]);
    return true;
}

void stop_control_socket() {
    Control &c = control();
    std::lock_guard<std::mutex> guard(c.lock);
    if (c.listener < 0) return;
    const char byte = 0;
    while (write(c.stop_pipe[1], &byte, 1) < 0 && errno == EINTR) {
    }
    c.thread.join();
    close(c.listener);
    close(c.stop_pipe[0]);
    close(c.stop_pipe[1]);
    unlink(c.path.c_str());
    c.listener = -1;
    c.stop_pipe[0] = c.stop_pipe[1] = -1;
    c.path.clear();
}

}  // namespace mipc_sim
