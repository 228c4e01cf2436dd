// Renders decoded SMS data as hex text for diagnostics.
#include "modem/sms/hex.h"

#include "os/heap_record.h"

namespace nkw::sms {

char *tolv_HextoChar(const uint8_t *data, uint32_t length) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    auto text = HeapRecord<char>::allocate(length * 2 + 1, false);
    if (!text) return nullptr;
    for (uint32_t i = 0; i < length; ++i) {
        text.get()[2 * i] = kDigits[data[i] >> 4];
        text.get()[2 * i + 1] = kDigits[data[i] & 0x0F];
    }
    text.get()[2 * length] = '\0';
    return text.release();
}

}  // namespace nkw::sms
