// Base64, BCD, 7-bit packing and checksums: fixed cases and comparisons with
// the plain references.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>

#include "codec/codec_reference.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;
namespace ref = nkw::test::ref;
using namespace std::string_literals;

namespace {

const uint8_t *bytes(const std::string &s) {
    return reinterpret_cast<const uint8_t *>(s.data());
}
uint8_t *bytes(std::string &s) {
    return reinterpret_cast<uint8_t *>(&s[0]);
}
uint32_t size_of(const std::string &s) {
    return static_cast<uint32_t>(s.size());
}

TEST(Base64, EncodedSizeMayEqualTheTextAndDecodedZeroLandsExpectedBytesFurther) {
    std::string text(5, 'S');
    EXPECT_EQ(4, nkw_pal_base64_encode(&text[0], 4, bytes("Ma"s), 2));
    EXPECT_EQ("TWE=\0"s, text);
    EXPECT_EQ(-1, nkw_pal_base64_encode(&text[0], 3, bytes("Ma"s), 2));
    // text, result, the whole output buffer ('S' beforehand; its length is `size`)
    // clang-format off
    const std::tuple<std::string, int32_t, std::string> cases[] = {
        {"TWE=", 2, "MaSS\0SSS"s}, {"TQ==", 1, "M"}, {"TWFu\r\nTQ== \n", 9, "ManMSSSSSSSSS\0SS"s},
        {"AAAAAA==", 4, "\0\0\0\0SSSS"s}, {"    ", 0, "SSS"}, {"TW=E", -1, "SSS"}, {"TW E", -1, "SSS"},
        {"TQ\r=", -1, "SSS"}, {"T===", -1, "SSS"}, {"TW\xC3\xA9", -1, "SSS"}, {"TWE=", -1, "S"}};
    // clang-format on
    for (const auto &[in, result, want] : cases) {
        std::string out(want.size(), 'S');
        EXPECT_EQ(result, nkw_pal_base64_decode(bytes(out), size_of(out), in.data(), size_of(in)));
        EXPECT_EQ(want, out) << in;
    }
    EXPECT_TRUE(syslog_contains("dsize too small \n"));
}

TEST(Base64, MatchesTheReferenceOnRandomBytesAndNoisyTexts) {
    nkw_pal_log_set_level(0);  // short outputs fail often: skip the log pause
    std::mt19937 rng(4);
    for (int round = 0; round < 3000; ++round) {
        const ref::Bytes in = ref::random_bytes(rng, rng() % 200 + 1);
        std::string text = ref::base64_encode(in.data(), in.size()), got_text(text.size() + 1, 'S');
        ASSERT_EQ(static_cast<int32_t>(text.size()),
                  nkw_pal_base64_encode(&got_text[0], size_of(text), in.data(), in.size()));
        ASSERT_EQ(text + '\0', got_text);
        // Some characters swapped for blanks, line breaks, pads or invalid ones.
        for (int k = rng() % 3; k > 0; --k)
            text[rng() % text.size()] = "AZaz09+/= \r\n\t*"[rng() % 14];
        const uint32_t size = static_cast<uint32_t>(rng() % (text.size() + 8));
        ref::Bytes want(2 * text.size() + 16, 0xA5), got(size, 0xA5);
        ASSERT_EQ(ref::base64_decode(want.data(), size, text),
                  nkw_pal_base64_decode(got.data(), size, text.data(), size_of(text)))
            << text;
        ASSERT_EQ(ref::Bytes(want.begin(), want.begin() + size), got) << text;
    }
}

TEST(Bcd, FillerEndsTheNumberAndTheSizeIsTestedOncePerByte) {
    // bcd, size, status, the size + 2 bytes of text ('S' beforehand)
    // clang-format off
    const std::tuple<std::string, uint32_t, int32_t, std::string> cases[] = {
        {"\x21\xF3", 4, 0, "123\0SS"s}, {"\xBA\xDC\xFE", 6, 0, "*#pw+\0SS"s},
        {"\x21\x43\x65", 3, 0, "1234\0"s} /* '4' and the zero past size */, {"\x21\x1F", 4, -1, "12SSSS"}};
    // clang-format on
    for (const auto &[bcd, size, status, want] : cases) {
        std::string text(size + 2, 'S');
        uint32_t len = 99;
        EXPECT_EQ(status, nkw_pal_bcd_to_ascii(bytes(bcd), size_of(bcd), &text[0], size, &len));
        EXPECT_EQ(want, text);
        EXPECT_EQ(status == 0 ? std::strlen(text.c_str()) : 99u, len);
    }
    EXPECT_TRUE(syslog_contains("invalid bcd \x1F \n"));
    uint32_t n;
    EXPECT_EQ(-1, nkw_pal_bcd_to_ascii(nullptr, 1, nullptr, 4, &n));
    EXPECT_TRUE(syslog_contains("ascii is NULL \n") && !syslog_contains("bcd is NULL"));
}

TEST(Bcd, TextToBcdKeepsAnOddFillerAndCountsInFullEvenWhenCut) {
    // text, size, status, 3 output bytes ('S' beforehand), count (99: untouched)
    // clang-format off
    const std::tuple<std::string, uint32_t, int32_t, std::string, uint32_t> cases[] = {
        {"12*", 3, 0, "\x21\xFAS", 2}, {"Pw#+p", 3, 0, "\xDC\xEB\xFC", 3}, {"123456", 1, 0, "\x21SS", 3},
        {"12a4", 3, -1, "\x21SS", 99}};
    // clang-format on
    for (const auto &[text, size, status, want, want_count] : cases) {
        std::string out = "SSS";
        uint32_t count = 99;
        EXPECT_EQ(status,
                  nkw_pal_ascii_to_bcd(text.c_str(), size_of(text), bytes(out), size, &count));
        EXPECT_EQ(want, out) << text;
        EXPECT_EQ(want_count, count) << text;
    }
    EXPECT_TRUE(syslog_contains("invalid a \n"));
}

TEST(Bcd, RawNibblesLowFirstAndByteIndexSizeIsWrittenToo) {
    char hex[5] = "SSSS";
    nkw_pal_decode_rawbcd_to_ascii(bytes("\x12\xAB"s), hex, 2);
    EXPECT_STREQ("21BA", hex);
    // text, size, last byte, 4 output bytes ('S' beforehand)
    // clang-format off
    const std::tuple<std::string, uint8_t, uint8_t, std::string> cases[] = {
        {"1234", 3, 0x43, "\x21\x43\xFFS"}, {"123", 3, 0x03, "\x21\x03\xFFS"}, {"123456", 1, 0x43, "\x21\x43SS"},
        {"GZ", 3, 0xE7, "\xE7\xFF\xFFS"}, {"", 3, 0, "\0SSS"s}, {"12" + std::string(256, '9'), 3, 0x21, "\x21\xFF\xFFS"}};
    // clang-format on
    for (const auto &[text, size, last, want] : cases) {
        std::string out = "SSSS";
        EXPECT_EQ(last, nkw_pal_encode_ascii_to_rawbcd(text.c_str(), bytes(out), size)) << text;
        EXPECT_EQ(want, out) << text;
    }
}

TEST(SevenBit, SpareBitsGetACarriageReturnAndTheBoundLetsOneMoreByteThrough) {
    const auto encode = nkw_pal_7bit_encode, decode = nkw_pal_7bit_decode;
    // codec, input, size, count, the size + 1 output bytes (0xA5 beforehand)
    const std::tuple<decltype(encode), std::string, uint32_t, uint32_t, ref::Bytes> cases[] = {
        {encode, "hellohe", 7, 7, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0x01 | 0x1A, 0xA5}},
        {encode, "hellohel", 7, 7, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xA5}},
        {encode, "hellohe", 1, 2, {0xE8, 0x32 | 0x1A}},
        {encode, "", 1, 0, {0xA5, 0xA5}},
        {decode, "\xE8\x32\x9B\xFD\x46\x97\xD9", 7, 8, {'h', 'e', 'l', 'l', 'o', 'h', 'e', 'l'}}};
    for (const auto &[codec, in, size, want_count, want] : cases) {
        ref::Bytes out(size + 1, 0xA5);
        uint32_t count = 99;
        EXPECT_EQ(0, codec(bytes(in), size_of(in), out.data(), size, &count));
        EXPECT_EQ(want, out) << in;
        EXPECT_EQ(want_count, count) << in;
    }
}

