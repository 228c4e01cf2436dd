/*
 * Modem IPC client interface: the subset of the chipset vendor's modem IPC
 * client library (libmipc_msg.so) that nkw_pal uses, declared with the
 * vendor's names and record sizes. A production build compiles against the
 * vendor SDK's own headers instead (see NKW_PAL_MIPC_SDK_DIR); the simulated
 * modem under sim/ implements exactly this interface for host builds.
 */
#ifndef MIPC_MSG_H
#define MIPC_MSG_H

#include <stddef.h>
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

/* ---- SIM ---------------------------------------------------------------- */

/* SIM calls take MIPC_PS0/MIPC_PS1 to address one SIM, MIPC_PS_ALL otherwise. */

#define MIPC_SIM_IMSI_LEN 16  /* 15 digits and the NUL */
#define MIPC_SIM_ICCID_LEN 24 /* up to 20 digits and the NUL, rounded up */

typedef struct {
    uint32_t result_code;
    char imsi[MIPC_SIM_IMSI_LEN]; /* decimal digits, NUL-terminated */
    uint8_t mnc_len;              /* number of MNC digits after the 3-digit MCC */
    uint8_t reserved[3];
} mipc_sim_imsi_struct;

typedef struct {
    uint32_t result_code;
    char iccid[MIPC_SIM_ICCID_LEN]; /* NUL-terminated */
} mipc_sim_iccid_struct;

typedef struct {
    uint32_t result_code;
    uint8_t sim_id;
    uint8_t reserved[3];
    uint32_t sim_state;
} mipc_sim_state_struct;

typedef struct {
    uint32_t result_code;
    uint8_t sim_id;
    uint8_t reserved[3];
    uint32_t sim_status;
} mipc_sim_status_struct;

typedef struct {
    uint32_t result_code;
    uint32_t pin_type;
    uint32_t pin_state;
    uint32_t remaining_attempts;
} mipc_sim_verify_pin_struct;

typedef struct {
    uint32_t result_code;
} mipc_sim_reset_struct;

mipc_result_enum mipc_sim_imsi_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                        mipc_sim_imsi_struct *result_ptr);
mipc_result_enum mipc_sim_iccid_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_sim_iccid_struct *result_ptr);
mipc_result_enum mipc_sim_state_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_sim_state_struct *result_ptr);
mipc_result_enum mipc_sim_status_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_sim_status_struct *result_ptr);
/* pin_type: the modem's PIN type code. */
mipc_result_enum mipc_sim_verify_pin_sync(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_sim_verify_pin_struct *result_ptr, uint32_t pin_type,
                                          const char *pin_code_ptr);
/* pass_through_mode: the modem's code, passed through unchanged. */
mipc_result_enum mipc_sim_reset_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_sim_reset_struct *result_ptr,
                                         uint32_t pass_through_mode);

/* SIM state and status indications, for the stack given at registration. */
typedef void (*mipc_sim_state_cb)(mipc_sim_ps_id_enum sim_ps_id, mipc_sim_state_struct *result_ptr,
                                  void *cb_priv_ptr);
typedef void (*mipc_sim_status_cb)(mipc_sim_ps_id_enum sim_ps_id,
                                   mipc_sim_status_struct *result_ptr, void *cb_priv_ptr);

mipc_result_enum mipc_sim_state_register(mipc_sim_ps_id_enum sim_ps_id, mipc_sim_state_cb cb,
                                         void *cb_priv_ptr);
mipc_result_enum mipc_sim_status_register(mipc_sim_ps_id_enum sim_ps_id, mipc_sim_status_cb cb,
                                          void *cb_priv_ptr);

/* ---- SIM slot / protocol-stack mapping ---------------------------------- */

#define MIPC_SYS_MAPPING_MAX 4 /* one entry per protocol stack PS0..PS3 */

/* One protocol stack's mapping: the 0-based SIM slot it serves (an index,
 * not a mipc_sim_ps_id_enum bit). Requests pass a list of these. */
typedef struct {
    uint32_t ps_id;
} mipc_sys_mapping_struct4;

