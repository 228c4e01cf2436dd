// Records of the AT channel and the routines it hands the modem library.
#pragma once

#include <cstdint>

#include "modem/mipc.h"
#include "nkw_pal/modem.h"

namespace nkw::modem::at {

inline constexpr const char *kTag = "MODEM";
inline constexpr uint32_t kCommandMax = 255;  // characters, the terminator not counted

// One asynchronous request. The text comes first so that the record itself
// is both the command string and the user datum of the modem request.
struct AsyncRequest {
    char command[kCommandMax + 1];
    nkw_pal_at_resp_cb callback;
};

// A registered custom command, kept for the life of the process.
struct CommandRecord {
    char name[kCommandMax + 1];
    uint64_t id;
    nkw_pal_at_cmd_handler handler;
};

static_assert(sizeof(void *) != 8 || sizeof(AsyncRequest) == 264, "request record is 264 bytes");
static_assert(sizeof(void *) != 8 || sizeof(CommandRecord) == 272, "command record is 272 bytes");

}  // namespace nkw::modem::at

// Routines run by the modem library on its own thread; exported so that the
// modem library (and tests) can reach them by name.
extern "C" {
NKW_PAL_API void nkw_pal_at_send_async_cb(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_sys_at_struct *result_ptr, void *at_async);
NKW_PAL_API mipc_result_enum nkw_pal_at_callbackInner(mipc_msg_t *msg_ptr, void *at_info);
}
