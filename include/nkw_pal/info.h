/*
 * nkw_pal SIM, network and device information: SIM identity and status,
 * slot choice and PIN entry; serving cell, data class, signal, radio state,
 * initial-attach APN and registration details; the module's own identity.
 * Every modem call needs the session (nkw_pal_modem_msg_init).
 *
 * Text outputs carry no terminating NUL unless stated: pass zero-filled
 * buffers.
 */
#ifndef NKW_PAL_INFO_H
#define NKW_PAL_INFO_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* ---- SIM identity and status -------------------------------------------- */

/* The IMSI digits. 0; -1 modem failure; 7 null buffer. */
NKW_PAL_API int32_t nkw_pal_get_imsi(char *imsi);
/* The ICCID text. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_iccid(char *iccid);
/* The 32-character EID (buffer of at least 32 bytes). 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_eid(char *eid);
/* The three MCC digits of the IMSI. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_mcc_info(char *mcc);
/* The MNC digits after the MCC, as many as the modem reports. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_mnc_info(char *mnc);

/* Slot mapped to the first protocol stack: 0 or 1; 255 on any failure. */
NKW_PAL_API int32_t nkw_pal_get_current_sim_slot(void);
/* Maps `slot` to the first protocol stack. Above 255: -1 unasked. 0; -1. */
NKW_PAL_API int32_t nkw_pal_sim_slot_switch(int32_t slot);

/* SIM status codes. */
enum {
    NKW_PAL_SIM_STATUS_UNKNOWN = 8 /* the status could not be determined */
};

/* SIM status code 0-7 of SIM 0 (index 0) or SIM 1 (any other index up to
 * 255); 8 on failure. */
NKW_PAL_API int32_t nkw_pal_get_sim_status(int32_t index);
/* Enters PIN1. 0; -1. */
NKW_PAL_API int32_t nkw_pal_sim_verify_pin(const char *pin);

typedef void (*nkw_pal_sim_status_cb)(int32_t sim_id, int32_t status, void *user);
/* From now on SIM status changes of either SIM call callback(sim id, code,
 * user) on the modem library's thread. No unsubscription. 0; -1. */
NKW_PAL_API int32_t nkw_pal_sim_status_indication_register(nkw_pal_sim_status_cb callback,
                                                           void *user);

/* ---- Cell, radio and attach APN ----------------------------------------- */

/* Data class codes of nkw_pal_get_current_dataclass. */
enum {
    NKW_PAL_DATACLASS_LTE = 1,
    NKW_PAL_DATACLASS_UNKNOWN = 2,
    NKW_PAL_DATACLASS_UMTS = 4,
    NKW_PAL_DATACLASS_NR = 5,
    NKW_PAL_DATACLASS_GSM = 6
};

/* Serving cell id. 0; -1; 7 null output. */
NKW_PAL_API int32_t nkw_pal_get_cellid(uint64_t *cellid);
/* Tracking or location area code of the serving cell. 0; -1. */
NKW_PAL_API int32_t nkw_pal_get_lac(uint32_t *lac);
/* NKW_PAL_DATACLASS_* of the current bearer. 0; -1. */
NKW_PAL_API int32_t nkw_pal_get_current_dataclass(uint16_t *dataclass);
/* Signal strength in dBm from AT+ECSQ. 0; -1. */
NKW_PAL_API int32_t nkw_pal_get_rssi(int32_t *rssi);
/* 1 when the radio is on (software and hardware), else 0. 0; -1. */
NKW_PAL_API int32_t nkw_pal_get_radio_state(uint32_t *state);
/* 0 off, any other value up to 1 on (negative values switch on); above 1:
 * 7 unasked. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_set_radio_state(int32_t state);

/* Initial-attach APN, 236 bytes; the codes are the modem's. */
typedef struct {
    char apn[100];
    char username[64];
    char password[64];
    uint32_t option; /* passed to the modem unchanged */
    uint8_t pdp_type;
    uint8_t roaming_pdp_type;
    uint8_t auth_type;
    uint8_t compression;
} attach_apn_info;

/* The first initial-attach APN; all zero when the modem has none. 0; -1;
 * 7 null output. */
NKW_PAL_API int32_t nkw_pal_get_attach_apn(attach_apn_info *info);
/* Sets the initial-attach APN. 0; -1. */
NKW_PAL_API int32_t nkw_pal_set_attach_apn(const attach_apn_info *info);

/* Registration details. */
typedef struct {
    char network_name[60];
    uint32_t mcc;
    uint32_t mnc;
} reg_info;

/* Registered: operator name, MCC and MNC; searching, denied or not
 * registered: the name's first 8 bytes cleared. 0; -1. */
NKW_PAL_API int32_t nkw_pal_get_register_info(reg_info *info);
/* The modem's carrier configuration id; 0 when it cannot be read. */
NKW_PAL_API uint32_t nkw_pal_get_sbp_id(void);

/* ---- Device identity ----------------------------------------------------- */

/* SIM card-detect levels of nkw_pal_get_sim_cd_state. */
enum { NKW_PAL_SIM_CD_LOW = 0, NKW_PAL_SIM_CD_HIGH = 1, NKW_PAL_SIM_CD_UNKNOWN = 2 };

/* IMEI digits. 0; -1; 7 null buffer. */
NKW_PAL_API int32_t nkw_pal_get_imei(char *imei);
/* The 9-character model name. 0; -1 null buffer. */
NKW_PAL_API int32_t nkw_pal_get_model(char *model);
/* Chip type from ATI5. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_chip_type(char *chip_type);
/* Firmware version from ATI8. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_firmware_version(char *version);
/* PCI subsystem vendor and device ids as hex text, NUL-terminated. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_pidvid(char *pidvid);
/* NKW_PAL_SIM_CD_* level of the card-detect pin. */
NKW_PAL_API int32_t nkw_pal_get_sim_cd_state(void);
/* YYYYMM01 from the serial number, NUL-terminated (9 bytes); 20100101 when
 * the serial cannot be read. 0; -1; 7. */
NKW_PAL_API int32_t nkw_pal_get_manufacture_date(char *date);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_INFO_H */
