// Shared pieces of the SMS store operations.
#pragma once

#include "modem/mipc.h"

namespace nkw::sms {

inline constexpr const char *kStoreTag = "SMS";
// Every store request addresses the whole modem.
inline constexpr auto kStorePs = MIPC_PS_ALL;
// The modem's flag for reads and deletes, passed as it is.
inline constexpr uint32_t kStoreFlag = 5;

}  // namespace nkw::sms
