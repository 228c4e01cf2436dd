// Helpers of the SIM, network and device information tests.
#pragma once

#include <cstring>
#include <string>

#include "support/syslog_capture.h"

namespace nkw::test {

constexpr char kMarker = '#';

// A caller's buffer pre-filled with a marker byte, to see where the copy ends.
template <size_t N>
struct Marked {
    char bytes[N];
    Marked() { std::memset(bytes, kMarker, N); }
    // The text up to the first marker byte.
    std::string text() const { return std::string(bytes, strnlen_marker()); }
    size_t strnlen_marker() const {
        const void *at = std::memchr(bytes, kMarker, N);
        return at ? static_cast<size_t>(static_cast<const char *>(at) - bytes) : N;
    }
};

// Every heap record the library logged as allocated was logged as freed.
inline bool heap_balanced() {
    return syslog_matching("]-malloc ").size() == syslog_matching("]-free ").size();
}

}  // namespace nkw::test
