// Sandbox helpers of the device-control and offline-log tests: recording
// fakes for commands the shared sandbox does not provide.
#pragma once

#include <unistd.h>

#include <climits>
#include <string>

#include "support/sandbox.h"

extern "C" {
void nkw_pal_sandbox_pcie_dipc_set(int status, int ioctl_errno);
void nkw_pal_sandbox_node_fail_next(int which, int err);
}

namespace nkw::test {

// Links `fixed` (a command name under /bin, or an absolute command path)
// in the sandbox to the recording fake the sandbox uses for reboot.
inline void add_fake(const std::string &fixed) {
    Sandbox &box = Sandbox::current();
    char fake[PATH_MAX] = {};
    ssize_t n = readlink(box.path("/bin/reboot").c_str(), fake, sizeof fake - 1);
    ASSERT_GT(n, 0);
    std::string target = fixed[0] == '/' ? fixed : "/bin/" + fixed;
    box.write_file(target, "");  // creates the parent directories
    unlink(box.path(target).c_str());
    ASSERT_EQ(0, ::symlink(fake, box.path(target).c_str()));
}

}  // namespace nkw::test
