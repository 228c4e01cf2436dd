// Simulated GNSS adaptor on an abstract local socket.
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <memory>
#include <thread>

#include "core.h"
#include "mipc_sim_gnss.h"

using namespace mipc_sim;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kIdlePollMs = 20;
constexpr int kReplyPauseMs = 50;

struct Adaptor {
    int listen_fd = -1;
    GnssAdaptorScript script;
    std::atomic<bool> stopping{false};
    std::thread acceptor;
    std::vector<std::thread> connections;
    std::mutex lock;  // guards commands and connection_count
    std::condition_variable changed;
    std::vector<std::string> commands;
    int connection_count = 0;
};

std::mutex &adaptor_lock() {
    static std::mutex instance;
    return instance;
}

std::unique_ptr<Adaptor> &current() {
    static std::unique_ptr<Adaptor> instance;
    return instance;
}

const core::ResetHook kReset([] { stop_gnss_adaptor(); });

void pause_ms(int ms) {
    if (ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

bool send_all(int fd, const std::string &bytes) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        ssize_t n = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        sent += static_cast<size_t>(n);
    }
    return true;
}

bool send_chunked(Adaptor &a, int fd, const std::string &bytes) {
    const size_t chunk = a.script.track.chunk_size;
    if (chunk == 0) return send_all(fd, bytes);
    for (size_t at = 0; at < bytes.size(); at += chunk) {
        if (a.stopping || !send_all(fd, bytes.substr(at, chunk))) return false;
        pause_ms(a.script.track.chunk_pause_ms);
    }
    return true;
}

std::string coordinate(double value, int degree_digits) {
    const double magnitude = std::fabs(value);
    const int degrees = static_cast<int>(magnitude);
    const double minutes = (magnitude - degrees) * 60.0;
    char text[32];
    std::snprintf(text, sizeof text, "%0*d%07.4f", degree_digits, degrees, minutes);
    return text;
}

// What one connection does: commands in, notifications and replies out.
class Session {
   public:
    Session(Adaptor &adaptor, int fd) : a_(adaptor), fd_(fd) {}

    void run() {
        while (!a_.stopping && open_) {
            pollfd p{fd_, POLLIN, 0};
            int ready = poll(&p, 1, next_wait_ms());
            if (ready < 0 && errno != EINTR) break;
            if (ready > 0 && !read_commands()) break;
            if (streaming_ && Clock::now() >= next_send_) stream_next();
        }
        close(fd_);
    }

   private:
    int next_wait_ms() const {
        if (!streaming_) return kIdlePollMs;
        auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(next_send_ - Clock::now());
        return static_cast<int>(std::max<int64_t>(0, std::min<int64_t>(left.count(), kIdlePollMs)));
    }

    bool read_commands() {
        char buffer[512];
        ssize_t n = read(fd_, buffer, sizeof buffer);
        if (n <= 0) return false;
        pending_.append(buffer, static_cast<size_t>(n));
        size_t end;
        while (open_ && (end = pending_.find("\r\n")) != std::string::npos) {
            std::string command = pending_.substr(0, end);
            pending_.erase(0, end + 2);
            handle(command);
        }
        return open_;
    }

    void handle(const std::string &command) {
        {
            std::lock_guard<std::mutex> guard(a_.lock);
            a_.commands.push_back(command);
        }
        a_.changed.notify_all();
        if (command == "AT+ELCSSTART=") {
            streaming_ = true;
            epoch_ = 0;
            for (const std::string &bytes : a_.script.track.prelude) send_all(fd_, bytes);
            next_send_ = Clock::now() + std::chrono::milliseconds(a_.script.track.silence_ms);
        } else if (command == "AT+ELCSSTOP=") {
            streaming_ = false;
        } else if (command.rfind("AT+ELCSAGPSMODE=", 0) == 0) {
            answer_agps();
        }
    }

    void answer_agps() {
        switch (a_.script.agps) {
            case AgpsReply::kOk:
                send_all(fd_, "\r\nOK\r\n");
                break;
            case AgpsReply::kSplitOk:
                send_all(fd_, "\r\nO");
                pause_ms(kReplyPauseMs);
                send_all(fd_, "K\r\n");
                break;
            case AgpsReply::kError:
                send_all(fd_, "\r\nERROR\r\n");
                pause_ms(kReplyPauseMs);
                send_all(fd_, "\r\nERROR\r\n");
                pause_ms(kReplyPauseMs);
                open_ = false;
                break;
            case AgpsReply::kNothing:
                open_ = false;
                break;
            case AgpsReply::kPartialHangUp:
                send_all(fd_, "\r\nO");
                pause_ms(kReplyPauseMs);
                open_ = false;
                break;
        }
    }

    void stream_next() {
        const GnssTrack &track = a_.script.track;
        if (track.epochs >= 0 && epoch_ >= track.epochs) {
            streaming_ = false;
            if (track.hang_up_after) open_ = false;
            return;
        }
        const char status = epoch_ >= track.valid_after ? 'A' : 'V';
        if (!send_chunked(a_, fd_, gnss_epoch(track.position, status))) {
            open_ = false;
            return;
        }
        ++epoch_;
        next_send_ = Clock::now() + std::chrono::milliseconds(track.interval_ms);
    }

