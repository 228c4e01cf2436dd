// NMEA fields by comma position and the location parsed from them.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "location/gnss_test_util.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::gga_with;
using nkw::test::syslog_contains;

namespace {

constexpr float kUnset = 99.0f;

struct FieldCase {
    const char *name;
    std::string text;
    const char *sentence;
    unsigned char which;
    bool found;
    const char *field;
    const char *message;  // expected log text, or null for none
};

TEST(GnssNmeaField, PicksTheFieldBetweenCommas) {
    const std::string many(40, ',');
    const FieldCase cases[] = {
        {"latitude", "$GNGGA,120000.00,4807.0380,N,01131.0000,E,1", "$GNGGA", 2, true, "4807.0380",
         nullptr},
        {"hemisphere", "$GNGGA,120000.00,4807.0380,N,01131.0000,E,1", "$GNGGA", 3, true, "N",
         nullptr},
        {"field 0 is the name", "$GNRMC,1,A", "$GNRMC", 0, true, "GNRMC", nullptr},
        {"later sentence found", "$GPGSV,1,2$GNRMC,120000,A,", "$GNRMC", 2, true, "A", nullptr},
        {"commas of later sentences count", "$GNGGA,a,b*00$GNRMC,c,d", "$GNGGA", 3, true, "c",
         nullptr},
        {"empty field", "$GNGGA,,x", "$GNGGA", 1, true, "", "[Attention] no nmea data. \n"},
        {"last field has no closing comma", "$GNGGA,a,b", "$GNGGA", 2, false, "",
         "which_arg[2] is out of total comma number[3]. \n"},
        {"which 255 wraps to 0", "$GNGGA,a,b", "$GNGGA", 255, false, "",
         "which_arg[255] is out of total comma number[3]. \n"},
        {"sentence absent", "$GNRMC,a,b", "$GNGGA", 1, false, "", nullptr},
        {"over-long field cut at 19", "$GNGGA,123456789012345678901234,", "$GNGGA", 1, true,
         "1234567890123456789", nullptr},
        {"31 commas are recorded", "$GNGGA" + many + "x", "$GNGGA", 30, true, "",
         "[Attention] no nmea data. \n"},
        {"the 32nd comma is not", "$GNGGA" + many + "x", "$GNGGA", 31, false, "",
         "which_arg[31] is out of total comma number[32]. \n"},
    };
    for (const FieldCase &c : cases) {
        nkw::test::syslog_clear();
        char out[NKW_PAL_GNSS_FIELD_SIZE + 4];
        std::memset(out, 0, sizeof out);
        EXPECT_EQ(c.found,
                  nkw_pal_gnss_get_special_nmea_data(out, c.text.c_str(), c.sentence, c.which))
            << c.name;
        EXPECT_STREQ(c.field, out) << c.name;
        EXPECT_TRUE(c.message != nullptr ? syslog_contains(c.message)
                                         : nkw::test::syslog_records().empty())
            << c.name;
    }
}

TEST(GnssNmeaField, NullTextOrSentence) {
    char out[NKW_PAL_GNSS_FIELD_SIZE] = {};
    EXPECT_FALSE(nkw_pal_gnss_get_special_nmea_data(out, nullptr, "$GNGGA", 1));
    EXPECT_FALSE(nkw_pal_gnss_get_special_nmea_data(out, "$GNGGA,a,", nullptr, 1));
    EXPECT_EQ(2u, nkw::test::syslog_matching("[location_srv]failed, string is NULL! \n").size());
}

struct CoordinateCase {
    const char *name;
    const char *lat;
    const char *ns;
    const char *lon;
    const char *ew;
    float latitude;  // kUnset: left as it was
    float longitude;
};

TEST(GnssNmeaLocation, CoordinatesNeedFourOrFiveFractionDigits) {
    const CoordinateCase cases[] = {
        {"north east", "4807.0380", "N", "01131.0000", "E", 48.1173f, 11.516667f},
        {"south west", "4807.0380", "S", "01131.0000", "W", -48.1173f, -11.516667f},
        {"five digits", "4807.03800", "N", "01131.00000", "E", 48.1173f, 11.516667f},
        {"three digits", "4807.038", "N", "01131.000", "E", kUnset, kUnset},
        {"six digits", "4807.038000", "N", "01131.000000", "E", kUnset, kUnset},
        {"other hemisphere letters", "4807.0380", "E", "01131.0000", "N", kUnset, kUnset},
        {"empty hemisphere", "4807.0380", "", "01131.0000", "", kUnset, kUnset},
        {"empty values", "", "N", "", "E", kUnset, kUnset},
        {"zero", "0000.0000", "N", "00000.0000", "E", 0.0f, 0.0f},
        {"south pole, date line", "9000.0000", "S", "18000.0000", "W", -90.0f, -180.0f},
        {"minutes and fraction", "0030.6000", "N", "00145.00001", "E", 0.51f, 1.7500002f},
    };
    for (const CoordinateCase &c : cases) {
        nkw_pal_gnss_location loc{};
        loc.latitude = loc.longitude = kUnset;
        const std::string text = gga_with(c.lat, c.ns, c.lon, c.ew);
        nkw_pal_gnss_parse_location_from_nmea(text.c_str(), &loc);
        EXPECT_NEAR(c.latitude, loc.latitude, 1e-5) << c.name;
        EXPECT_NEAR(c.longitude, loc.longitude, 1e-5) << c.name;
    }
    EXPECT_TRUE(syslog_contains("[location_srv]latitude:4807.0380 48.117298. \n"));
    EXPECT_TRUE(syslog_contains("[location_srv]longitude:01131.0000 -11.516666. \n"));
}

struct DetailCase {
    const char *name;
    std::string text;
    nkw_pal_gnss_location expected;  // starting from {7, 1, 2, 3, 4, 5, 6}
};

TEST(GnssNmeaLocation, FixDetailsAndValidity) {
    const std::string rest = "4807.0380,N,01131.0000,E,";
    const DetailCase cases[] = {
        {"GGA details",
         gga_with("4807.0380", "N", "01131.0000", "E", "2,11,1.2,-12.5,M,,"),
         {7, 48.1173f, 11.516667f, -12.5f, 1.2f, 2, 11}},
        {"type truncated",
         gga_with("", "", "", "", "1.9,07,0.8,100,M,,"),
         {7, 1, 2, 100, 0.8f, 1, 7}},
        {"numbers past 32 bits held at the ends",
         gga_with("", "", "", "", "1e12,-1e12,0.5,1e3,M,,"),
         {7, 1, 2, 1000, 0.5f, INT32_MAX, INT32_MIN}},
        {"empty details are zero", gga_with("", "", "", "", ",,,,M,,"), {7, 1, 2, 0, 0, 0, 0}},
        {"missing details unchanged",
         "$GNGGA,120000.00," + rest + "1",
         {7, 48.1173f, 11.516667f, 3, 4, 5, 6}},
        {"RMC valid",
         mipc_sim::nmea_sentence("GNRMC,120000.00,A," + rest + "0.0,0.0,010324,,,A"),
         {1, 1, 2, 3, 4, 5, 6}},
        {"RMC void", mipc_sim::nmea_sentence("GNRMC,120000.00,V," + rest), {0, 1, 2, 3, 4, 5, 6}},
        {"RMC other status", "$GNRMC,120000.00,X,", {7, 1, 2, 3, 4, 5, 6}},
        {"RMC empty status", "$GNRMC,120000.00,,", {7, 1, 2, 3, 4, 5, 6}},
        {"RMC status not closed", "$GNRMC,120000.00,A", {7, 1, 2, 3, 4, 5, 6}},
        {"GP talker ignored", "$GPRMC,120000.00,A,", {7, 1, 2, 3, 4, 5, 6}},
    };
    for (const DetailCase &c : cases) {
        nkw_pal_gnss_location loc = {7, 1, 2, 3, 4, 5, 6};
        nkw_pal_gnss_parse_location_from_nmea(c.text.c_str(), &loc);
        EXPECT_EQ(c.expected.valid, loc.valid) << c.name;
        EXPECT_NEAR(c.expected.latitude, loc.latitude, 1e-5) << c.name;
        EXPECT_NEAR(c.expected.longitude, loc.longitude, 1e-5) << c.name;
        EXPECT_FLOAT_EQ(c.expected.altitude, loc.altitude) << c.name;
        EXPECT_FLOAT_EQ(c.expected.radius, loc.radius) << c.name;
        EXPECT_EQ(c.expected.sat_type, loc.sat_type) << c.name;
        EXPECT_EQ(c.expected.sat_num, loc.sat_num) << c.name;
    }
    EXPECT_TRUE(syslog_contains("[location_srv]IsValid:A 1. \n"));
    EXPECT_TRUE(syslog_contains("[location_srv]Satellite_type:1.9 1. \n"));
    EXPECT_TRUE(syslog_contains("[location_srv]altitude:-12.5 -12.500000. \n"));
}

TEST(GnssNmeaLocation, ConversionCharactersAreLoggedLiterally) {
    nkw_pal_gnss_location loc{};
    const char *text = "$GNGGA,%n%s%s,%n%n,N,%s%08x,E,%n,%s,%p,%d,M,,$GNRMC,x,%n,";
    nkw_pal_gnss_parse_location_from_nmea(text, &loc);
    EXPECT_TRUE(syslog_contains(std::string("found nmea data:") + text));
    EXPECT_TRUE(syslog_contains("Satellite_num:%s 0."));
    EXPECT_EQ(0, loc.valid);
    nkw_pal_gnss_parse_location_from_nmea(nullptr, &loc);
    nkw_pal_gnss_parse_location_from_nmea(text, nullptr);
}

}  // namespace
