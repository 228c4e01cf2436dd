#include "run.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "support/sandbox.h"

namespace nkw::test {

std::string slurp(const std::string &path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

Outcome nkwctl(const std::string &args) {
    const std::string root = Sandbox::current().root();
    const std::string line = std::string(NKW_PAL_NKWCTL) + " " + args + " >" + root +
                             "/nkwctl.out 2>" + root + "/nkwctl.err";
    const int raw = std::system(line.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, slurp(root + "/nkwctl.out"),
            slurp(root + "/nkwctl.err")};
}

}  // namespace nkw::test
