/*
 * nkw_pal modem channel: the session with the modem IPC library, raw modem
 * messages, AT commands both ways and modem indications.
 * nkw_pal_modem_msg_init must precede every other modem operation.
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

/* ---- AT command channel ---------------------------------------------------
 * Commands are NUL-terminated texts of at most 255 characters.
 */

/* Completion of nkw_pal_at_send_async: the response text and its length. */
typedef void (*nkw_pal_at_resp_cb)(const char *response, int32_t length);

/*
 * Handler of a custom AT command, called on the modem library's thread with
 * the command's message. It reads the parameters with nkw_pal_modem_msg_get,
 * answers with nkw_pal_at_resp, and its result goes back to the modem library.
 */
typedef int32_t (*nkw_pal_at_cmd_handler)(nkw_pal_modem_msg_t *msg);

/* A custom AT command to register: four pointer-sized fields. */
typedef struct {
    const char *name; /* 1 to 255 characters */
    uintptr_t id;     /* non-zero; its low 32 bits are the message id */
    void *reserved;   /* not read by the library */
    nkw_pal_at_cmd_handler handler;
} nkw_pal_at_cmd_reg;

/* The answer to a custom AT command; a parameter is sent when its pointer
 * is set and its length is non-zero (at most 65535 bytes). */
typedef struct {
    int32_t result;
    const void *param1;
    uint32_t param1_len;
    const void *param2;
    uint32_t param2_len;
} nkw_pal_at_reply;

/*
 * Sends `cmd` (cmd_len is only checked: 1 to 255) and waits for the answer.
 * Returns 0 with the response text, terminated, in `resp` and its length in
 * *resp_len; -1 bad arguments, command too long or the request failed;
 * 1107 the modem answered with an error (resp untouched); 1109 the response
 * was empty or longer than resp_size - 1 (*resp_len = 0).
 */
NKW_PAL_API int32_t nkw_pal_at_send(const char *cmd, uint32_t cmd_len, char *resp,
                                    int32_t resp_size, uint32_t *resp_len);

/*
 * Sends the first cmd_len (1 to 255) bytes of `cmd` and returns; `cb` (may be
 * NULL) later receives the response on the modem library's thread, unless
 * the modem answers with an error. Returns 0 sent; -1 bad arguments or the
 * request failed; 3 no memory.
 */
NKW_PAL_API int32_t nkw_pal_at_send_async(const char *cmd, uint32_t cmd_len, nkw_pal_at_resp_cb cb);

/*
 * Registers a custom AT command for the rest of the process (there is no
 * unregistration). Returns 0; 7 bad arguments or name length; 3 no memory;
 * -1 the modem library refused.
 */
NKW_PAL_API int32_t nkw_pal_at_register(nkw_pal_at_cmd_reg *reg);

/*
 * Answers the custom AT command `msg` that a handler received: TLV 0 holds
 * the result, TLVs 1 and 2 the parameters. Returns the modem library's send
 * result (0 sent); 7 msg or r NULL; 5 the reply could not be built; -1 a
 * parameter could not be added.
 */
NKW_PAL_API int32_t nkw_pal_at_resp(nkw_pal_modem_msg_t *msg, const nkw_pal_at_reply *r);

/* ---- Modem indications ----------------------------------------------------
 * Each registration keeps a small record for the rest of the process (there
 * is no unsubscription); callbacks run on the modem library's thread and
 * must not block it for long. Registrations return 0, or -1 for a NULL
 * callback, no memory, or a refusal of the modem library.
 */

/* Host link plug state: 1 plugged (modem cause 12), 0 unplugged (cause 11). */
typedef void (*nkw_pal_hotplug_status_cb)(int32_t plugged, void *user);
typedef void (*nkw_pal_mbim_open_status_cb)(int32_t status, void *user);
typedef void (*nkw_pal_mbim_sim_slot_mapping_cb)(int32_t option, int32_t sim_id, void *user);

/* The modem's SIM PIN record, 18 bytes. */
typedef struct {
    uint8_t status;
    char pin[17];
} nkw_pal_mbim_pin_info;

/* Receives the record rewritten in place: status 1 with the PIN, or all zero
 * (status 0, empty PIN) when no PIN is set. */
typedef void (*nkw_pal_mbim_simpin_status_cb)(nkw_pal_mbim_pin_info *pin, void *user);
/* connected: 1 connected (modem status 1), 0 disconnected (modem status 3). */
typedef void (*nkw_pal_mbim_connect_status_cb)(int32_t connected, const char *apn, void *user);
typedef void (*nkw_pal_mbim_lpa_auth_server_apdu_cb)(int32_t value, void *user);

NKW_PAL_API int32_t nkw_pal_hotplug_status_indication_register(nkw_pal_hotplug_status_cb cb,
                                                               void *user);
NKW_PAL_API int32_t nkw_pal_mbim_open_status_indication_register(nkw_pal_mbim_open_status_cb cb,
                                                                 void *user);
NKW_PAL_API int32_t
nkw_pal_mbim_sim_slot_mapping_indication_register(nkw_pal_mbim_sim_slot_mapping_cb cb, void *user);
NKW_PAL_API int32_t nkw_pal_mbim_simpin_status_indication_register(nkw_pal_mbim_simpin_status_cb cb,
                                                                   void *user);
NKW_PAL_API int32_t
nkw_pal_mbim_connect_status_indication_register(nkw_pal_mbim_connect_status_cb cb, void *user);
/* Accepts a NULL callback: events are then only acknowledged. */
NKW_PAL_API int32_t nkw_pal_mbim_lpa_auth_server_apdu_indication_register(
    nkw_pal_mbim_lpa_auth_server_apdu_cb cb, void *user);

/* Asks the modem to synchronise the MBIM status: 0, or -1 on any failure. */
NKW_PAL_API int32_t nkw_pal_quarn_mbim_status_sync(void);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_MODEM_H */
