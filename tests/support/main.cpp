// Test main of every suite. Refuses to run unless the library under test is
// the sandbox build, its syslog output is captured, and a fresh sandbox root
// with recording fakes first on PATH is in place for each test.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "mipc_sim.h"
#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

extern "C" const char *nkw_pal_sandbox_root(void);

namespace {

[[noreturn]] void refuse(const char *why) {
    std::fprintf(stderr, "refusing to run the tests: %s\n", why);
    std::exit(2);
}

class SandboxPerTest : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo &) override {
        nkw::test::Sandbox::current().open();
        nkw_pal_log_set_level(NKW_PAL_LOG_INFO);
        mipc_sim::reset();
        nkw::test::syslog_clear();
    }
    void OnTestEnd(const testing::TestInfo &info) override {
        mipc_sim::reset();
        bool failed = info.result() != nullptr && info.result()->Failed();
        nkw::test::Sandbox::current().close(failed && std::getenv("NKW_PAL_KEEP_SANDBOX"));
    }
};

void verify_isolation() {
    nkw::test::Sandbox probe;
    probe.open();
    if (nkw_pal_sandbox_root() != probe.root()) refuse("the library does not use the sandbox root");
    nkw::test::syslog_clear();
    nkw_pal_logi("TEST", "sandbox probe");
    bool captured = nkw::test::syslog_contains("sandbox probe");
    nkw::test::syslog_clear();
    probe.close(false);
    if (!captured) refuse("the library's syslog output is not captured");
}

}  // namespace

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    verify_isolation();
    testing::UnitTest::GetInstance()->listeners().Append(new SandboxPerTest);
    return RUN_ALL_TESTS();
}
