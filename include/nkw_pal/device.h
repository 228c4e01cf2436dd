/*
 * nkw_pal device control. Tag SYS.
 */
#ifndef NKW_PAL_DEVICE_H
#define NKW_PAL_DEVICE_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* ---- Clock and time --------------------------------------------------------
 * Wall clock as local time, monotonic uptime and the modem's time.
 */

/* Statuses of device control. */
enum {
    NKW_PAL_CLOCK_SET_FAILED = 802, /* the system clock could not be set */
    NKW_PAL_CLOCK_GET_FAILED = 803  /* the local time could not be broken down */
};

/* Broken-down wall-clock time, 10 bytes. */
typedef struct rtc {
    uint8_t sec;   /* 0-59 */
    uint8_t min;   /* 0-59 */
    uint8_t hour;  /* 0-23 */
    uint8_t day;   /* day of month, 1-31 */
    uint8_t mon;   /* 1-12 */
    uint16_t year; /* full year, e.g. 2024 */
    uint8_t wday;  /* 0 = Sunday */
} rtc;

/* Days before each month and the year's length: [0] normal, [1] leap year. */
NKW_PAL_API extern const uint16_t nkw_mon_yday[2][13];

/* Sets the system clock from `t` read as local time (microseconds 0). 0, 7 or 802. */
NKW_PAL_API int32_t nkw_pal_setRTC(const rtc *t);
/* The current local time. 0, 7 or 803. */
NKW_PAL_API int32_t nkw_pal_getRTC(rtc *t);
/* Sets the clock's seconds, keeping its microseconds. 0 or 802. */
NKW_PAL_API int32_t nkw_pal_setTimestamp(long seconds);
/*
 * The local calendar time counted as if it were UTC, with the module's own
 * leap-year rule (on the year's low 8 bits) and 32-bit arithmetic: it matches
 * the UTC reading for dates from 1993 to 2037, is a day ahead for 1970-1992
 * and wraps after 2037. 0, 7 or -1.
 */
NKW_PAL_API int32_t nkw_pal_getTimestamp(long long *seconds);
/* Monotonic whole seconds divided by the clock-tick rate; 0xFFFFFFFF on failure. */
NKW_PAL_API uint32_t nkw_pal_getSysTicks(void);
/* Monotonic whole seconds, or -1. */
NKW_PAL_API int32_t nkw_pal_getSysSec(void);
/* The modem's time in seconds; the uptime when the modem cannot be asked. */
NKW_PAL_API uint32_t nkw_pal_get_sys_time(void);
/* Size of the text nkw_pal_TimeStamp2TimeStr writes. */
#define NKW_PAL_TIME_STR_SIZE 80
/*
 * "YYYY-MM-DD hh:mm:ss" of `timestamp` in local time; writes all 80 bytes of
 * `out` (zero-padded). A NULL `out` is logged and left alone. Always 0.
 */
NKW_PAL_API int32_t nkw_pal_TimeStamp2TimeStr(long timestamp, char *out);

/* ---- Module control ----------------------------------------------------------
 * SIM reset, reboot, IPC mode, interrupt pins, USB power-down, SAR table,
 * random bytes and node access. Tag SYS.
 */

enum {
    NKW_PAL_SIM_RESET_FAILED = 804, /* the modem refused or failed the SIM reset */
    NKW_PAL_REBOOT_FAILED = 805,    /* the reboot command returned non-zero */
    NKW_PAL_RANDOM_FAILED = 25      /* no random source, or a short read */
};

/* Dual-IPC modes read from the modem's configuration. */
enum {
    NKW_PAL_IPC_MODE_USB = 1,
    NKW_PAL_IPC_MODE_PCIE_ONLY = 2,
    NKW_PAL_IPC_MODE_DIPC = 3,
    NKW_PAL_IPC_MODE_UNKNOWN = 5 /* no configuration, or a value outside 1-4 */
};

