#include "support/syslog_capture.h"

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <vector>

namespace nkw::test {
namespace {

struct Capture {
    std::mutex lock;
    std::vector<SyslogRecord> records;
    SyslogSession session;
};

Capture &capture() {
    static Capture instance;
    return instance;
}

void record(int priority, const char *format, va_list args) {
    // On the heap: the library's threads may run on stacks of only 16 KiB.
    std::vector<char> text(4096);
    std::vsnprintf(text.data(), text.size(), format, args);
    std::lock_guard<std::mutex> guard(capture().lock);
    capture().records.push_back({priority, text.data()});
}

}  // namespace

std::vector<SyslogRecord> syslog_records() {
    std::lock_guard<std::mutex> guard(capture().lock);
    return capture().records;
}

SyslogSession syslog_session() {
    std::lock_guard<std::mutex> guard(capture().lock);
    return capture().session;
}

void syslog_clear() {
    std::lock_guard<std::mutex> guard(capture().lock);
    capture().records.clear();
}

std::vector<SyslogRecord> syslog_matching(const std::string &needle) {
    std::vector<SyslogRecord> found;
    for (SyslogRecord &r : syslog_records()) {
        if (r.text.find(needle) != std::string::npos) found.push_back(std::move(r));
    }
    return found;
}

bool syslog_contains(const std::string &needle) {
    return !syslog_matching(needle).empty();
}

}  // namespace nkw::test

// The link-time seam: these replace the C library's syslog for the test process.
extern "C" {

void openlog(const char *ident, int option, int facility) {
    using nkw::test::capture;
    std::lock_guard<std::mutex> guard(capture().lock);
    capture().session = {true, ident != nullptr ? ident : "", option, facility};
}

void closelog(void) {
    using nkw::test::capture;
    std::lock_guard<std::mutex> guard(capture().lock);
    capture().session.open = false;
}

void syslog(int priority, const char *format, ...) {
    va_list args;
    va_start(args, format);
    nkw::test::record(priority, format, args);
    va_end(args);
}

void vsyslog(int priority, const char *format, va_list args) {
    nkw::test::record(priority, format, args);
}

// Fortified builds call these instead.
void __syslog_chk(int priority, int, const char *format, ...) {
    va_list args;
    va_start(args, format);
    nkw::test::record(priority, format, args);
    va_end(args);
}

void __vsyslog_chk(int priority, int, const char *format, va_list args) {
    nkw::test::record(priority, format, args);
}

}  // extern "C"
