/*
 * nkw_pal location: GNSS fixes from the platform's GNSS adaptor (tag GNSS)
 * and AGPS/EPO configuration (tag AGPS). The adaptor is reached on its local
 * socket in the abstract namespace.
 */
#ifndef NKW_PAL_LOCATION_H
#define NKW_PAL_LOCATION_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* ---- GNSS ------------------------------------------------------------------ */

/* One position as the NMEA parser fills it. */
typedef struct nkw_pal_gnss_location {
    int32_t valid;    /* 1 when the last RMC status was 'A' */
    float latitude;   /* signed decimal degrees, north positive */
    float longitude;  /* signed decimal degrees, east positive */
    float altitude;   /* GGA field 9 */
    float radius;     /* GGA field 8, horizontal dilution */
    int32_t sat_type; /* GGA field 6, fix quality */
    int32_t sat_num;  /* GGA field 7, satellites used */
} nkw_pal_gnss_location;

/* The single acquisition state, 48 bytes. */
typedef struct nkw_pal_gnss_info_t {
    int32_t fd;   /* adaptor connection */
    int32_t epfd; /* epoll descriptor */
    nkw_pal_gnss_location location;
    uint8_t reserved[12];
} nkw_pal_gnss_info_t;

NKW_PAL_API extern nkw_pal_gnss_info_t nkw_pal_gnss_info;

/* What nkw_pal_gnss_info_acquire hands back. */
typedef struct nkw_pal_gnss_result {
    int32_t valid;
    float latitude;
    float longitude;
    float altitude;
    float radius;
    int32_t sat_type;
    int32_t sat_num;
    int64_t timestamp; /* nkw_pal_getTimestamp at the fix */
} nkw_pal_gnss_result;

/*
 * Starts the adaptor and waits for a valid fix: 0 with `out` filled, or -1.
 * The duration is checked only between wake-ups, so an adaptor that sends
 * nothing blocks the caller past it, and one that hangs up leaves it waiting
 * on nothing; at most 2000 wake-ups are spent. Calls must not overlap (they
 * share nkw_pal_gnss_info).
 */
NKW_PAL_API int nkw_pal_gnss_info_acquire(unsigned int acquisition_duration,
                                          nkw_pal_gnss_result *out);
/* A connected AF_UNIX stream socket, or 0 (not -1) on failure. */
NKW_PAL_API int nkw_pal_gnss_socket_tcp_client_connect_local(bool abstract, const char *name);
NKW_PAL_API bool nkw_pal_gnss_epoll_add_fd(int epfd, int fd);
/* "AT+ELCSSTART=\r\n" / "AT+ELCSSTOP=\r\n" to `fd`. */
NKW_PAL_API bool nkw_pal_gnss_start_request(int fd);
NKW_PAL_API bool nkw_pal_gnss_stop_request(int fd);
/* The same on the socket of nkw_pal_gnss_info. */
NKW_PAL_API bool nkw_pal_gnss_ops_start_gnss(void);
NKW_PAL_API bool nkw_pal_gnss_ops_stop_gnss(void);
/* Reads once and parses every whole line; false (and `fd` closed) on EOF or error. */
NKW_PAL_API bool nkw_pal_gnss_gnss_data_handle(int fd);
/* One adaptor line, starting "\r\n+ELCSNMEA" or "\r\n+ELCSNMEAEND". */
NKW_PAL_API bool nkw_pal_gnss_at_client_parser(char *line);
/* Moves `*cursor` past `cmd` and its separator when the text starts with it. */
NKW_PAL_API bool nkw_pal_gnss_at_parse_cmd(char **cursor, const char *cmd);
/* Copies the next quoted string into `out` (terminated) and moves past it. */
NKW_PAL_API bool nkw_pal_gnss_at_parse_string(char **cursor, char *out, int out_size);
/* Size of the field buffer nkw_pal_gnss_get_special_nmea_data writes into. */
#define NKW_PAL_GNSS_FIELD_SIZE 20
/*
 * NMEA field `which` of the first `sentence` in `text`, copied unterminated
 * into `out` (zero it first; at most 19 characters). An empty field is true
 * with nothing copied.
 */
NKW_PAL_API bool nkw_pal_gnss_get_special_nmea_data(char *out, const char *text,
                                                    const char *sentence, unsigned char which);
/* Updates `loc` from the $GNGGA and $GNRMC sentences of `text`. */
NKW_PAL_API void nkw_pal_gnss_parse_location_from_nmea(const char *text,
                                                       nkw_pal_gnss_location *loc);
NKW_PAL_API void nkw_pal_gnss_dump_buff(const unsigned char *buf, int len);
NKW_PAL_API nkw_pal_gnss_info_t *nkw_pal_gnss_ops_get_gnss_info(void);

/* ---- AGPS ------------------------------------------------------------------ */

/*
 * Mode 0-6: AGPS on or off in the adaptor and the EPO setting in
 * "/etc/gnss/mnl.prop" and "/etc/gnss/gps.conf". 0 or -1 (7 and up refused).
 */
NKW_PAL_API int nkw_pal_agps_config(unsigned int mode);
/* Sends the AGPS mode command to the adaptor. 0 or -1; a silent adaptor is 0. */
NKW_PAL_API int nkw_pal_agps_enable(unsigned char enable);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_LOCATION_H */
