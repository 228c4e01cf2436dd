// Opening the system log: the ident taken from the executable's name, the
// options, and the semaphore that guards level changes.
#include <gtest/gtest.h>
#include <syslog.h>

#include <string>

#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

using nkw::test::Sandbox;

namespace {

struct IdentCase {
    const char *exe_link;  // what /proc/self/exe points to; nullptr: no link
    const char *ident;
};

TEST(LogInit, IdentIsTheExecutableBaseNameWithRefusals) {
    const std::string long_path = "/" + std::string(1100, 'x');
    const std::string cut_name(1022, 'x');  // the link is read to 1023 bytes at most
    const IdentCase cases[] = {
        {"/usr/sbin/connmgrd", "connmgrd"},
        {"/usr/sbin/ab", "ab"},
        {"/usr/sbin/a", ""},  // one-letter names are refused on purpose
        {"/usr/sbin/", ""},   // nothing behind the last slash
        {"relative", ""},     // no slash at all
        {nullptr, ""},        // the link cannot be read
        {long_path.c_str(), cut_name.c_str()},
    };
    for (const IdentCase &c : cases) {
        Sandbox &sandbox = Sandbox::current();
        std::remove(sandbox.path("/proc/self/exe").c_str());
        if (c.exe_link != nullptr) sandbox.symlink("/proc/self/exe", c.exe_link);
        ASSERT_EQ(0, nkw_pal_log_init());
        auto session = nkw::test::syslog_session();
        EXPECT_TRUE(session.open);
        EXPECT_EQ(c.ident, session.ident) << (c.exe_link ? c.exe_link : "(no link)");
        EXPECT_EQ(LOG_PID, session.option);
        EXPECT_EQ(LOG_DAEMON, session.facility);
        EXPECT_EQ(0, nkw_pal_log_close());
        EXPECT_FALSE(nkw::test::syslog_session().open);
    }
}

TEST(LogInit, LevelChangesGoThroughTheLogSemaphoreWithoutErrors) {
    ASSERT_EQ(0, nkw_pal_log_init());
    nkw::test::syslog_clear();
    EXPECT_EQ(0, nkw_pal_log_set_level(NKW_PAL_LOG_ERROR));
    EXPECT_EQ(0, nkw_pal_log_set_level(NKW_PAL_LOG_INFO));
    // The lock's own success lines are information: one wait, one post.
    EXPECT_EQ(1u, nkw::test::syslog_matching("]-wait sem_id: ").size());
    EXPECT_EQ(1u, nkw::test::syslog_matching("]-post sem_id: ").size());
    EXPECT_FALSE(nkw::test::syslog_contains("incorrect"));
    EXPECT_EQ(0, nkw_pal_log_close());
}

TEST(LogInit, LevelCanBeSetBeforeInitAndStillTakesEffect) {
    // Without the lock the semaphore calls report their bad handle, and the
    // level is stored all the same.
    EXPECT_EQ(0, nkw_pal_log_set_level(NKW_PAL_LOG_ERROR));
    EXPECT_EQ(static_cast<uint32_t>(NKW_PAL_LOG_ERROR), nkw_pal_log_get_level());
}

}  // namespace
