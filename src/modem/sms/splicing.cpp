// Concatenation state of GSM message parts. Callers always receive the part
// they decoded; the joined text is assembled per call and only logged.
#include "modem/sms/splicing.h"

#include <cstring>

#include "diag/log.h"
#include "modem/sms/hex.h"
#include "os/heap_record.h"

namespace nkw::sms {
namespace {

constexpr const char *kTag = "SMS_PDU_DECODE";
constexpr uint32_t kScratchSize = 1024;

struct SplicingState {
    bool in_progress;
    uint8_t refnum;
    uint8_t maxnum;
    uint8_t curnum;
    uint32_t segment_size;
    uint32_t received;
};

// One message is decoded at a time; see the header.
SplicingState g_state;

// Places the part at its slot; a slot outside the scratch area (part number 0, or
// part numbers and sizes that do not fit) is left out of the joined text.
uint32_t place_part(char (&scratch)[kScratchSize], uint8_t curnum, uint32_t segment_size,
                    const char *text, uint32_t length) {
    if (curnum == 0) return 0;
    uint32_t offset = (curnum - 1u) * segment_size;
    if (offset > kScratchSize || length > kScratchSize - offset) return 0;
    std::memcpy(scratch + offset, text, length);
    return offset + length;
}

// The joined text is rendered as hex and dropped: a diagnostic only.
// Its free is logged under the caller's name.
void render_joined(const char (&scratch)[kScratchSize], uint32_t used,
                   const char *function = __builtin_FUNCTION(), int line = __builtin_LINE()) {
    auto hex = HeapRecord<char>::adopt(
        tolv_HextoChar(reinterpret_cast<const uint8_t *>(scratch), used), function, line);
    hex.reset();
}

}  // namespace

int32_t SplicingPdu(uint8_t refnum, uint8_t maxnum, uint8_t curnum, const char *text,
                    uint32_t length) {
    char scratch[kScratchSize] = {};
    if (!g_state.in_progress) {
        g_state.refnum = refnum;
        g_state.maxnum = maxnum;
        g_state.curnum = curnum;
        NKW_LOGI(kTag, "refnum = %x, maxnum = %d, curnum = %d size = %d \n", refnum, maxnum, curnum,
                 static_cast<int>(length));
        g_state.in_progress = true;
        if (g_state.curnum == g_state.maxnum) {
            uint32_t used = place_part(scratch, 1, 0, text, length);
            g_state.in_progress = false;
            g_state.received = 0;
            NKW_LOGI(kTag, "length = %d \n", static_cast<int>(used));
            render_joined(scratch, used);
        } else {
            g_state.segment_size = length;
            place_part(scratch, curnum, g_state.segment_size, text, length);
            ++g_state.received;
        }
        return 0;
    }
    if (refnum != g_state.refnum) return 0;

    g_state.curnum = curnum;
    NKW_LOGI(kTag, "SmsCurNum = %d \n", curnum);
    NKW_LOGI(kTag, "msgPtr is %s, size = %d, max_len = %d \n", text, static_cast<int>(length),
             static_cast<int>(kScratchSize));
    uint32_t used = place_part(scratch, curnum, g_state.segment_size, text, length);
    ++g_state.received;
    if (g_state.received == g_state.maxnum) {
        g_state = SplicingState{};
        NKW_LOGI(kTag, "length = %d \n", static_cast<int>(used));
        render_joined(scratch, used);
    }
    return 0;
}

}  // namespace nkw::sms
