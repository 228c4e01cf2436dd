/*
 * nkw_pal modem channel: the session with the modem IPC library and raw modem
 * messages. nkw_pal_modem_msg_init must precede every other modem operation.
 */
#ifndef NKW_PAL_MODEM_H
#define NKW_PAL_MODEM_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/*
 * A message of the modem IPC library, as handed to a command handler. The
 * library only reads it; it stays owned by whoever passed it in.
 */
typedef void nkw_pal_modem_msg_t;

/*
 * Opens the process's session with the modem IPC library; `client_name` is
 * handed to it unchanged, and so is its result.
 */
NKW_PAL_API int32_t nkw_pal_modem_msg_init(const char *client_name);

/* Ends the session; returns the modem IPC library's result. */
NKW_PAL_API int32_t nkw_pal_modem_msg_deinit(void);

/*
 * Copies the value of TLV **type_ref of `msg` into out_data.
 * *out_len receives the value's length as soon as the value is found, even
 * when the buffer then turns out missing or short, so a first call with a
 * NULL buffer learns the size. No terminator is added.
 * Returns 0 copied; 7 msg/type_ref/out_len NULL or *type_ref NULL;
 * 1602 out_data NULL or out_data_size below the length (*out_len set);
 * -1 no such TLV, or an empty one (*out_len untouched).
 */
NKW_PAL_API int32_t nkw_pal_modem_msg_get(nkw_pal_modem_msg_t *msg, uint16_t **type_ref,
                                          void *out_data, uint32_t out_data_size,
                                          uint32_t *out_len);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_MODEM_H */
