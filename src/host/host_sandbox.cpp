// Test-build host access. Every fixed path lives under $NKW_PAL_SANDBOX_ROOT,
// and a shell command runs only when $NKW_PAL_SANDBOX_ROOT/bin heads PATH, so
// fakes answer for reboot, ip, route and the like. Anything else aborts: a
// test must never reach the real host.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/host.h"
#include "nkw_pal/common.h"

namespace {

[[noreturn]] void refuse(const char *what) {
    std::fprintf(stderr, "nkw_pal sandbox build: %s; refusing to touch the host\n", what);
    std::abort();
}

const char *sandbox_root() {
    const char *root = std::getenv("NKW_PAL_SANDBOX_ROOT");
    if (root == nullptr || root[0] != '/' || root[1] == '\0') {
        refuse("NKW_PAL_SANDBOX_ROOT is not an absolute directory");
    }
    return root;
}

void require_fakes_first_on_path() {
    const char *root = sandbox_root();
    const char *path = std::getenv("PATH");
    size_t root_len = std::strlen(root);
    if (path == nullptr || std::strncmp(path, root, root_len) != 0 ||
        std::strncmp(path + root_len, "/bin", 4) != 0 ||
        (path[root_len + 4] != ':' && path[root_len + 4] != '\0')) {
        refuse("PATH does not start with $NKW_PAL_SANDBOX_ROOT/bin");
    }
}

}  // namespace

namespace nkw::host {

Path::Path(const char *fixed) : text_(relocated_), relocated_{} {
    int n = std::snprintf(relocated_, sizeof relocated_, "%s%s", sandbox_root(), fixed);
    if (n < 0 || static_cast<size_t>(n) >= sizeof relocated_) refuse("sandbox path too long");
}

int run_shell(const char *command_line) {
    require_fakes_first_on_path();
    return std::system(command_line);
}

}  // namespace nkw::host

// Lets the test suite prove it runs against this build.
extern "C" NKW_PAL_API const char *nkw_pal_sandbox_root(void) {
    return sandbox_root();
}
