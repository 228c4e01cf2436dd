// The log writer: prefix, priorities, filtering, truncation.
#include <gtest/gtest.h>
#include <syslog.h>

#include <string>

#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_records;

namespace {

using Wrapper = int32_t (*)(const char *, const char *, ...);

struct LevelCase {
    Wrapper wrapper;
    uint32_t level;
    int priority;
};

// Trace is written at LOG_NOTICE, above debug.
const LevelCase kLevels[] = {
    {nkw_pal_logf, 0, LOG_ALERT}, {nkw_pal_loge, 1, LOG_ERR},   {nkw_pal_logw, 2, LOG_WARNING},
    {nkw_pal_logi, 3, LOG_INFO},  {nkw_pal_logd, 4, LOG_DEBUG}, {nkw_pal_logt, 5, LOG_NOTICE},
};

TEST(LogLevels, EachWrapperWritesOnlyAtOrBelowTheCurrentLevel) {
    for (uint32_t current = 0; current <= 5; ++current) {
        ASSERT_EQ(0, nkw_pal_log_set_level(current));
        for (const LevelCase &c : kLevels) {
            nkw::test::syslog_clear();
            EXPECT_EQ(0, c.wrapper("T", "x"));
            auto records = syslog_records();
            if (c.level <= current) {
                ASSERT_EQ(1u, records.size()) << "level " << c.level << " at " << current;
                EXPECT_EQ(c.priority, records[0].priority);
            } else {
                EXPECT_TRUE(records.empty()) << "level " << c.level << " at " << current;
            }
        }
    }
}

TEST(LogLevels, OutOfRangeLevelsAreRefusedAndChangeNothing) {
    ASSERT_EQ(0, nkw_pal_log_set_level(4));
    EXPECT_EQ(-1, nkw_pal_log_set_level(6));
    EXPECT_EQ(-1, nkw_pal_log_set_level(static_cast<uint32_t>(-1)));
    EXPECT_EQ(4u, nkw_pal_log_get_level());
    EXPECT_TRUE(nkw_pal_log_should_log(4));
    EXPECT_FALSE(nkw_pal_log_should_log(5));
}

TEST(LogLevels, DefaultWritesInformationButNotDebug) {
    EXPECT_EQ(3u, nkw_pal_log_get_level());
    nkw_pal_logd("T", "debug");
    nkw_pal_logt("T", "trace");
    nkw_pal_logi("T", "info");
    auto records = syslog_records();
    ASSERT_EQ(1u, records.size());
    EXPECT_NE(std::string::npos, records[0].text.find("info"));
}

struct PrefixCase {
    const char *tag;
    const char *expected;
};

TEST(LogLine, TagIsRightAlignedInEightColumnsAndNeverCut) {
    const PrefixCase cases[] = {
        {"MEM", "-[     MEM] hello\n"},
        {"SMS_PDU_DECODE", "-[SMS_PDU_DECODE] hello\n"},
        {"", "-[ UNKNOWN] hello\n"},
        {nullptr, "-[ UNKNOWN] hello\n"},
    };
    for (const PrefixCase &c : cases) {
        nkw::test::syslog_clear();
        nkw_pal_logi(c.tag, "hello");
        auto records = syslog_records();
        ASSERT_EQ(1u, records.size());
        EXPECT_EQ(c.expected, records[0].text);
    }
}

TEST(LogLine, OverlongTextOrTagIsCutLeavingThreeBytesOfTheLineUnused) {
    const std::string long_text(3000, 'a');
    const std::string long_tag(2000, 'T');
    const std::pair<const char *, const char *> cases[] = {{"MEM", long_text.c_str()},
                                                           {long_tag.c_str(), "never shown"}};
    for (const auto &[tag, text] : cases) {
        nkw::test::syslog_clear();
        nkw_pal_logi(tag, "%s", text);
        auto records = syslog_records();
        ASSERT_EQ(1u, records.size());
        // "-" + 1020 characters of line + "\n"
        EXPECT_EQ(1u + 1020u + 1u, records[0].text.size());
    }
}

TEST(ResultCodes, FoldIntoZeroOrOne) {
    const int32_t cases[][2] = {{0, 0}, {-1, 1}, {7, 1}, {1602, 1}, {INT32_MIN, 1}};
    for (const auto &c : cases) EXPECT_EQ(c[1], nkw_pal_err_code_convert(c[0])) << c[0];
    EXPECT_EQ(0, err_code_table[0]);
    EXPECT_EQ(0, err_code_table[1]);
    EXPECT_EQ(-1, err_code_table[2]);
    EXPECT_EQ(-1, err_code_table[3]);
}

}  // namespace
