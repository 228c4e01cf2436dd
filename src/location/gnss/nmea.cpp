// NMEA fields by comma position, and the location they describe.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/location.h"

namespace {

// The comma table: the sentence's start and up to 31 commas after it.
constexpr int kMaxEntries = 32;
constexpr size_t kFractionSize = 10;

// Geometry of a ddmm.ffff latitude or dddmm.ffff longitude field.
struct CoordinateShape {
    int degree_digits;
    size_t min_length;
    size_t max_length;
};
constexpr CoordinateShape kLatitude = {2, 6, 14};
constexpr CoordinateShape kLongitude = {3, 7, 15};

int digits_value(const char *text, int count) {
    char digits[4] = {};
    std::memcpy(digits, text, static_cast<size_t>(count));
    return std::atoi(digits);
}

// Degrees of a coordinate field; false when its fraction is not exactly 4
// or 5 digits (the value is then left as it was).
bool coordinate_value(const char *field, const CoordinateShape &shape, double *value) {
    const size_t length = std::strlen(field);
    char fraction[kFractionSize] = {};
    if (length >= shape.min_length && length <= shape.max_length) {
        std::strncpy(fraction, field + shape.degree_digits + 3, sizeof fraction - 1);
    }
    double divisor = 0.0;
    switch (std::strlen(fraction)) {
        case 4:
            divisor = 600000.0;
            break;
        case 5:
            divisor = 6000000.0;
            break;
        default:
            return false;
    }
    const int degrees = digits_value(field, shape.degree_digits);
    const int minutes = digits_value(field + shape.degree_digits, 2);
    *value = degrees + minutes / 60.0 + std::atoi(fraction) / divisor;
    return true;
}

bool field(char *out, const char *text, const char *sentence, unsigned char which) {
    std::memset(out, 0, NKW_PAL_GNSS_FIELD_SIZE);
    return nkw_pal_gnss_get_special_nmea_data(out, text, sentence, which);
}

// A decimal text truncated to an integer; values past the 32-bit range are
// held at its ends rather than left undefined.
int32_t truncated(const char *value) {
    const double number = std::strtod(value, nullptr);
    if (!(number == number)) return 0;  // NaN
    if (number <= static_cast<double>(INT32_MIN)) return INT32_MIN;
    if (number >= static_cast<double>(INT32_MAX)) return INT32_MAX;
    return static_cast<int32_t>(number);
}

// The coordinate signed by its hemisphere letter; false for other letters.
bool signed_by(char hemisphere, char positive, char negative, double *value) {
    if (hemisphere == negative) *value = -*value;
    return hemisphere == positive || hemisphere == negative;
}

}  // namespace

extern "C" {

bool nkw_pal_gnss_get_special_nmea_data(char *out, const char *text, const char *sentence,
                                        unsigned char which) {
    if (text == nullptr || sentence == nullptr) {
        NKW_LOGE("GNSS", "[location_srv]failed, string is NULL! \n");
        return false;
    }
    const char *start = std::strstr(text, sentence);
    if (start == nullptr) return false;
    // Every comma to the end of the text counts, later sentences' too; past
    // the table's size they are not recorded.
    const char *entries[kMaxEntries];
    uint16_t count = 0;
    entries[count++] = start;
    for (const char *p = start; *p != '\0' && count < kMaxEntries; ++p) {
        if (*p == ',') entries[count++] = p;
    }
    const uint8_t k = static_cast<uint8_t>(which + 1);
    if (k == 0 || k >= count) {
        NKW_LOGE("GNSS", "[location_srv]which_arg[%d] is out of total comma number[%d]. \n", which,
                 count);
        return false;
    }
    const char *from = entries[which] + 1;
    size_t length = static_cast<size_t>(entries[k] - from);
    if (length == 0) {
        NKW_LOGI("GNSS", "[location_srv][Attention] no nmea data. \n");
        return true;
    }
    if (out == nullptr) return false;
    // A field longer than the callers' 20-byte buffers is cut.
    if (length > NKW_PAL_GNSS_FIELD_SIZE - 1) length = NKW_PAL_GNSS_FIELD_SIZE - 1;
    std::memcpy(out, from, length);
    return true;
}

void nkw_pal_gnss_parse_location_from_nmea(const char *text, nkw_pal_gnss_location *loc) {
    if (text == nullptr || loc == nullptr) {
        NKW_LOGE("GNSS", "[location_srv]failed, string is NULL! \n");
        return;
    }
    char letter[NKW_PAL_GNSS_FIELD_SIZE];
    char value[NKW_PAL_GNSS_FIELD_SIZE];
    double degrees = 0.0;

    if (field(letter, text, "$GNGGA", 3)) {
        NKW_LOGI("GNSS", "[location_srv]found nmea data:%s. \n", text);
        field(value, text, "$GNGGA", 2);
        if (coordinate_value(value, kLatitude, &degrees) &&
            signed_by(letter[0], 'N', 'S', &degrees)) {
            loc->latitude = static_cast<float>(degrees);
            NKW_LOGI("GNSS", "[location_srv]latitude:%s %f. \n", value, loc->latitude);
        }
    }
    if (field(letter, text, "$GNGGA", 5)) {
        field(value, text, "$GNGGA", 4);
        if (coordinate_value(value, kLongitude, &degrees) &&
            signed_by(letter[0], 'E', 'W', &degrees)) {
            loc->longitude = static_cast<float>(degrees);
            NKW_LOGI("GNSS", "[location_srv]longitude:%s %f. \n", value, loc->longitude);
        }
    }

    if (field(value, text, "$GNGGA", 6)) {
        loc->sat_type = truncated(value);
        NKW_LOGI("GNSS", "[location_srv]Satellite_type:%s %d. \n", value, loc->sat_type);
    }
    if (field(value, text, "$GNGGA", 7)) {
        loc->sat_num = truncated(value);
        NKW_LOGI("GNSS", "[location_srv]Satellite_num:%s %d. \n", value, loc->sat_num);
    }
    if (field(value, text, "$GNGGA", 8)) {
        loc->radius = static_cast<float>(std::strtod(value, nullptr));
        NKW_LOGI("GNSS", "[location_srv]radius:%s %f. \n", value, loc->radius);
    }
    if (field(value, text, "$GNGGA", 9)) {
        loc->altitude = static_cast<float>(std::strtod(value, nullptr));
        NKW_LOGI("GNSS", "[location_srv]altitude:%s %f. \n", value, loc->altitude);
    }

    if (field(value, text, "$GNRMC", 2)) {
        NKW_LOGI("GNSS", "[location_srv]found nmea data:%s. \n", text);
        if (value[0] == 'A') {
            loc->valid = 1;
            NKW_LOGI("GNSS", "[location_srv]IsValid:%s %d. \n", value, loc->valid);
        } else if (value[0] == 'V') {
            loc->valid = 0;
        }
    }
}

}  // extern "C"
