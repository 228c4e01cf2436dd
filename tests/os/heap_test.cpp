// Heap wrappers: refusals, the realloc corner cases and the MEM trace lines.
#include <gtest/gtest.h>
#include <syslog.h>

#include <cstdio>
#include <string>

#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_matching;
using nkw::test::syslog_records;

namespace {

std::string pointer_text(const void *p) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", p);
    return text;
}

int count_at(int priority) {
    int n = 0;
    for (const auto &r : syslog_records()) n += r.priority == priority;
    return n;
}

TEST(HeapRefusals, ZeroSizesGiveNullAndOneError) {
    struct Case {
        const char *name;
        void *(*call)();
        const char *message;
    };
    const Case cases[] = {
        {"malloc(0)", [] { return nkw_pal_malloc(0); }, "input param error! \n"},
        {"calloc(0, 8)", [] { return nkw_pal_calloc(0, 8); }, "input param error! \n"},
        {"calloc(8, 0)", [] { return nkw_pal_calloc(8, 0); }, "input param error! \n"},
        {"realloc(NULL, 0)", [] { return nkw_pal_realloc(nullptr, 0); },
         "input param error! realloc space of size zero \n"},
    };
    for (const Case &c : cases) {
        nkw::test::syslog_clear();
        EXPECT_EQ(nullptr, c.call()) << c.name;
        auto records = syslog_records();
        ASSERT_EQ(1u, records.size()) << c.name;
        EXPECT_EQ(LOG_ERR, records[0].priority) << c.name;
        EXPECT_NE(std::string::npos, records[0].text.find(c.message)) << c.name;
    }
}

TEST(HeapRefusals, FreeOfNullOnlyWarns) {
    nkw_pal_free(nullptr);
    auto records = syslog_records();
    ASSERT_EQ(1u, records.size());
    EXPECT_EQ(LOG_WARNING, records[0].priority);
    EXPECT_NE(std::string::npos, records[0].text.find("]-ptr no need to free! \n"));
}

TEST(HeapRealloc, ShrinkingToZeroLogsNoErrorWhateverTheLibraryReturns) {
    ASSERT_EQ(0, nkw_pal_log_set_level(NKW_PAL_LOG_DEBUG));
    void *block = nkw_pal_malloc(32);
    ASSERT_NE(nullptr, block);
    nkw::test::syslog_clear();
    void *result = nkw_pal_realloc(block, 0);
    nkw_pal_free(result);  // glibc frees and returns NULL; either way nothing leaks
    EXPECT_EQ(0, count_at(LOG_ERR));
    EXPECT_EQ(1u, syslog_matching("realloc: " + pointer_text(result) + " 0 \n").size());
}

TEST(HeapTrace, DebugLevelTracesEveryAllocationAndFree) {
    ASSERT_EQ(0, nkw_pal_log_set_level(NKW_PAL_LOG_DEBUG));
    nkw::test::syslog_clear();
    void *a = nkw_pal_malloc(24);
    void *b = nkw_pal_calloc(3, 5);
    nkw_pal_free(a);
    nkw_pal_free(b);
    const std::string expected[] = {
        "malloc: " + pointer_text(a) + " 24 \n",
        "calloc: " + pointer_text(b) + " 3 5 \n",
        "free: " + pointer_text(a) + " \n",
        "free: " + pointer_text(b) + " \n",
    };
    auto records = syslog_records();
    ASSERT_EQ(4u, records.size());
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(LOG_DEBUG, records[i].priority);
        EXPECT_NE(std::string::npos, records[i].text.find("-[     MEM] [nkw_pal_"));
        EXPECT_NE(std::string::npos, records[i].text.find(expected[i])) << records[i].text;
    }
}

TEST(HeapTrace, DefaultLevelWritesNothingOnSuccess) {
    void *block = nkw_pal_calloc(2, 2);
    nkw_pal_free(block);
    EXPECT_TRUE(syslog_records().empty());
    EXPECT_EQ(NKW_PAL_HEAP_INFO_UNSUPPORTED, nkw_pal_getHeapInfo());
}

}  // namespace