typedef struct {
    uint32_t result_code;
    uint8_t mapping_count;
    uint8_t reserved0[3];
    mipc_sys_mapping_struct4 mapping_list[MIPC_SYS_MAPPING_MAX]; /* [0]: first protocol stack */
    uint8_t reserved1[48];
} mipc_sys_mapping_struct;

mipc_result_enum mipc_sys_mapping_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_sys_mapping_struct *result_ptr);
mipc_result_enum mipc_sys_mapping_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_sys_mapping_struct *result_ptr,
                                           uint8_t mapping_count,
                                           const mipc_sys_mapping_struct4 *mapping_list_ptr);

/* ---- Network registration, packet attach, radio ------------------------- */

/* 3GPP registration states, as reported in cs_state / ps_state. */
typedef enum {
    MIPC_NW_REG_STATE_NOT_REGISTERED = 0,
    MIPC_NW_REG_STATE_HOME = 1,
    MIPC_NW_REG_STATE_SEARCHING = 2,
    MIPC_NW_REG_STATE_DENIED = 3,
    MIPC_NW_REG_STATE_UNKNOWN = 4,
    MIPC_NW_REG_STATE_ROAMING = 5
} mipc_nw_reg_state_enum;

#define MIPC_NW_PLMN_LEN 8          /* MCC + 2 or 3 MNC digits, NUL-terminated */
#define MIPC_NW_NETWORK_NAME_LEN 64 /* operator name, NUL-terminated */

typedef struct {
    uint32_t result_code;
    uint8_t cs_state; /* circuit service, mipc_nw_reg_state_enum */
    uint8_t ps_state; /* packet service, mipc_nw_reg_state_enum */
    uint8_t reserved0[2];
    char plmn[MIPC_NW_PLMN_LEN];
    char network_name[MIPC_NW_NETWORK_NAME_LEN];
    uint32_t network_error;
    uint8_t reserved1[96];
} mipc_nw_reg_state_struct;

/* Packet-service state and current bearer. */
typedef struct {
    uint32_t result_code;
    uint32_t attach_state; /* the modem's packet-service state value */
    uint32_t data_class;   /* bit mask of the radio technologies in use */
    uint32_t network_error;
    uint8_t reserved[24];
} mipc_nw_attach_state_struct;

typedef struct {
    uint32_t result_code;
    uint8_t sw_state; /* non-zero: radio on */
    uint8_t hw_state; /* non-zero: radio on */
    uint8_t reserved[2];
} mipc_nw_radio_state_struct;

mipc_result_enum mipc_nw_register_state_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                                 mipc_nw_reg_state_struct *result_ptr);
mipc_result_enum mipc_nw_ps_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                     mipc_nw_attach_state_struct *result_ptr);
/* Requests packet-service state `attach_state` (passed through unchanged)
 * and waits until the modem reports it. */
mipc_result_enum mipc_nw_ps_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                     mipc_nw_attach_state_struct *result_ptr,
                                     uint32_t attach_state);
mipc_result_enum mipc_nw_radio_state_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                              mipc_nw_radio_state_struct *result_ptr);
/* Sets the software and hardware radio state (0 off, 1 on). */
mipc_result_enum mipc_nw_final_radio_state_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                                    mipc_nw_radio_state_struct *result_ptr,
                                                    uint8_t sw_state, uint8_t hw_state);

typedef void (*mipc_nw_register_state_cb)(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_nw_reg_state_struct *result_ptr, void *cb_priv_ptr);

mipc_result_enum mipc_nw_register_state_register(mipc_sim_ps_id_enum sim_ps_id,
                                                 mipc_nw_register_state_cb cb, void *cb_priv_ptr);

/* ---- Cell information --------------------------------------------------- */

typedef enum {
    MIPC_NW_CELL_TYPE_GSM = 1,
    MIPC_NW_CELL_TYPE_LTE = 3,
    MIPC_NW_CELL_TYPE_UMTS = 4,
    MIPC_NW_CELL_TYPE_NR = 6
} mipc_nw_cell_type_enum;

/* Identities of 0 or 0xFFFFFFFF are unknown. */
#define MIPC_NW_CELL_LIST_MAX 10