    Adaptor &a_;
    int fd_;
    bool open_ = true;
    bool streaming_ = false;
    int epoch_ = 0;
    Clock::time_point next_send_{};
    std::string pending_;
};

void accept_loop(Adaptor *a) {
    while (!a->stopping) {
        pollfd p{a->listen_fd, POLLIN, 0};
        if (poll(&p, 1, kIdlePollMs) <= 0) continue;
        int fd = accept(a->listen_fd, nullptr, nullptr);
        if (fd < 0) continue;
        {
            std::lock_guard<std::mutex> guard(a->lock);
            ++a->connection_count;
        }
        a->connections.emplace_back([a, fd] { Session(*a, fd).run(); });
    }
}

}  // namespace

namespace mipc_sim {

bool start_gnss_adaptor(const std::string &socket_name, const GnssAdaptorScript &script) {
    stop_gnss_adaptor();
    sockaddr_un address;
    std::memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    if (socket_name.size() > sizeof address.sun_path - 1) {
        std::fprintf(stderr, "simulated GNSS adaptor: socket name too long\n");
        return false;
    }
    std::memcpy(address.sun_path + 1, socket_name.data(), socket_name.size());
    const socklen_t length = static_cast<socklen_t>(socket_name.size() + 3);

    auto adaptor = std::make_unique<Adaptor>();
    adaptor->script = script;
    adaptor->listen_fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (adaptor->listen_fd < 0 ||
        bind(adaptor->listen_fd, reinterpret_cast<sockaddr *>(&address), length) != 0 ||
        listen(adaptor->listen_fd, 8) != 0) {
        std::fprintf(stderr, "simulated GNSS adaptor: cannot listen on @%s: %s\n",
                     socket_name.c_str(), std::strerror(errno));
        if (adaptor->listen_fd >= 0) close(adaptor->listen_fd);
        return false;
    }
    Adaptor *a = adaptor.get();
    a->acceptor = std::thread(accept_loop, a);
    std::lock_guard<std::mutex> guard(adaptor_lock());
    current() = std::move(adaptor);
    return true;
}

void stop_gnss_adaptor() {
    std::unique_ptr<Adaptor> adaptor;
    {
        std::lock_guard<std::mutex> guard(adaptor_lock());
        adaptor = std::move(current());
    }
    if (!adaptor) return;
    adaptor->stopping = true;
    adaptor->acceptor.join();  // no new connections after this
    for (std::thread &connection : adaptor->connections) connection.join();
    close(adaptor->listen_fd);
}

std::vector<std::string> gnss_adaptor_commands(size_t at_least, int wait_ms) {
    std::lock_guard<std::mutex> guard(adaptor_lock());
    Adaptor *a = current().get();
    if (a == nullptr) return {};
    std::unique_lock<std::mutex> lock(a->lock);
    a->changed.wait_for(lock, std::chrono::milliseconds(wait_ms),
                        [a, at_least] { return a->commands.size() >= at_least; });
    return a->commands;
}

int gnss_adaptor_connections() {
    std::lock_guard<std::mutex> guard(adaptor_lock());
    Adaptor *a = current().get();
    if (a == nullptr) return 0;
    std::lock_guard<std::mutex> lock(a->lock);
    return a->connection_count;
}

std::string nmea_sentence(const std::string &body) {
    unsigned checksum = 0;
    for (unsigned char c : body) checksum ^= c;
    char tail[8];
    std::snprintf(tail, sizeof tail, "*%02X", checksum);
    return "$" + body + tail;
}

std::string nmea_gga(const GnssPosition &p) {
    char body[160];
    std::snprintf(body, sizeof body, "GNGGA,120000.00,%s,%c,%s,%c,%d,%02d,%.1f,%.1f,M,47.0,M,,",
                  coordinate(p.latitude, 2).c_str(), p.latitude < 0 ? 'S' : 'N',
                  coordinate(p.longitude, 3).c_str(), p.longitude < 0 ? 'W' : 'E', p.quality,
                  p.satellites, p.hdop, p.altitude);
    return nmea_sentence(body);
}

std::string nmea_rmc(char status, const GnssPosition &p) {
    char body[160];
    std::snprintf(body, sizeof body, "GNRMC,120000.00,%c,%s,%c,%s,%c,0.0,0.0,010324,,,A", status,
                  coordinate(p.latitude, 2).c_str(), p.latitude < 0 ? 'S' : 'N',
                  coordinate(p.longitude, 3).c_str(), p.longitude < 0 ? 'W' : 'E');
    return nmea_sentence(body);
}

std::string gnss_notification(const std::string &nmea) {
    return "\r\n+ELCSNMEA: \"" + nmea + "\"\r\n";
}

std::string gnss_epoch_end() {
    return "\r\n+ELCSNMEAEND\r\n";
}

std::string gnss_epoch(const GnssPosition &position, char status) {
    return gnss_notification(nmea_gga(position)) + gnss_notification(nmea_rmc(status, position)) +
           gnss_epoch_end();
}

}  // namespace mipc_sim
