/*
 * Modem IPC client interface: the subset of the chipset vendor's modem IPC
 * client library (libmipc_msg.so) that nkw_pal uses, declared with the
 * vendor's names and record sizes. A production build compiles against the
 * vendor SDK's own headers instead (see NKW_PAL_MIPC_SDK_DIR); the simulated
 * modem under sim/ implements exactly this interface for host builds.
 */
#ifndef MIPC_MSG_H
#define MIPC_MSG_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Common ------------------------------------------------------------- */

/* Protocol-stack (SIM) ids: one bit per stack; MIPC_PS_ALL addresses the modem. */
typedef enum {
    MIPC_PS0 = 1,
    MIPC_PS1 = 2,
    MIPC_PS2 = 4,
    MIPC_PS3 = 8,
    MIPC_PS_ALL = 16
} mipc_sim_ps_id_enum;

typedef enum {
    MIPC_RESULT_SUCCESS = 0,
    MIPC_RESULT_FAILURE = 1,
    MIPC_RESULT_TIMEOUT = 2,
    MIPC_RESULT_NOT_INIT = 3,
    MIPC_RESULT_BAD_PARAM = 4
} mipc_result_enum;

/* A message: header (id, protocol-stack id, transaction) and a TLV list. */
typedef struct mipc_msg_struct mipc_msg_t;

/* ---- Session ------------------------------------------------------------ */

mipc_result_enum mipc_init(const char *process_name_ptr);
mipc_result_enum mipc_deinit(void);

/* ---- Messages and TLVs -------------------------------------------------- */

mipc_msg_t *mipc_msg_init(uint16_t msg_id, mipc_sim_ps_id_enum sim_ps_id);
void mipc_msg_deinit(mipc_msg_t *msg_ptr);
mipc_result_enum mipc_msg_add_tlv(mipc_msg_t *msg_ptr, uint16_t type, uint16_t len,
                                  const void *val_ptr);
/* Value of TLV `type`, its length in *val_len_ptr; NULL when absent. */
void *mipc_msg_get_val_ptr(mipc_msg_t *msg_ptr, uint16_t type, uint16_t *val_len_ptr);
/* Sends a request and waits for its confirmation (NULL on time-out). */
mipc_msg_t *mipc_msg_sync_timeout(mipc_msg_t *msg_req_ptr);
/* A reply carrying the header of a received message, with no TLVs. */
mipc_msg_t *mipc_msg_copy_hdr(mipc_msg_t *msg_ptr);
/* Sends a reply made with mipc_msg_copy_hdr. */
mipc_result_enum mipc_msg_rsp(mipc_msg_t *msg_rsp_ptr);

/* Handlers run on the modem IPC library's dispatcher thread. */
typedef mipc_result_enum (*mipc_msg_cmd_cb)(mipc_msg_t *msg_ptr, void *priv_ptr);
typedef void (*mipc_msg_ind_cb)(mipc_msg_t *msg_ptr, void *priv_ptr);

mipc_result_enum mipc_msg_register_cmd_api(uint32_t msg_id, mipc_msg_cmd_cb cb, uint32_t flags,
                                           void *priv_ptr);
mipc_result_enum mipc_msg_register_ind_api(mipc_sim_ps_id_enum sim_ps_id, uint32_t msg_id,
                                           mipc_msg_ind_cb cb, uint32_t flags, void *priv_ptr);

/* ---- AT commands -------------------------------------------------------- */

#define MIPC_AT_RESPONSE_MAX 1024

typedef struct {
    uint32_t result_code; /* 0: the modem answered OK */
    char atcmd_res_ptr[MIPC_AT_RESPONSE_MAX];
} mipc_sys_at_struct;

typedef void (*mipc_sys_at_cb)(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_at_struct *result_ptr,
                               void *cb_priv_ptr);

mipc_result_enum mipc_sys_at_sync(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_at_struct *result_ptr,
                                  const char *atcmd_ptr);
mipc_result_enum mipc_sys_at_async(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_at_cb cb,
                                   void *cb_priv_ptr, const char *atcmd_ptr);

#ifdef __cplusplus
} /* extern "C" */
#define MIPC_STATIC_ASSERT static_assert
#else
#define MIPC_STATIC_ASSERT _Static_assert
#endif

/* Record sizes the callers were built against. */
MIPC_STATIC_ASSERT(sizeof(mipc_sys_at_struct) == 1028, "AT result record is 1028 bytes");

#endif /* MIPC_MSG_H */
