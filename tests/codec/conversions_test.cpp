// Text and number conversions, hex, trimming and equality.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <tuple>

#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

TEST(Atoi, SkipsSpacesOnlyTakesOneSignWrapsAndComplainsAboutZero) {
    const std::tuple<const char *, int32_t> cases[] = {
        {"  -42abc", -42}, {"+7", 7}, {"\t5", 0}, {"0", 0}, {"--1", 0}, {"4294967297", 1}};
    for (auto [text, value] : cases) {
        nkw::test::syslog_clear();
        EXPECT_EQ(value, nkw_pal_atoi(text)) << text;
        EXPECT_EQ(value == 0, syslog_contains("there are no numbers in the string \n")) << text;
    }
    EXPECT_EQ(-1, nkw_pal_atoi(nullptr));
    EXPECT_TRUE(syslog_contains("CODETRANS] [nkw_pal_atoi:"));
}

TEST(Itoa, SignOnlyInDecimalAndBadRadixRefused) {
    // clang-format off
    const std::tuple<int32_t, int32_t, const char *> cases[] = {
        {-255, 10, "-255"}, {255, 16, "FF"}, {0, 2, "0"}, {INT32_MIN, 10, "-2147483648"}, {35, 36, "Z"},
        {-1, 16, "FFFFFFFF"}, {-1, 2, "11111111111111111111111111111111"}};
    // clang-format on
    char buf[NKW_PAL_ITOA_BUF_SIZE];
    for (auto [value, radix, text] : cases) {
        EXPECT_EQ(buf, nkw_pal_itoa(value, buf, radix));
        EXPECT_STREQ(text, buf) << value << " radix " << radix;
    }
    for (int32_t radix : {0, 1, 37}) EXPECT_EQ(nullptr, nkw_pal_itoa(5, buf, radix));
    EXPECT_TRUE(syslog_contains("The input radix is NULL \n"));
}

TEST(StrToInt, WholeTextUsedValueTruncatedAndRangeStoresAFailedZero) {
    // status, signed and unsigned results (99: untouched)
    // clang-format off
    const std::tuple<const char *, int32_t, int32_t, uint32_t> cases[] = {
        {" 12", 0, 12, 12}, {"12 ", -1, 99, 99}, {"", 0, 0, 0}, {"-5", 0, -5, 0xFFFFFFFB},
        {"4294967295", 0, -1, 0xFFFFFFFF}};
    // clang-format on
    for (auto [text, status, value, uvalue] : cases) {
        int32_t got = 99;
        uint32_t ugot = 99;
        EXPECT_EQ(status, nkw_pal_strtoint32(text, &got)) << text;
        EXPECT_EQ(status, nkw_pal_strtouint32(text, &ugot)) << text;
        EXPECT_EQ(value, got) << text;
        EXPECT_EQ(uvalue, ugot) << text;
    }
    EXPECT_TRUE(syslog_contains("invalid int str:12  \n"));
    const std::tuple<const char *, int32_t, int32_t, int32_t, int32_t> ranged[] = {
        {"5", 1, 5, 0, 5}, {"7", 1, 5, -1, 99}, {"x", -1, 1, -1, 0}, {"x", 1, 5, -1, 99}};
    for (auto [text, min, max, status, value] : ranged) {
        int32_t got = 99;
        EXPECT_EQ(status, nkw_pal_strtoint32_range(text, min, max, &got)) << text;
        EXPECT_EQ(value, got) << text;
    }
    EXPECT_TRUE(syslog_contains("int out of range: val=7, min=1, max=5 \n"));
    nkw::test::syslog_clear();  // a missing result is only refused where it would be written
    EXPECT_EQ(-1, nkw_pal_strtoint32_range("9", 1, 5, nullptr));
    EXPECT_EQ(-1, nkw_pal_strtoint32_range("3", 1, 5, nullptr));
    EXPECT_TRUE(syslog_contains("int out of range: val=9, min=1, max=5 \n"));
    EXPECT_TRUE(syslog_contains("result is null \n"));
}

