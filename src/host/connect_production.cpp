// Production pipelines: straight to the system shell.
#include "host/connect.h"

namespace nkw::host {

FILE *open_pipe(const char *command_line) {
    return popen(command_line, "r");
}

int close_pipe(FILE *pipe) {
    return pclose(pipe);
}

}  // namespace nkw::host