/* One cell; which identity fields are meaningful depends on cell_type. */
typedef struct {
    uint32_t cell_type;   /* mipc_nw_cell_type_enum */
    uint32_t lte_cell_id; /* LTE */
    uint64_t nr_cell_id;  /* NR */
    uint32_t lte_tac;     /* LTE */
    uint32_t nr_tac;      /* NR */
    uint32_t gw_cell_id;  /* GSM and UMTS */
    uint32_t gw_lac;      /* GSM and UMTS */
    uint8_t reserved[16];
} mipc_nw_cell_struct;

/* Set cell_list_count to the capacity (MIPC_NW_CELL_LIST_MAX) before the
 * call; the modem replaces it with the number of entries filled. */
typedef struct {
    uint32_t result_code;
    uint8_t cell_list_count;
    uint8_t reserved[3];
    mipc_nw_cell_struct cell_list[MIPC_NW_CELL_LIST_MAX];
} mipc_nw_cell_info_struct;

mipc_result_enum mipc_nw_cell_info_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                            mipc_nw_cell_info_struct *result_ptr);

/* ---- Data calls --------------------------------------------------------- */

/* PDP types are the modem's numbering; the one value callers test for: */
#define MIPC_APN_PDP_TYPE_IPV6 2 /* IPv6 only */

#define MIPC_DATA_CALL_APN_LEN 101 /* APN text, NUL-terminated */

/* Addresses are in network byte order. */
typedef struct {
    uint32_t result_code;
    uint8_t id; /* data call id */
    uint8_t pdp_type;
    uint8_t reserved0[2];
    char apn[MIPC_DATA_CALL_APN_LEN]; /* as the network confirmed it */
    uint8_t reserved1[3];
    int32_t interface_id; /* N of the host interface ccmni<N> */
    uint8_t v4_addr[4];
    uint8_t v6_addr[16];
    uint8_t v4_dns_primary[4];
    uint8_t v4_dns_secondary[4];
    uint8_t v6_dns_primary[16];
    uint8_t v6_dns_secondary[16];
    uint8_t reserved2[424];
} mipc_data_call_act_struct;

/* Result of a deactivation, and the indication of a call the network ended. */
typedef struct {
    uint32_t result_code;
    uint8_t id; /* data call id */
    uint8_t reserved0[3];
    uint32_t network_cause;
    uint32_t reserved1;
} mipc_data_call_deact_struct;

/* apn_type, pdp_type, roaming_pdp_type, auth_type and fallback_type are the
 * modem's codes and option_bitmask a bit mask, all passed through unchanged
 * (nkw_pal passes fallback type 0 and all mask bits set). */
mipc_result_enum mipc_data_call_act_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_data_call_act_struct *result_ptr, const char *apn_ptr,
                                         uint32_t apn_type, uint32_t pdp_type,
                                         uint32_t roaming_pdp_type, uint32_t auth_type,
                                         const char *username_ptr, const char *password_ptr,
                                         uint32_t fallback_type, uint32_t option_bitmask);
/* Details of an active call, in the activation record's layout. */
mipc_result_enum mipc_data_call_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_data_call_act_struct *result_ptr, uint8_t id);
mipc_result_enum mipc_data_call_deact_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_data_call_deact_struct *result_ptr, uint8_t id);

typedef void (*mipc_data_call_deact_cb)(mipc_sim_ps_id_enum sim_ps_id,
                                        mipc_data_call_deact_struct *result_ptr, void *cb_priv_ptr);

mipc_result_enum mipc_data_call_deact_register(mipc_sim_ps_id_enum sim_ps_id,
                                               mipc_data_call_deact_cb cb, void *cb_priv_ptr);

/* ---- Initial-attach APN ------------------------------------------------- */

#define MIPC_APN_IA_LIST_MAX 10
#define MIPC_APN_IA_APN_LEN 100
#define MIPC_APN_IA_USERNAME_LEN 64
#define MIPC_APN_IA_PASSWORD_LEN 64

/* Texts are NUL-terminated within their arrays; the 8-bit codes are the
 * modem's PDP type, authentication type and compression codes. */
