// The per-test host sandbox: a fresh root directory for every test, holding
// the library's relocated host paths and recording fakes of the shell
// commands it runs (first on PATH).
#pragma once

#include <string>
#include <vector>

namespace nkw::test {

// Commands that get a recording fake in every sandbox.
std::vector<std::string> fake_commands();

class Sandbox {
   public:
    // The sandbox of the running test.
    static Sandbox &current();

    const std::string &root() const { return root_; }
    // Where the library sees a fixed host path in this sandbox.
    std::string path(const std::string &fixed) const { return root_ + fixed; }
    // Creates parent directories as needed.
    void write_file(const std::string &fixed, const std::string &content) const;
    std::string read_file(const std::string &fixed) const;
    bool exists(const std::string &fixed) const;
    void symlink(const std::string &fixed, const std::string &target) const;

    // Command lines the fakes recorded, oldest first.
    std::vector<std::string> commands() const;
    // What the fake `name` prints from now on.
    void set_fake_output(const std::string &name, const std::string &text) const;
    // What a fake prints and its exit status for calls that start with
    // `command` (the name and up to two arguments, e.g. "ip link show").
    void set_fake_answer(const std::string &command, const std::string &text, int status) const;

    // A name for a system-wide object (semaphore, queue, socket) that no other
    // test process uses.
    static std::string unique_name(const std::string &base);

    // Used by the test listener.
    void open();
    void close(bool keep);

   private:
    std::string root_;
};

}  // namespace nkw::test
