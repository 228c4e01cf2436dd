/*
 * nkw_pal: the platform abstraction library of the cellular data module.
 *
 * One flat, C-callable interface, one section per subsystem. Every function
 * runs on its caller's thread and returns a signed 32-bit status (0 = success)
 * unless its section says otherwise. Output buffers are the caller's; each
 * section states the sizes it needs. Text outputs of modem queries carry no
 * terminating NUL unless stated: pass zero-filled buffers.
 */
#ifndef NKW_PAL_H
#define NKW_PAL_H

#include "nkw_pal/codec.h"
#include "nkw_pal/common.h"
#include "nkw_pal/connect.h"
#include "nkw_pal/device.h"
#include "nkw_pal/diag.h"
#include "nkw_pal/info.h"
#include "nkw_pal/location.h"
#include "nkw_pal/modem.h"
#include "nkw_pal/os.h"
#include "nkw_pal/sms.h"
#include "nkw_pal/storage.h"

#endif /* NKW_PAL_H */
