// Shared pieces of the SMS store operations.
#pragma once

#include "diag/log.h"
#include "modem/mipc.h"
#include "os/heap_record.h"

namespace nkw::sms {

inline constexpr const char *kStoreTag = "SMS";
// Every store request addresses the whole modem.
inline constexpr auto kStorePs = MIPC_PS_ALL;
// The modem's flag for reads and deletes, passed as it is.
inline constexpr uint32_t kStoreFlag = 5;

// Frees a request's result record, saying so under the caller's name, and
// passes `status` on: every path of a store operation ends here.
template <typename T>
int32_t free_result(HeapRecord<T> &record, int32_t status,
                    const char *function = __builtin_FUNCTION(), int line = __builtin_LINE()) {
    if (diag::enabled(NKW_PAL_LOG_INFO))
        nkw_pal_logi(kStoreTag, "[%s:%d]-free the result_ptr. \n", function, line);
    record.reset();
    return status;
}

}  // namespace nkw::sms
