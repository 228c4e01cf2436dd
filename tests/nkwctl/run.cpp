#include "run.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

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

Background::Background(const std::string &args) {
    const std::string root = Sandbox::current().root();
    out_ = root + "/background.out";
    err_ = root + "/background.err";
    const std::string line =
        std::string("exec ") + NKW_PAL_NKWCTL + " " + args + " >" + out_ + " 2>" + err_;
    pid_ = fork();
    if (pid_ == 0) {
        execl("/bin/sh", "sh", "-c", line.c_str(), static_cast<char *>(nullptr));
        _exit(127);
    }
}

Background::~Background() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

bool Background::wait_for_err(const std::string &text) const {
    const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (err().find(text) == std::string::npos) {
        if (std::chrono::steady_clock::now() >= give_up) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

int Background::interrupt() {
    kill(pid_, SIGINT);
    int raw = 0;
    waitpid(pid_, &raw, 0);
    pid_ = -1;
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

}  // namespace nkw::test
