// Where the offline log capture keeps its snapshots and its record.
#pragma once

namespace nkw::host::offline_log {

// Snapshot n is this base, the number, then ".log".
inline constexpr const char kBase[] = "/data/tolv_offline_log";
inline constexpr const char kRecord[] = "/data/tolv_offline_log_record.log";

}  // namespace nkw::host::offline_log
