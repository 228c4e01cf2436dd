// Steps of the offline log capture that its files share.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace nkw::offline_log {

inline constexpr const char *kTag = "LOG";
inline constexpr uint8_t kFiles = 8;
inline constexpr const char kRecordKey[] = "current_log_file:";
// The record file is always written whole at this size.
inline constexpr size_t kRecordSize = 40;

// Number of the snapshot file written last; restored from the record.
extern std::atomic<uint8_t> g_current;

// The test build's paths are longer by its sandbox root; command and path
// buffers grow by this much so a relocated path is never cut (0 in
// production, where the buffers keep their fixed sizes).
size_t path_growth();

// Restores the rotation from the record file; 0 or -1.
int32_t restore();
// Removes every snapshot and the record file.
void clear();

}  // namespace nkw::offline_log

// Named in the log texts, hence the plain names.
int32_t nkw_pal_offline_log_record(uint8_t n);
int32_t nkw_pal_offline_log_startup();
int32_t nkw_pal_offline_log_reboot();
void nkw_pal_offline_log_clear();