typedef struct {
    char apn[MIPC_APN_IA_APN_LEN];
    char username[MIPC_APN_IA_USERNAME_LEN];
    char password[MIPC_APN_IA_PASSWORD_LEN];
    uint32_t option; /* passed through unchanged */
    uint8_t pdp_type;
    uint8_t roaming_pdp_type;
    uint8_t auth_type;
    uint8_t compression;
    uint8_t reserved[4];
} mipc_apn_ia_entry_struct;

typedef struct {
    uint32_t result_code;
    uint8_t apn_list_count;
    uint8_t reserved[3];
    mipc_apn_ia_entry_struct apn_list[MIPC_APN_IA_LIST_MAX];
} mipc_apn_ia_struct_v;

typedef struct {
    uint32_t result_code;
} mipc_apn_ia_set_struct;

mipc_result_enum mipc_apn_ia_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                      mipc_apn_ia_struct_v *result_ptr);
mipc_result_enum mipc_apn_ia_set_sync(mipc_sim_ps_id_enum sim_ps_id,
                                      mipc_apn_ia_set_struct *result_ptr, const char *apn_ptr,
                                      uint32_t pdp_type, uint32_t roaming_pdp_type,
                                      uint32_t auth_type, const char *username_ptr,
                                      const char *password_ptr, unsigned int option,
                                      uint32_t compression);

/* ---- SMS store ---------------------------------------------------------- */

/* Bits of store_flag_btmp. */
#define MIPC_SMS_STORE_FLAG_FULL 1    /* the store is full */
#define MIPC_SMS_STORE_FLAG_NEW_MSG 2 /* a new unread message was stored */

#define MIPC_SMS_PDU_LEN 264

/* Set sms_pdu_count to the number of PDUs the record holds (1) before the call. */
typedef struct {
    uint32_t result_code;
    uint16_t sms_pdu_count;
    uint16_t message_index;
    uint8_t pdu_len; /* TPDU length, without the SMSC address */
    uint8_t status;
    uint8_t sms_class;
    uint8_t reserved;
    uint8_t pdu[MIPC_SMS_PDU_LEN]; /* starts with the SMSC address length octet */
} mipc_sms_read_struct;

typedef struct {
    uint32_t result_code;
} mipc_sms_delete_struct;

typedef struct {
    uint32_t result_code;
    uint32_t store_flag_btmp; /* MIPC_SMS_STORE_FLAG_* */
    uint16_t message_index;
    uint8_t reserved[2];
} mipc_sms_status_struct;

/* flag and format are the modem's codes, passed through unchanged. */
mipc_result_enum mipc_sms_read_sync(mipc_sim_ps_id_enum sim_ps_id, mipc_sms_read_struct *result_ptr,
                                    uint32_t flag, uint16_t message_index, uint32_t format);
mipc_result_enum mipc_sms_delete_sync(mipc_sim_ps_id_enum sim_ps_id,
                                      mipc_sms_delete_struct *result_ptr, uint32_t flag,
                                      uint16_t message_index);

typedef void (*mipc_sms_store_status_cb)(mipc_sim_ps_id_enum sim_ps_id,
                                         mipc_sms_status_struct *result_ptr, void *cb_priv_ptr);

mipc_result_enum mipc_sms_store_status_register(mipc_sim_ps_id_enum sim_ps_id,
                                                mipc_sms_store_status_cb cb, void *cb_priv_ptr);

/* ---- NVRAM -------------------------------------------------------------- */

/* Items are addressed by LID and record number; sizes are 16-bit. A read
 * record is an 8-byte header followed by room for the requested size, so
 * callers allocate sizeof(mipc_sys_nvram_read_struct) + size bytes. */
typedef struct {
    uint32_t result_code;
    uint16_t data_len; /* bytes of data the modem returned */
    uint8_t reserved[2];
    uint8_t data[];
} mipc_sys_nvram_read_struct;

typedef struct {
    uint32_t result_code;
} mipc_sys_nvram_write_struct;

mipc_result_enum mipc_sys_nvram_read_sync(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_sys_nvram_read_struct *result_ptr, uint32_t lid,
                                          uint16_t record_idx, uint16_t size);