TEST(Hex, Hex2StrAddsIntoTheOutputBytesToHexKeepSizeAndCase) {
    char out[6] = {1, 2, 3, 'S', 'S', 'S'};  // not zeroed: the sums show
    EXPECT_EQ(2, nkw_pal_hex2str("4azz", 4, out, 3));
    EXPECT_EQ(std::string("\x4b\x02\0S", 4), std::string(out, 4));
    EXPECT_EQ(-1, nkw_pal_hex2str("4a5B", 4, out, 2));
    EXPECT_TRUE(syslog_contains("dsize is too small \n"));
    EXPECT_EQ(4, nkw_pal_str2hex("\xAB\x01", 2, out, 5));
    EXPECT_EQ(std::string("ab01\0S", 6), std::string(out, 6));
    EXPECT_EQ(-1, nkw_pal_str2hex("\xAB\x01", 2, out, 4));
    const uint8_t bytes[] = {0xAB, 0x0c};
    EXPECT_EQ(0, nkw_pal_bin2hex(bytes, 2, out, 4));
    EXPECT_EQ(0, nkw_pal_bin2hex1(bytes, 1, out, 2, 0));
    EXPECT_EQ(std::string("ab0C\0S", 6), std::string(out, 6));  // no terminator of its own
    EXPECT_EQ(-1, nkw_pal_bin2hex(bytes, 2, out, 3));
    EXPECT_TRUE(syslog_contains("out buffer is too small 3 \n"));
}

TEST(Hex, Hex2BinZeroesTheWholeOutputAndStopsSilentlyAtABadDigit) {
    // status and all 4 output bytes ('S' beforehand)
    // clang-format off
    const std::tuple<const char *, int32_t, const char *> cases[] = {
        {"A1b2", 0, "\xA1\xB2\0\0"}, {"0g", -1, "\0\0\0\0"}, {"12x4", -1, "\x12\0\0\0"},
        {"1234567890", -1, "SSSS"}, {"123", -1, "SSSS"}};
    // clang-format on
    for (auto [hex, status, bytes] : cases) {
        uint8_t out[4] = {'S', 'S', 'S', 'S'};
        EXPECT_EQ(status, nkw_pal_hex2bin(hex, static_cast<uint32_t>(std::strlen(hex)), out, 4));
        EXPECT_EQ(std::string(bytes, 4), std::string(out, out + 4)) << hex;
    }
    EXPECT_TRUE(syslog_contains("<out_buf> is too small\n \n"));
    EXPECT_TRUE(syslog_contains("invalide hex string\n \n"));
    EXPECT_EQ(2u, nkw::test::syslog_records().size());  // bad digits are not logged
}

TEST(Helpers, PowTruncatesTrimKeepsTheFirstCharacterEqualityChecksLengths) {
    EXPECT_EQ(0, nkw_pal_pow(2, -1));
    EXPECT_EQ(INT64_MAX, nkw_pal_pow(2, 63));
    const char *cases[][3] = {{"xxabxx", "xxab", "ab"}, {"xxx", "x", ""}, {"", "", ""}};
    for (const auto &c : cases) {
        std::string right = c[0], both = c[0];
        EXPECT_EQ(&right[0], nkw_pal_str_trim_right(&right[0], 'x'));
        EXPECT_STREQ(c[1], right.c_str());
        EXPECT_STREQ(c[2], nkw_pal_str_trim(&both[0], 'x'));
    }
    EXPECT_EQ(0, nkw_pal_mem_equal("abc", -1, "abc", -1));
    EXPECT_EQ(1, nkw_pal_nstr_equal("ABcd", 2, "abXY", 2, 0));
    EXPECT_EQ(0, nkw_pal_nstr_equal("ab", 2, "ab", 1, 0));
}

}  // namespace
