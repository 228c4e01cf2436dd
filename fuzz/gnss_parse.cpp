// Arbitrary adaptor lines through the AT client parser and arbitrary text
// through the NMEA location parser and field extraction, each in a heap
// block of exactly its size so that a step past the terminator is caught.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "nkw_pal.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    return 0;
}

namespace {

char *text_copy(const uint8_t *data, size_t size) {
    auto *text = static_cast<char *>(std::malloc(size + 1));
    std::memcpy(text, data, size);
    text[size] = '\0';
    return text;
}

// Degrees that two or three degree digits and two minute digits can give.
bool plausible(float degrees, float limit) {
    return std::isfinite(degrees) && std::fabs(degrees) <= limit;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0 || size > 8192) return 0;

    char *line = text_copy(data, size);
    nkw_pal_gnss_at_client_parser(line);
    std::free(line);

    char *text = text_copy(data + 1, size - 1);
    nkw_pal_gnss_location loc{};
    nkw_pal_gnss_parse_location_from_nmea(text, &loc);
    if (loc.valid != 0 && loc.valid != 1) std::abort();
    if (!plausible(loc.latitude, 99 + 99 / 60.0f + 1) ||
        !plausible(loc.longitude, 999 + 99 / 60.0f + 1))
        std::abort();

    // The field never reaches the last byte of its 20-byte buffer.
    auto *field = static_cast<char *>(std::calloc(NKW_PAL_GNSS_FIELD_SIZE, 1));
    nkw_pal_gnss_get_special_nmea_data(field, text, data[0] & 1 ? "$GNGGA" : "$GNRMC", data[0]);
    if (field[NKW_PAL_GNSS_FIELD_SIZE - 1] != '\0') std::abort();
    std::free(field);

    // A quoted string into a buffer of a size the input chooses.
    const int out_size = data[0] % 32;
    auto *out = static_cast<char *>(std::malloc(out_size + 1));
    char *cursor = text;
    if (nkw_pal_gnss_at_parse_string(&cursor, out, out_size) &&
        std::strlen(out) + 1 >= static_cast<size_t>(out_size))
        std::abort();
    if (cursor < text || cursor > text + std::strlen(text)) std::abort();
    std::free(out);
    std::free(text);
    return 0;
}
