// Signal strength from the modem's AT+ECSQ answer.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "nkw_pal/info.h"
#include "nkw_pal/modem.h"

using nkw::info::kTag;

namespace {

constexpr char kCommand[] = "AT+ECSQ";
constexpr char kMarker[] = "+ECSQ";
constexpr size_t kResponseSize = 256;
constexpr size_t kFieldSize = 16;
constexpr int32_t kNoSignal = -113;  // dBm, for a reading of 0 or 1

// The third comma-separated field after `line`, into `field` (zeroed, at
// most kFieldSize - 1 characters). False when there are fewer than two commas.
bool third_field(const char *line, char (&field)[kFieldSize]) {
    const char *p = line;
    for (int commas = 0; commas < 2; ++commas) {
        p = std::strchr(p, ',');
        if (p == nullptr) return false;
        ++p;
    }
    size_t length = std::strcspn(p, ",");
    if (length > kFieldSize - 1) length = kFieldSize - 1;
    std::memcpy(field, p, length);
    return true;
}

// atoi's reading, held to the int range: an over-long field must not overflow.
int decimal_value(const char *text) {
    long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

}  // namespace

extern "C" int32_t nkw_pal_get_rssi(int32_t *rssi) {
    if (!nkw::info::argument_given(rssi, __func__, "rssi")) return NKW_PAL_FAIL;
    char response[kResponseSize];
    std::memset(response, 0, sizeof response);
    uint32_t length = 0;
    if (nkw_pal_at_send(kCommand, sizeof kCommand - 1, response, sizeof response, &length) != 0) {
        NKW_LOGE(kTag, "get rssi failed for at excute failed \n");
        return NKW_PAL_FAIL;
    }
    const char *line = std::strstr(response, kMarker);
    if (line == nullptr) {
        NKW_LOGE(kTag, "get rssi failed for no +ECSQ in response \n");
        return NKW_PAL_FAIL;
    }
    line += sizeof kMarker - 1;
    uint16_t dataclass = 0;
    if (nkw_pal_get_current_dataclass(&dataclass) != 0) {
        NKW_LOGI(kTag, "get rssi failed for get dataclass failed \n");
        return NKW_PAL_FAIL;
    }
    if (dataclass == NKW_PAL_DATACLASS_NR) {
        NKW_LOGI(kTag, "get NR network type \n");
        // The NR line follows the first one.
        line = std::strstr(line, kMarker);
        if (line == nullptr) {
            NKW_LOGE(kTag, "get rssi failed for no NR +ECSQ in response \n");
            return NKW_PAL_FAIL;
        }
        line += sizeof kMarker - 1;
    }
    char field[kFieldSize];
    std::memset(field, 0, sizeof field);
    if (!third_field(line, field)) {
        NKW_LOGE(kTag, "get rssi failed for too few fields in response \n");
        return NKW_PAL_FAIL;
    }
    NKW_LOGI(kTag, "get rssi_str:%s \n", field);
    int value = decimal_value(field);
    // 0 and 1 compared unsigned; otherwise quarter-dB steps, rounded to zero.
    *rssi = static_cast<unsigned>(value) <= 1u ? kNoSignal : value / 4;
    return NKW_PAL_OK;
}
