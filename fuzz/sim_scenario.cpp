// Scenario documents and injected events: whatever arrives is refused with a
// message or accepted, never a crash.
#include <cstddef>
#include <cstdint>
#include <string>

#include "mipc_sim_scenario.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    std::string error;
    if (!mipc_sim::check_scenario(text, &error) && error.empty()) __builtin_trap();
    return 0;
}
