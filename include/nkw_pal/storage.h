/* nkw_pal storage: NV items kept in the modem's NVRAM or as files on the AP. */
#ifndef NKW_PAL_STORAGE_H
#define NKW_PAL_STORAGE_H

#include <assert.h> /* static_assert in C11 as in C++ */

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* ---- NV items ------------------------------------------------------------ */

/*
 * Daemons keep their settings as numbered NV items. The fixed table below
 * maps each logical id (its row number) to the item's home: a modem NVRAM
 * LID, or a file under "/data/quarn/". Callers pass the logical id only.
 */

enum {
    NKW_PAL_NVM_TAB_COUNT = 39,  /* rows of nkw_nvm_tab */
    NKW_PAL_NVM_END_MARKER = 38, /* id and row of the end marker: refused everywhere */
    NKW_PAL_NVM_MODEM_RECORD = 1 /* every modem item is record 1 of its LID */
};

/* Where an item lives (the row's `position`). */
enum {
    NKW_PAL_NVM_POSITION_AP = 0,    /* a file under "/data/quarn/" */
    NKW_PAL_NVM_POSITION_MODEM = 1, /* modem NVRAM, record 1 of the LID */
    NKW_PAL_NVM_POSITION_NONE = 2   /* marker rows 0 and 38 */
};

/* Statuses of the NV item operations (besides 0, 3, 7 and -1). */
enum {
    NKW_PAL_NVM_OPEN_FAILED = 702,     /* AP file or "/data/quarn/" could not be opened/created */
    NKW_PAL_NVM_MD_READ_FAILED = 706,  /* modem refused the read, or the item exceeds `len` */
    NKW_PAL_NVM_MD_WRITE_FAILED = 708, /* modem refused the write */
    NKW_PAL_NVM_INVALID_ID = 710,      /* id 38 (and a NULL size pointer) */
    NKW_PAL_NVM_AP_READ_FAILED = 711,
    NKW_PAL_NVM_AP_WRITE_FAILED = 712,  /* the file may be left truncated */
    NKW_PAL_NVM_INVALID_POSITION = 713, /* the placeholder row: ids above 38 */
    NKW_PAL_NVM_NO_FILE = 714,          /* size/exist asked about an item without a file */
    NKW_PAL_NVM_EMPTY_FILE = 715        /* size of an empty file */
};

/* One row of the table: 40 bytes on the 64-bit module, read by other programs. */
typedef struct nkw_nvm_item {
    uint32_t logic_id;     /* equal to the row number */
    uint32_t plat_nvm_id;  /* modem LID; 0 for AP items */
    const char *file_name; /* relative to "/data/quarn/"; NULL unless an AP item */
    uint8_t backup;        /* 1: needs a backup copy (0 in every row) */
    uint32_t position;     /* NKW_PAL_NVM_POSITION_* */
    uint8_t reserved[16];  /* zero; keeps the exported row width */
} nkw_nvm_item;

#if UINTPTR_MAX == 0xFFFFFFFFFFFFFFFFu
static_assert(sizeof(nkw_nvm_item) == 40, "NV table row is 40 bytes");
static_assert(offsetof(nkw_nvm_item, plat_nvm_id) == 4, "LID at 4");
static_assert(offsetof(nkw_nvm_item, file_name) == 8, "file name at 8");
static_assert(offsetof(nkw_nvm_item, backup) == 16, "backup flag at 16");
static_assert(offsetof(nkw_nvm_item, position) == 20, "position at 20");
static_assert(offsetof(nkw_nvm_item, reserved) == 24, "reserved bytes at 24");
#endif

/* The table, indexed by logical id (1560 bytes on the 64-bit module). */
NKW_PAL_API extern const nkw_nvm_item nkw_nvm_tab[NKW_PAL_NVM_TAB_COUNT];

/* Completion of nkw_pal_nvm_read_async: the item's bytes, valid during the call only. */
typedef void (*nkw_pal_nvm_read_cb)(unsigned char *data, unsigned int data_len);
/* Completion of nkw_pal_nvm_write_async: 1 when the modem stored the item, else 0. */
typedef void (*nkw_pal_nvm_write_cb)(int ok);

/*
 * Reads at most `len` bytes of item `id` into `buf`. The caller is not told
 * how many bytes arrived: zero-fill `buf` first. An AP item whose file is
 * short or empty reads successfully and leaves the rest of `buf` as it was.
 * Returns 0; 7 buf NULL or len 0; 710 id 38; 713 ids above 38;
 * 706 modem refused or the item is larger than `len`; 711 AP file unreadable.
 * `len` reaches the modem cut to 16 bits.
 */
NKW_PAL_API int nkw_pal_nvm_read(unsigned int id, unsigned char *buf, unsigned int len);

/*
 * Writes `len` bytes of `data` as item `id`; an AP file is replaced (synced
 * writes, owner read/write when created, "/data/quarn/" made when missing).
 * Returns 0; 7 data NULL or len 0; 710 id 38; 713 ids above 38;
 * 708 modem refused; 712 AP write failed (the file may be left truncated).
 */
NKW_PAL_API int nkw_pal_nvm_write(unsigned int id, unsigned char *data, unsigned int len);

/*
 * Asks the modem for item `id`; `read_cb` later receives the bytes the modem
 * reports, on the modem IPC library's thread. A failed read never calls it.
 * Modem items only. Returns 0 sent; 7 read_cb NULL or len 0; 710 id 38;
 * -1 AP item or the modem refused the request; 713 ids above 38; 3 no memory.
 */
NKW_PAL_API int nkw_pal_nvm_read_async(unsigned int id, nkw_pal_nvm_read_cb read_cb,
                                       unsigned int len);

/*
 * Sends `len` bytes of `data` as modem item `id`; `write_cb` (may be NULL)
 * later receives 1 or 0 on the modem IPC library's thread. `data` must stay
 * valid until the completion. Statuses as nkw_pal_nvm_read_async, with
 * 7 for NULL data.
 */
NKW_PAL_API int nkw_pal_nvm_write_async(unsigned int id, nkw_pal_nvm_write_cb write_cb,
                                        unsigned char *data, unsigned int len);

/*
 * Size of AP item `id`'s file. Returns 0 (size stored); 710 size NULL or
 * id 38; 714 item without a file (modem items, ids above 38); 702 file
 * missing; 715 file empty.
 */
NKW_PAL_API int nkw_pal_nvm_get_nv_size(unsigned int id, unsigned int *size);

/* 0 when AP item `id`'s file exists (nothing is created); 710, 714 or 702. */
NKW_PAL_API int nkw_pal_nvm_check_nv_exist(unsigned int id);

/* Number of table rows: 39. */
NKW_PAL_API int nkw_pal_nvm_tab_count(void);

/* Number of rows that need a backup copy: 0. */
NKW_PAL_API int nkw_pal_nvm_tab_backup_count(void);

NKW_PAL_END_DECLS

#ifdef __cplusplus
/*
 * Row of logical id `id`: `id` itself for 0..37; 38 (logged) for the end
 * marker, which every caller treats as invalid; 0, the placeholder row, for
 * any id above 38. Overloadable linkage: the exported symbol carries the
 * parameter type.
 */
NKW_PAL_API int nkw_pal_nvm_tab_index_get(unsigned int id);
#endif

#endif /* NKW_PAL_STORAGE_H */
