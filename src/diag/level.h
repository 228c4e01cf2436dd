// The process's log level, shared by the writer and the level setter.
#pragma once

#include <atomic>
#include <cstdint>

namespace nkw::diag {
extern std::atomic<uint32_t> g_log_level;
}  // namespace nkw::diag
