// Chip type and firmware version: the quoted text of the ATI5 and ATI8 answers.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/device_identity/quoted_answer.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"

using nkw::info::kTag;
using nkw::info::take_window;

namespace {

// A name that does not close within these first bytes is a failure.
constexpr size_t kChipWindow = 20;
constexpr size_t kVersionWindow = 64;
static_assert(kChipWindow <= kVersionWindow, "the local copy holds the widest window");

// Sends `command` and copies the text between the first two quotation marks
// found within `window` bytes of the answer to `out`; logs as `func`.
int32_t read_quoted(const char *func, const char *what, const char *command, size_t window,
                    char *out) {
    if (!nkw::info::argument_given(out, func, what)) return NKW_PAL_INVALID_ARG;
    mipc_sys_at_struct record;
    if (!nkw::info::at_answer(func, what, command, record)) return NKW_PAL_FAIL;
    char local[kVersionWindow + 1];
    take_window(record.atcmd_res_ptr, sizeof record.atcmd_res_ptr, local, window);
    const char *p1 = std::strchr(local, '"');
    if (p1 != nullptr) NKW_LOGI_IN(func, kTag, "p1: %s \n", p1);
    const char *p2 = p1 != nullptr ? std::strchr(p1 + 1, '"') : nullptr;
    if (p2 != nullptr) NKW_LOGI_IN(func, kTag, "p2: %s \n", p2);
    if (p1 == nullptr || p2 == nullptr) {
        NKW_LOGE_IN(func, kTag, "get %s failed for result: %d \n", what, 0);
        return NKW_PAL_FAIL;
    }
    size_t length = static_cast<size_t>(p2 - p1 - 1);
    std::memcpy(out, p1 + 1, length);
    NKW_LOGI_IN(func, kTag, "get %s: %.*s \n", what, static_cast<int>(length), p1 + 1);
    return NKW_PAL_OK;
}

}  // namespace

extern "C" {

int32_t nkw_pal_get_chip_type(char *chip_type) {
    return read_quoted(__func__, "chip type", "ATI5\r\n", kChipWindow, chip_type);
}

int32_t nkw_pal_get_firmware_version(char *version) {
    return read_quoted(__func__, "firmware version", "ATI8\r\n", kVersionWindow, version);
}

}  // extern "C"