/* Resets SIM 0 or SIM 1 (any non-zero value selects SIM 1). 0 or 804. */
NKW_PAL_API int32_t nkw_pal_resetSIM(unsigned char sim);
/* Runs "reboot" through the shell. 0, or 805 when it returns non-zero. */
NKW_PAL_API int32_t nkw_pal_rebootModule(void);
/* 1 when the host side is below the OS, else 0 (also on every error). */
NKW_PAL_API int32_t nkw_pal_below_os_status_check(void);
/* The configured dual-IPC mode 1-4, or 5. */
NKW_PAL_API int32_t nkw_pal_get_dual_ipc_mode(void);
/* Switches off the W_DISABLE / GNSS interrupt pin. 0 or -1. */
NKW_PAL_API int32_t nkw_pal_disable_w_disable(void);
NKW_PAL_API int32_t nkw_pal_disable_gnss_irq(void);
/*
 * Powers down the PCIe PHY clocks, stops the 4dipcd service, then in USB
 * mode (1) asks the modem to power USB down. 0 once the service stop has
 * run, whatever the mode does; -1 when a clock step fails.
 */
NKW_PAL_API int32_t nkw_pal_disable_usb(int ipc_mode);
/* Switches the SAR table when either SAR item enables it. 0 or -1. */
NKW_PAL_API int32_t nkw_pal_sar_index_switch(unsigned int sar_index);
/* Fills `buf` with `len` random bytes from one read. 0, 7 or 25. */
NKW_PAL_API int32_t nkw_pal_rng_generate(unsigned char *buf, unsigned int len);

/* ---- I2C -------------------------------------------------------------------
 * One slave on the first I2C bus, with interrupt messages from the kernel
 * delivered to a callback on a thread of the handle's own. Tag I2C.
 */

enum {
    NKW_PAL_I2C_BAD_ARG = 1402,      /* null handle or buffer, or too long */
    NKW_PAL_I2C_CLOSE_FAILED = 1404, /* the device or the thread could not be closed */
    NKW_PAL_I2C_READ_FAILED = 1405,  /* the read transfer failed */
    NKW_PAL_I2C_WRITE_FAILED = 1406  /* the write transfer failed */
};

/* Longest transfer a handle accepts. */
#define NKW_PAL_I2C_MAX_LEN 5121u

typedef struct nkw_pal_i2c_cfg {
    uint32_t i2c_controller_mode; /* 0, or 1 = master (needs a callback) */
    uint32_t i2c_bit_rate;        /* 0-2; checked, not applied */
    uint16_t i2c_slave_addr;
    uint32_t i2c_address_width; /* 0 = 7-bit, 1 = 10-bit */
} nkw_pal_i2c_cfg;

typedef struct nkw_pal_i2c_handle nkw_pal_i2c_handle;
/* Called on the interrupt thread after every receive on the mail socket. */
typedef void (*nkw_pal_i2c_irq_cb)(void);

/*
 * Opens the device for one slave and starts the interrupt thread; NULL on
 * failure. The slave address is set before 10-bit mode, so the kernel holds
 * it to the 7-bit range (up to 0x7F) even with an address width of 1, and
 * transfers carry no 10-bit flag.
 */
NKW_PAL_API nkw_pal_i2c_handle *nkw_pal_i2c_open(const nkw_pal_i2c_cfg *p_cfg,
                                                 nkw_pal_i2c_irq_cb callback);
/* Closes the device and the mail socket and ends the thread. 0, 1402 or 1404. */
NKW_PAL_API int32_t nkw_pal_i2c_close(nkw_pal_i2c_handle *handle);
/* One combined transfer of `len` bytes (at most 5121). 0, 1402 or 1405/1406. */
NKW_PAL_API int32_t nkw_pal_i2c_readBuff(nkw_pal_i2c_handle *handle, uint8_t *buf, uint32_t len);
NKW_PAL_API int32_t nkw_pal_i2c_writeBuff(nkw_pal_i2c_handle *handle, const uint8_t *data,
                                          uint32_t len);
/* Creates and binds the interrupt mail socket into `*out`. 0 or -1. */
NKW_PAL_API int32_t nkw_pal_i2c_mail_create(int32_t *out);

NKW_PAL_END_DECLS

#ifdef __cplusplus
/*
 * Node utilities for the library's own modules (C++ linkage). Write
 * `command` (without its NUL) into an existing node, or read up to 100
 * bytes of it into the log. 0 or -1.
 */
NKW_PAL_API int32_t nkw_pal_open_write_func(const char *node_name, const char *command);
NKW_PAL_API int32_t nkw_pal_open_read_func(const char *node_name);
#endif

#endif /* NKW_PAL_DEVICE_H */
