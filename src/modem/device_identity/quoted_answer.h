// The quoted text of an ATI answer, searched for in its first bytes only.
#pragma once

#include <cstddef>
#include <cstring>

namespace nkw::info {

// Copies the first `window` bytes of `response` (bounded by `field`) into
// `local` (zeroed, window + 1 bytes) so the search can never leave it.
inline void take_window(const char *response, size_t field, char *local, size_t window) {
    std::memset(local, 0, window + 1);
    size_t length = strnlen(response, field);
    std::memcpy(local, response, length < window ? length : window);
}

}  // namespace nkw::info