mipc_result_enum mipc_sys_nvram_write_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_sys_nvram_write_struct *result_ptr, uint32_t lid,
                                           uint16_t record_idx, uint16_t size,
                                           const uint8_t *data_ptr);

/* The read completion's data belongs to the library and is valid only
 * during the callback. A write keeps data_ptr until the request is sent. */
typedef void (*mipc_sys_nvram_read_cb)(mipc_sim_ps_id_enum sim_ps_id,
                                       mipc_sys_nvram_read_struct *result_ptr, void *cb_priv_ptr);
typedef void (*mipc_sys_nvram_write_cb)(mipc_sim_ps_id_enum sim_ps_id,
                                        mipc_sys_nvram_write_struct *result_ptr, void *cb_priv_ptr);

mipc_result_enum mipc_sys_nvram_read_async(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_nvram_read_cb cb,
                                           void *cb_priv_ptr, uint32_t lid, uint16_t record_idx,
                                           uint16_t size);
mipc_result_enum mipc_sys_nvram_write_async(mipc_sim_ps_id_enum sim_ps_id,
                                            mipc_sys_nvram_write_cb cb, void *cb_priv_ptr,
                                            uint32_t lid, uint16_t record_idx, uint16_t size,
                                            const uint8_t *data_ptr);

/* ---- System information and time ---------------------------------------- */

#define MIPC_SYS_IMEI_LEN 24 /* 15 or 16 digits and the NUL, rounded up */

typedef struct {
    uint32_t result_code;
    char imei[MIPC_SYS_IMEI_LEN]; /* NUL-terminated; empty when unknown */
    uint8_t reserved[372];
} mipc_sys_info_struct;

typedef struct {
    uint32_t result_code;
    uint32_t reserved0;
    uint64_t time_ms;      /* modem wall-clock time, milliseconds since 1970 UTC */
    int32_t tz_offset_min; /* local offset from UTC */
    uint32_t dst;          /* daylight-saving adjustment in effect */
    uint32_t time_source;  /* where the modem took the time from */
    uint32_t reserved1;
} mipc_sys_time_struct;

mipc_result_enum mipc_sys_info_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                        mipc_sys_info_struct *result_ptr);
mipc_result_enum mipc_sys_time_get_sync(mipc_sim_ps_id_enum sim_ps_id,
                                        mipc_sys_time_struct *result_ptr);

/* ---- SAR ---------------------------------------------------------------- */

/* The table switch is the module integrator's addition to the library. */
typedef struct {
    uint32_t result_code;
    uint32_t sar_mode;
    uint32_t sar_index;
} mipc_sys_sar_struct;

typedef void (*mipc_sys_sar_set_cb)(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_sar_struct *result_ptr,
                                    void *cb_priv_ptr);

mipc_result_enum tolvaro_mipc_sys_sar_set_async(mipc_sim_ps_id_enum sim_ps_id,
                                                mipc_sys_sar_set_cb cb, void *cb_priv_ptr,
                                                uint32_t sar_mode, uint32_t sar_index);

#ifdef __cplusplus
} /* extern "C" */
#define MIPC_STATIC_ASSERT static_assert
#else
#define MIPC_STATIC_ASSERT _Static_assert
#endif

/* Record sizes the callers were built against. */
MIPC_STATIC_ASSERT(sizeof(mipc_sys_at_struct) == 1028, "AT result record is 1028 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sys_mapping_struct) == 72, "mapping record is 72 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_nw_reg_state_struct) == 180, "registration record is 180 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_nw_attach_state_struct) == 40, "attach record is 40 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_nw_cell_struct) == 48, "cell entry is 48 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_nw_cell_info_struct) == 488, "cell list record is 488 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_data_call_act_struct) == 600, "data call record is 600 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_data_call_deact_struct) == 16, "deactivation record is 16 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_apn_ia_struct_v) == 2408, "attach APN record is 2408 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sms_read_struct) == 276, "SMS read record is 276 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sms_delete_struct) == 4, "SMS delete record is 4 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sys_nvram_read_struct) == 8, "NVRAM read header is 8 bytes");
MIPC_STATIC_ASSERT(offsetof(mipc_sys_nvram_read_struct, data) == 8, "NVRAM data follows at 8");
MIPC_STATIC_ASSERT(sizeof(mipc_sys_info_struct) == 400, "system info record is 400 bytes");

