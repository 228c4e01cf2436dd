// Production host access: paths as written, commands through the shell.
#include <cstdlib>

#include "host/host.h"

namespace nkw::host {

Path::Path(const char *fixed) : text_(fixed), relocated_{} {}

int run_shell(const char *command_line) {
    return std::system(command_line);
}

}  // namespace nkw::host
