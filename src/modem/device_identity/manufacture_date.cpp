// Manufacture date YYYYMM01 from the serial number that AT+CFSN returns.
#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "nkw_pal/info.h"
#include "nkw_pal/modem.h"

using nkw::info::kTag;

namespace {

constexpr char kCommand[] = "AT+CFSN";
constexpr size_t kResponseSize = 31;
constexpr size_t kSerialLen = 10;
constexpr size_t kYearIndex = 4;
constexpr size_t kMonthIndex = 5;
constexpr int kDefaultYear = 2010;
constexpr int kDefaultMonth = 1;

// A to Z without I and O; searched in this order, case-sensitively.
struct DateLetter {
    char letter;
    int year;
    int month;
};
constexpr DateLetter kLetters[] = {
    {'A', 2010, 1},  {'B', 2011, 1},  {'C', 2012, 2},  {'D', 2013, 2},  {'E', 2014, 3},
    {'F', 2015, 3},  {'G', 2016, 4},  {'H', 2017, 4},  {'J', 2018, 5},  {'K', 2019, 5},
    {'L', 2020, 6},  {'M', 2021, 6},  {'N', 2022, 7},  {'P', 2023, 7},  {'Q', 2024, 8},
    {'R', 2025, 8},  {'S', 2026, 9},  {'T', 2027, 9},  {'U', 2028, 10}, {'V', 2029, 10},
    {'W', 2030, 11}, {'X', 2031, 11}, {'Y', 2032, 12}, {'Z', 2033, 12},
};

int year_of(char letter) {
    for (const DateLetter &row : kLetters) {
        if (row.letter == letter) return row.year;
    }
    return kDefaultYear;
}

int month_of(char letter) {
    for (const DateLetter &row : kLetters) {
        if (row.letter == letter) return row.month;
    }
    return kDefaultMonth;
}

// Year and month coded in the serial between the response's first two
// quotation marks; the defaults when there is no 10-character serial.
void nkw_pal_get_date_string(const char *response, int *year, int *month) {
    *year = kDefaultYear;
    *month = kDefaultMonth;
    const char *open = std::strchr(response, '"');
    if (open == nullptr) return;
    const char *close = std::strchr(open + 1, '"');
    if (close == nullptr || static_cast<size_t>(close - open - 1) != kSerialLen) return;
    char serial[kSerialLen + 1] = {};
    std::memcpy(serial, open + 1, kSerialLen);
    NKW_LOGI(kTag, "SN: %s \n", serial);
    *year = year_of(serial[kYearIndex]);
    *month = month_of(serial[kMonthIndex]);
}

}  // namespace

extern "C" int32_t nkw_pal_get_manufacture_date(char *date) {
    if (!nkw::info::argument_given(date, __func__, "manufacture date")) return NKW_PAL_INVALID_ARG;
    char response[kResponseSize];
    std::memset(response, 0, sizeof response);
    uint32_t length = 0;
    if (nkw_pal_at_send(kCommand, sizeof kCommand - 1, response, sizeof response, &length) != 0) {
        NKW_LOGE(kTag, "get manufacture date for at excute failed \n");
        return NKW_PAL_FAIL;
    }
    int year = 0;
    int month = 0;
    nkw_pal_get_date_string(response, &year, &month);
    // Years of the table have four digits: YYYYMM01 and the NUL fill 9 bytes.
    int written = std::sprintf(date, "%d", year);
    std::sprintf(date + written, "%02d01", month);
    NKW_LOGI(kTag, "manufacture date: %s \n", date);
    return NKW_PAL_OK;
}
