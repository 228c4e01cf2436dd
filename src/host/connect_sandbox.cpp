// Test-build pipelines: like run_shell, only with the recording fakes first
// on PATH, so `ip` inside a pipeline is the sandbox's and never the host's.
#include <cstdlib>
#include <cstring>

#include "host/connect.h"
#include "host/host.h"

namespace nkw::host {

namespace {

bool fakes_first_on_path() {
    Path bin("/bin");
    const char *path = std::getenv("PATH");
    size_t len = std::strlen(bin.c_str());
    return path != nullptr && std::strncmp(path, bin.c_str(), len) == 0 &&
           (path[len] == ':' || path[len] == '\0');
}

}  // namespace

FILE *open_pipe(const char *command_line) {
    if (!fakes_first_on_path()) {
        std::fprintf(stderr,
                     "nkw_pal sandbox build: PATH does not start with the fakes; "
                     "refusing to touch the host\n");
        std::abort();
    }
    return popen(command_line, "r");
}

int close_pipe(FILE *pipe) {
    return pclose(pipe);
}

}  // namespace nkw::host
