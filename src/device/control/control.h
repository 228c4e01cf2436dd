// Module control's tags and the two completion callbacks, which keep
// overloadable linkage.
#pragma once

#include <mipc_msg.h>

#include "nkw_pal/device.h"

namespace nkw::device {
inline constexpr const char *kTag = "SYS";
inline constexpr const char *kShellTag = "UTILS";
}  // namespace nkw::device

NKW_PAL_API void nkw_pal_disable_usb_cb(signed char *response, unsigned int length);
NKW_PAL_API void nkw_pal_sar_index_switch_cb(mipc_sim_ps_id_enum sim_ps_id,
                                             mipc_sys_sar_struct *result_ptr, void *cb_priv_ptr);
