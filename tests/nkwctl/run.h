// Runs nkwctl (the sandboxed copy) as a program of its own in the test's
// sandbox, and collects what it said.
#pragma once

#include <string>

namespace nkw::test {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

// `args` go through the shell as written.
Outcome nkwctl(const std::string &args);

std::string slurp(const std::string &path);

}  // namespace nkw::test
