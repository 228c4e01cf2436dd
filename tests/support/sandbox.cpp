#include "support/sandbox.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace nkw::test {

namespace {

void make_dirs(const std::string &path) {
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        mkdir(path.substr(0, slash).c_str(), 0755);
    }
    mkdir(path.c_str(), 0755);
}

std::string parent_of(const std::string &path) {
    return path.substr(0, path.rfind('/'));
}

int remove_entry(const char *path, const struct stat *, int, struct FTW *) {
    return std::remove(path);
}

}  // namespace

std::vector<std::string> fake_commands() {
    return {"reboot", "ip", "route", "logread", "ifconfig", "iptables", "killall"};
}

Sandbox &Sandbox::current() {
    static Sandbox sandbox;
    return sandbox;
}

void Sandbox::open() {
    const char *tmp = std::getenv("TMPDIR");
    std::string pattern =
        std::string(tmp != nullptr && tmp[0] == '/' ? tmp : "/tmp") + "/nkw_pal_test.XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        std::perror("mkdtemp");
        std::abort();
    }
    root_ = pattern;
    make_dirs(root_ + "/bin");
    for (const std::string &name : fake_commands()) {
        if (::symlink(NKW_PAL_FAKE_COMMAND, (root_ + "/bin/" + name).c_str()) != 0) {
            std::perror("symlink");
            std::abort();
        }
    }
    setenv("NKW_PAL_SANDBOX_ROOT", root_.c_str(), 1);
    static const std::string host_path =
        std::getenv("PATH") ? std::getenv("PATH") : "/usr/bin:/bin";
    setenv("PATH", (root_ + "/bin:" + host_path).c_str(), 1);
}

void Sandbox::close(bool keep) {
    if (root_.empty()) return;
    if (keep) {
        std::fprintf(stderr, "sandbox kept for inspection: %s\n", root_.c_str());
    } else {
        nftw(root_.c_str(), remove_entry, 16, FTW_DEPTH | FTW_PHYS);
    }
    root_.clear();
}

void Sandbox::write_file(const std::string &fixed, const std::string &content) const {
    make_dirs(parent_of(path(fixed)));
    std::ofstream(path(fixed), std::ios::binary) << content;
}

std::string Sandbox::read_file(const std::string &fixed) const {
    std::ifstream in(path(fixed), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool Sandbox::exists(const std::string &fixed) const {
    struct stat info;
    return lstat(path(fixed).c_str(), &info) == 0;
}

void Sandbox::symlink(const std::string &fixed, const std::string &target) const {
    make_dirs(parent_of(path(fixed)));
    if (::symlink(target.c_str(), path(fixed).c_str()) != 0) {
        std::perror("symlink");
        std::abort();
    }
}

std::vector<std::string> Sandbox::commands() const {
    std::vector<std::string> lines;
    std::ifstream in(root_ + "/commands.log");
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

void Sandbox::set_fake_output(const std::string &name, const std::string &text) const {
    make_dirs(root_ + "/fake_output");
    std::ofstream(root_ + "/fake_output/" + name) << text;
}

void Sandbox::set_fake_answer(const std::string &command, const std::string &text,
                              int status) const {
    std::string key = command;
    for (char &c : key) c = c == ' ' ? '_' : c;
    make_dirs(root_ + "/fake_output");
    make_dirs(root_ + "/fake_status");
    std::ofstream(root_ + "/fake_output/" + key) << text;
    std::ofstream(root_ + "/fake_status/" + key) << status;
}

std::string Sandbox::unique_name(const std::string &base) {
    static std::atomic<int> counter{0};
    return base + "_" + std::to_string(getpid()) + "_" + std::to_string(counter++);
}

}  // namespace nkw::test
