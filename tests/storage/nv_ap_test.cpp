// NV items kept as files under "/data/quarn/" (inside the test sandbox).
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

using nkw::test::Sandbox;
using nkw::test::syslog_contains;

namespace {

constexpr unsigned int kWorkMode = 11;  // "quarn_work_mode_nv.txt"
const std::string kWorkModeFile = "/data/quarn/quarn_work_mode_nv.txt";

unsigned char *bytes(std::string &s) {
    return reinterpret_cast<unsigned char *>(s.data());
}

mode_t mode_of(const std::string &fixed) {
    struct stat info {};
    if (stat(Sandbox::current().path(fixed).c_str(), &info) != 0) return 0;
    return info.st_mode & 07777;
}

TEST(NvApFiles, WriteCreatesOwnerOnlyDirectoryAndFileAndReplacesOlderContent) {
    Sandbox::current().write_file("/data/.keep", "");
    std::string first = "mode=long value";
    ASSERT_EQ(0, nkw_pal_nvm_write(kWorkMode, bytes(first), first.size()));
    EXPECT_EQ(0700u, mode_of("/data/quarn"));
    EXPECT_EQ(0600u, mode_of(kWorkModeFile));
    std::string second = "mode=2";
    ASSERT_EQ(0, nkw_pal_nvm_write(kWorkMode, bytes(second), second.size()));
    EXPECT_EQ(second, Sandbox::current().read_file(kWorkModeFile));
    EXPECT_TRUE(syslog_contains("nkw_pal_write_nv_md_sync write AP nvm file success. \n"));
}

TEST(NvApFiles, ReadsOnceIntoTheBufferLeavingWhatTheFileDoesNotCover) {
    const struct {
        const char *name;
        const char *content;  // nullptr: no file
        unsigned int len;
        int status;
        std::string buffer;  // after the call, from "########"
        const char *log;
    } cases[] = {
        {"whole file", "abcdef", 8, 0, "abcdef##", "Read nvm from AP success. \n"},
        {"cut at len", "abcdef", 3, 0, "abc#####", "Read nv file success. \n"},
        {"empty file", "", 8, 0, "########", "Read nvm from AP success. \n"},
        {"no file", nullptr, 8, 711, "########", "Open nvm file failed. \n"},
    };
    for (const auto &c : cases) {
        std::remove(Sandbox::current().path(kWorkModeFile).c_str());
        if (c.content != nullptr) Sandbox::current().write_file(kWorkModeFile, c.content);
        nkw::test::syslog_clear();
        std::string buffer = "########";
        EXPECT_EQ(c.status, nkw_pal_nvm_read(kWorkMode, bytes(buffer), c.len)) << c.name;
        EXPECT_EQ(c.buffer, buffer) << c.name;
        EXPECT_TRUE(syslog_contains(c.log)) << c.name;
        if (c.status != 0) {
            EXPECT_TRUE(syslog_contains("Read nvm from AP failed. \n")) << c.name;
        }
    }
}

TEST(NvApFiles, MissingOrBlockedDirectoryFailsTheWriteWithoutCreatingAnything) {
    std::string data = "1";
    // No "/data" at all: the directory cannot be made.
    EXPECT_EQ(712, nkw_pal_nvm_write(kWorkMode, bytes(data), 1));
    EXPECT_TRUE(syslog_contains("Open and mkdir /data/quarn/ failed. \n"));
    EXPECT_TRUE(syslog_contains("write AP nvm file failed, ret is 702. \n"));
    EXPECT_FALSE(Sandbox::current().exists("/data"));

    // The item's name is taken by a directory.
    Sandbox::current().write_file(kWorkModeFile + "/inside", "");
    nkw::test::syslog_clear();
    EXPECT_EQ(712, nkw_pal_nvm_write(kWorkMode, bytes(data), 1));
    EXPECT_TRUE(syslog_contains(
        "Open /data/quarn/quarn_work_mode_nv.txt failed. file handle value: -1\n \n"));
}

TEST(NvApFiles, FailedWriteLeavesTheFileTruncatedOrPartlyWritten) {
    signal(SIGXFSZ, SIG_IGN);  // a write past the size limit then fails with EFBIG
    const struct {
        rlim_t limit;
        std::string left;
    } cases[] = {{0, ""}, {4, "new-"}};
    for (const auto &c : cases) {
        Sandbox::current().write_file(kWorkModeFile, "old content");
        struct rlimit limit {
            c.limit, RLIM_INFINITY
        };
        ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
        std::string data = "new-content";
        int status = nkw_pal_nvm_write(kWorkMode, bytes(data), data.size());
        limit.rlim_cur = RLIM_INFINITY;
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_EQ(712, status) << c.limit;
        EXPECT_EQ(c.left, Sandbox::current().read_file(kWorkModeFile)) << c.limit;
        EXPECT_TRUE(syslog_contains("Write /data/quarn/quarn_work_mode_nv.txt failed \n"));
        EXPECT_TRUE(syslog_contains("write AP nvm file failed, ret is 704. \n"));
    }
}

TEST(NvApFiles, SizeAndExistenceProbesCreateNothing) {
    Sandbox::current().write_file("/data/quarn/quarn_flag_nv.txt", "");
    Sandbox::current().write_file("/data/quarn/test.txt", "abcdef");
    const struct {
        unsigned int id;
        bool with_size;
        int size_status;
        unsigned int size;  // 77: untouched
        int exist_status;
    } cases[] = {
        {2, true, 0, 6, 0},               // "test.txt"
        {35, true, 715, 77, 0},           // empty file
        {kWorkMode, true, 702, 77, 702},  // no file
        {1, true, 714, 77, 714},          // modem item
        {38, true, 710, 77, 710},         // end marker
        {39, true, 714, 77, 714},         // unknown id: the placeholder row
        {35, false, 710, 77, 0},          // no size pointer
    };
    for (const auto &c : cases) {
        unsigned int size = 77;
        EXPECT_EQ(c.size_status, nkw_pal_nvm_get_nv_size(c.id, c.with_size ? &size : nullptr))
            << c.id;
        EXPECT_EQ(c.size, size) << c.id;
        EXPECT_EQ(c.exist_status, nkw_pal_nvm_check_nv_exist(c.id)) << c.id;
    }
    EXPECT_TRUE(syslog_contains("Get nvm file size success, the nv size is:6. \n"));
    EXPECT_TRUE(syslog_contains("The nv_index: 2 is exist \n"));
    EXPECT_TRUE(syslog_contains("Open file failed, fp:-1\n \n"));
    EXPECT_FALSE(Sandbox::current().exists(kWorkModeFile));
}

}  // namespace
