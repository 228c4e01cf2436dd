// Everything the library reaches on the host: fixed paths, device nodes and
// shell commands. Production builds use them exactly as written; the test
// build relocates every path under a per-test root and runs shell commands
// only when recording fakes come first on PATH.
#pragma once

#include <cstddef>

namespace nkw::host {

// Fixed locations, grouped by the subsystem that uses them.
namespace paths {
// diagnostics
inline constexpr const char kProcSelfExe[] = "/proc/self/exe";
}  // namespace paths

// Shell commands run by name, found on PATH.
namespace commands {}  // namespace commands

inline constexpr size_t kPathMax = 256;

// A fixed path as this build sees it. Construct on the stack where the path
// is used; c_str() stays valid for the object's life.
class Path {
   public:
    explicit Path(const char *fixed);
    Path(const Path &) = delete;
    Path &operator=(const Path &) = delete;
    const char *c_str() const { return text_; }

   private:
    const char *text_;
    [[maybe_unused]] char relocated_[kPathMax];  // used by the test build only
};

// Runs one command line through the system shell; returns system()'s result.
int run_shell(const char *command_line);

}  // namespace nkw::host