/* Every result record opens with its result code. */
MIPC_STATIC_ASSERT(offsetof(mipc_sim_imsi_struct, result_code) == 0, "result_code first");
MIPC_STATIC_ASSERT(offsetof(mipc_nw_reg_state_struct, result_code) == 0, "result_code first");
MIPC_STATIC_ASSERT(offsetof(mipc_data_call_act_struct, result_code) == 0, "result_code first");
MIPC_STATIC_ASSERT(offsetof(mipc_sms_read_struct, result_code) == 0, "result_code first");

/* Layouts fixed here, identical on 32- and 64-bit targets. */
MIPC_STATIC_ASSERT(sizeof(mipc_sim_imsi_struct) == 24, "IMSI record is 24 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sim_iccid_struct) == 28, "ICCID record is 28 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sim_state_struct) == 12, "SIM state record is 12 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sim_status_struct) == 12, "SIM status record is 12 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sim_verify_pin_struct) == 16, "PIN record is 16 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sim_reset_struct) == 4, "SIM reset record is 4 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sys_mapping_struct4) == 4, "mapping entry is 4 bytes");
MIPC_STATIC_ASSERT(offsetof(mipc_sys_mapping_struct, mapping_list) == 8, "mapping list at 8");
MIPC_STATIC_ASSERT(offsetof(mipc_nw_reg_state_struct, plmn) == 8, "PLMN at 8");
MIPC_STATIC_ASSERT(offsetof(mipc_nw_reg_state_struct, network_error) == 80, "error at 80");
MIPC_STATIC_ASSERT(sizeof(mipc_nw_radio_state_struct) == 8, "radio record is 8 bytes");
MIPC_STATIC_ASSERT(offsetof(mipc_nw_cell_struct, nr_cell_id) == 8, "NR cell id at 8");
MIPC_STATIC_ASSERT(offsetof(mipc_nw_cell_info_struct, cell_list) == 8, "cell list at 8");
MIPC_STATIC_ASSERT(offsetof(mipc_data_call_act_struct, apn) == 8, "APN at 8");
MIPC_STATIC_ASSERT(offsetof(mipc_data_call_act_struct, interface_id) == 112, "interface at 112");
MIPC_STATIC_ASSERT(offsetof(mipc_data_call_act_struct, v6_dns_secondary) == 160, "DNS at 160");
MIPC_STATIC_ASSERT(offsetof(mipc_data_call_deact_struct, network_cause) == 8, "cause at 8");
MIPC_STATIC_ASSERT(sizeof(mipc_apn_ia_entry_struct) == 240, "attach APN entry is 240 bytes");
MIPC_STATIC_ASSERT(offsetof(mipc_apn_ia_entry_struct, option) == 228, "option at 228");
MIPC_STATIC_ASSERT(offsetof(mipc_apn_ia_struct_v, apn_list) == 8, "APN list at 8");
MIPC_STATIC_ASSERT(sizeof(mipc_apn_ia_set_struct) == 4, "attach APN set record is 4 bytes");
MIPC_STATIC_ASSERT(offsetof(mipc_sms_read_struct, pdu) == 12, "PDU at 12");
MIPC_STATIC_ASSERT(sizeof(mipc_sms_status_struct) == 12, "SMS status record is 12 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sys_nvram_write_struct) == 4, "NVRAM write record is 4 bytes");
MIPC_STATIC_ASSERT(offsetof(mipc_sys_time_struct, time_ms) == 8, "time at 8");
MIPC_STATIC_ASSERT(sizeof(mipc_sys_time_struct) == 32, "time record is 32 bytes");
MIPC_STATIC_ASSERT(sizeof(mipc_sys_sar_struct) == 12, "SAR record is 12 bytes");

#endif /* MIPC_MSG_H */
