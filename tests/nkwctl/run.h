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

// nkwctl started in the background (`args` through the shell), its standard
// output and error in files of the sandbox; killed if the test leaves it.
class Background {
   public:
    explicit Background(const std::string &args);
    ~Background();
    Background(const Background &) = delete;
    Background &operator=(const Background &) = delete;

    // Waits (up to 30 s) until standard error holds `text`.
    bool wait_for_err(const std::string &text) const;
    std::string out() const { return slurp(out_); }
    std::string err() const { return slurp(err_); }
    // Sends SIGINT; the exit status, or -1 when a signal ended it.
    int interrupt();

   private:
    std::string out_;
    std::string err_;
    int pid_ = -1;
};

}  // namespace nkw::test
