/*
 * nkw_pal connectivity: network registration and packet attach, packet data
 * calls, and what the library configures on the host around them (default
 * route, MTU and DNS servers of the modem's ccmni<N> interface, traffic
 * counters). Every call needs the modem session (nkw_pal_modem_msg_init).
 */
#ifndef NKW_PAL_CONNECT_H
#define NKW_PAL_CONNECT_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* ---- Registration and packet attach ------------------------------------- */

/* Registration states as returned (the modem's "unknown" reads as 0). */
enum {
    NKW_PAL_REG_NOT_REGISTERED = 0,
    NKW_PAL_REG_HOME = 1,
    NKW_PAL_REG_SEARCHING = 2,
    NKW_PAL_REG_DENIED = 3,
    NKW_PAL_REG_ROAMING = 4
};

/*
 * When registered for packet service (home or roaming), copies the first
 * three PLMN characters into mcc (no terminator) and the next four bytes
 * (two or three MNC digits and the terminator) into mnc. Returns 0, also
 * when not registered (outputs untouched); -1 for a null output or a
 * failing query.
 */
NKW_PAL_API int32_t nkw_pal_get_register_info_str(char mcc[3], char mnc[4]);

/*
 * The packet-service registration state, mapped to NKW_PAL_REG_*. A modem
 * state outside the known ones leaves *state unchanged. 0 or -1.
 */
NKW_PAL_API int32_t nkw_pal_get_register_state(uint32_t *state);

/*
 * Requests packet-service state `state` (the modem's value: 1 attach,
 * 0 detach) and waits for it. Values above 1 are refused (-1) without
 * asking the modem; negative values are passed on. 0 or -1.
 */
NKW_PAL_API int32_t nkw_pal_ps_attach(int32_t state);

typedef void (*nkw_pal_register_state_cb)(uint32_t state, void *user);

/*
 * From now on every registration indication of the modem calls
 * callback(mapped state, user) on the modem library's thread (states the
 * table does not know read as 0). Each registration adds a listener; there
 * is no unsubscription. 0; 3 no memory; -1 refused by the modem.
 */
NKW_PAL_API int32_t nkw_pal_register_state_indication_register(nkw_pal_register_state_cb callback,
                                                               void *user);

/* ---- Data calls ---------------------------------------------------------- */

enum {
    NKW_PAL_APN_LEN = 104,
    NKW_PAL_DATA_CALL_USER_LEN = 65,
    NKW_PAL_DATA_CALL_PASSWORD_LEN = 65,
    NKW_PAL_DATA_CALL_INFO_APN_LEN = 101,
    /* PDP types are the modem's numbering; the one value the library tests: */
    NKW_PAL_PDP_TYPE_IPV6 = 2 /* IPv6 only */
};

/* What to activate; texts NUL-terminated. The codes are the modem's. */
typedef struct {
    char apn[NKW_PAL_APN_LEN];
    uint32_t apn_type;
    uint32_t pdp_type;
    uint32_t roaming_pdp_type;
    uint32_t auth_type;
    char username[NKW_PAL_DATA_CALL_USER_LEN];
    char password[NKW_PAL_DATA_CALL_PASSWORD_LEN];
} nkw_pal_data_conn_req_t;

/*
 * The activated call, 150 bytes without padding. Zero it before the call:
 * the APN is copied without a terminator and bytes 1-3 are not written.
 * Addresses are in network byte order.
 */
typedef struct __attribute__((packed)) {
    uint8_t data_call_id;                     /* offset 0 */
    uint8_t reserved[3];                      /* left untouched */
    int32_t interface_id;                     /* 4: N of ccmni<N> */
    char apn[NKW_PAL_DATA_CALL_INFO_APN_LEN]; /* 8: as the network confirmed it */
    uint8_t pdp_type;                         /* 109 */
    uint8_t v4_addr[4];                       /* 110 */
    uint8_t v6_addr[16];                      /* 114 */
    uint8_t v4_dns[4];                        /* 130: primary */
    uint8_t v6_dns[16];                       /* 134: primary */
} nkw_pal_data_conn_info_t;

/* A call the network ended. */
typedef struct {
    uint32_t result_code;
    uint32_t data_call_id;
    uint32_t network_cause;
} nkw_pal_data_call_deact_t;

/*
 * Activates a data call, then makes ccmni<N> the default route with an MTU
 * of 1340 and writes the network's DNS servers (both families, the call's
 * own family first) to /etc/resolv.conf. Blocks for the interface wait
 * (up to 30 rounds of 100 ms). 0, or -1 with `out` and the host untouched.
 */
NKW_PAL_API int32_t nkw_pal_data_conn_sync(const nkw_pal_data_conn_req_t *req,
                                           nkw_pal_data_conn_info_t *out);

/* Copies the IPv6 address of active call `data_call_id`. 0 or -1. */
NKW_PAL_API int32_t nkw_pal_data_call_get_sync(uint8_t data_call_id, uint8_t ipv6_addr[16]);

/* Ends a data call; route, MTU and resolver file stay as they are. 0 or -1. */
NKW_PAL_API int32_t nkw_pal_data_conn_release(const uint8_t *data_call_id);

/*
 * Called on the modem library's thread with a record that lives only for
 * the call. The user pointer given at registration is not passed on.
 */
typedef void (*nkw_pal_data_call_deact_cb)(const nkw_pal_data_call_deact_t *info);

/* Installs the deactivation indication (name as shipped). 0; 3; -1. */
NKW_PAL_API int32_t
nkw_pal_data_connection_deactivated_regisetr(nkw_pal_data_call_deact_cb callback, void *user);

/* ---- Host side: PDP type, traffic counters -------------------------------- */

/* PDP type of the last activated call; 1 before any. */
NKW_PAL_API extern uint8_t pdp_ip_type;

NKW_PAL_API uint8_t nkw_pal_get_pdp_ip_type(void);

/*
 * Received and sent bytes of interface `ifname` from sysfs, 32 bits wide
 * (larger counters do not fit). 0, or -1 when an argument is null, the name
 * does not fit the counter path or a counter cannot be read; rx_bytes may
 * be written when only the tx counter fails.
 */
NKW_PAL_API int32_t nkw_pal_get_traffic_by_interface_name(const char *ifname, uint32_t *tx_bytes,
                                                          uint32_t *rx_bytes);

NKW_PAL_END_DECLS

#ifdef __cplusplus
/*
 * The resolver file, for the library's own modules (C++ linkage). dns1 and
 * dns2 are address texts; a null one makes the call do nothing, and text
 * holding anything but the characters of an IPv4 or IPv6 address is
 * refused with nothing run.
 */
/* Replaces /etc/resolv.conf with the two servers. */
NKW_PAL_API void nkw_pal_refresh_dns_table(char *dns1, char *dns2);
/* Appends the two servers to /etc/resolv.conf. */
NKW_PAL_API void nkw_pal_add_dns_table(char *dns1, char *dns2);
#endif

#endif /* NKW_PAL_CONNECT_H */