TEST(SevenBit, MatchesTheReferenceOnRandomSeptetsAndBounds) {
    std::mt19937 rng(7);
    for (int round = 0; round < 5000; ++round) {
        const uint32_t n = rng() % 300, size = rng() % 300;
        // Now and then bytes with the top bit set, which overlap their neighbours.
        const ref::Bytes in = ref::random_bytes(rng, n, round % 4 == 0 ? 0xFF : 0x7F);
        ref::Bytes want(size + 1, 0xA5), got(size + 1, 0xA5), want2 = want, got2 = got;
        uint32_t count = 0, count2 = 0;
        nkw_pal_7bit_encode(in.data(), n, got.data(), size, &count);
        nkw_pal_7bit_decode(in.data(), n, got2.data(), size, &count2);
        ASSERT_EQ(ref::septets_encode(in.data(), n, want.data(), size), count) << n << "/" << size;
        ASSERT_EQ(ref::septets_decode(in.data(), n, want2.data(), size), count2)
            << n << "/" << size;
        ASSERT_EQ(want, got) << n << "/" << size;
        ASSERT_EQ(want2, got2) << n << "/" << size;
    }
}

TEST(Checksums, KnownValuesAndTheReferencesAtEveryLengthAndAlignment) {
    EXPECT_EQ(0x31C3u, nkw_pal_crc16(bytes("123456789"s), 9));
    EXPECT_EQ(0u, nkw_pal_crc16(nullptr, 9) | nkw_pal_bcc(bytes("12"s), -2));
    std::mt19937 rng(16);
    const ref::Bytes data = ref::random_bytes(rng, 512);
    for (size_t offset = 0; offset < 8; ++offset) {
        uint8_t bcc = 0;
        for (size_t n = 0; n < 300; bcc ^= data[offset + n++]) {
            const uint8_t *p = data.data() + offset;
            ASSERT_EQ(ref::crc16_bitwise(p, n), nkw_pal_crc16(p, static_cast<int32_t>(n))) << n;
            ASSERT_EQ(bcc, nkw_pal_bcc(p, static_cast<int32_t>(n))) << n;
        }
    }
}

}  // namespace
