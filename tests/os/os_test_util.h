// Helpers shared by the OS service tests: a counting signal that library
// threads and timer callbacks post, and the heap balance seen in the log.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

#include "support/syslog_capture.h"

namespace nkw::test {

// ThreadSanitizer reports misuse of a mutex (unlock by a stranger, destroying
// it locked) itself, so the tests that do so on purpose stand aside there.
#if defined(__SANITIZE_THREAD__)
constexpr bool kThreadSanitizer = true;
#elif defined(__has_feature)
constexpr bool kThreadSanitizer = __has_feature(thread_sanitizer);
#else
constexpr bool kThreadSanitizer = false;
#endif

// Posted by the code under test; waited on by the test, never by sleeping.
class Signal {
   public:
    void post() {
        std::lock_guard<std::mutex> guard(lock_);
        ++count_;
        changed_.notify_all();
    }
    // True once `count` posts have arrived (10 s is a hang, not a slow run).
    bool wait_for(int count) {
        std::unique_lock<std::mutex> guard(lock_);
        return changed_.wait_for(guard, std::chrono::seconds(10), [&] { return count_ >= count; });
    }

   private:
    std::mutex lock_;
    std::condition_variable changed_;
    int count_ = 0;
};

// Every block allocated at a call site was freed again.
inline bool allocations_balanced() {
    return syslog_matching("]-malloc 0x").size() == syslog_matching("]-free 0x").size();
}

// Some line holds `text` under the prefix of `function` (not of a helper).
inline bool logged_by(const std::string &function, const std::string &text) {
    for (const SyslogRecord &r : syslog_matching(text)) {
        if (r.text.find("[" + function + ":") != std::string::npos) return true;
    }
    return false;
}

}  // namespace nkw::test
