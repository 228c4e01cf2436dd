// Captures what the library hands to syslog. The test executables define
// openlog/syslog/closelog themselves, so those calls never reach the host's
// system log and tests can assert on every line.
#pragma once

#include <string>
#include <vector>

namespace nkw::test {

struct SyslogRecord {
    int priority;
    std::string text;  // the formatted record, e.g. "-[     SEM] [f:12]-text \n\n"
};

struct SyslogSession {
    bool open = false;
    std::string ident;
    int option = 0;
    int facility = 0;
};

std::vector<SyslogRecord> syslog_records();
SyslogSession syslog_session();
void syslog_clear();

// Records whose text contains `needle`.
std::vector<SyslogRecord> syslog_matching(const std::string &needle);
bool syslog_contains(const std::string &needle);

}  // namespace nkw::test
