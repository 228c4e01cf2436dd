/*
 * nkw_pal storage: NV items kept in the modem's NVRAM or as files on the AP,
 * raw MTD flash partitions and the flash region.
 */
#ifndef NKW_PAL_STORAGE_H
#define NKW_PAL_STORAGE_H

#include <assert.h> /* static_assert in C11 as in C++ */
#include <sys/types.h>

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

/* ---- MTD partitions --------------------------------------------------------
 * Raw flash partitions through the MTD character devices "/dev/mtd<N>" and
 * block devices "/dev/mtdblock<N>". These calls use plain system calls and
 * the system allocator; their diagnostics go to standard error as lines
 * beginning "mtd: " (mount messages to standard output), not to the system
 * log. Nothing here is locked: one thread at a time.
 *
 * Streaming failures leave errno set: ENOSPC when the partition ends,
 * ENOMEM when an allocation fails, EINVAL for a NULL argument.
 */

/* Slots of the partition table: device numbers 0..63. */
enum { NKW_MTD_MAX_PARTITIONS = 64, NKW_MTD_NAME_MAX = 63 };

/* One MTD device, as listed in "/proc/mtd". Owned by the library's
 * partition table, which lives for the process. */
typedef struct nkw_mtd_partition {
    int32_t device_index; /* -1: unused slot */
    uint32_t size;        /* bytes */
    uint32_t erase_size;  /* bytes of one erase block */
    char *name;           /* "appsbl" is listed as "aboot", "apps" as "boot" */
} nkw_mtd_partition;

typedef struct nkw_mtd_read_context nkw_mtd_read_context;
typedef struct nkw_mtd_write_context nkw_mtd_write_context;

/*
 * Reads "/proc/mtd" (one read of at most 2047 bytes) into the table and
 * returns the number of partitions, or -1 when the file cannot be read or a
 * name cannot be copied. While the table holds partitions later calls return
 * the first count without reading again. Lines of devices outside 0..63 are
 * ignored.
 */
NKW_PAL_API int nkw_mtd_scan_partitions(void);

/* The partition of exactly this name, or NULL (also before any scan). */
NKW_PAL_API const nkw_mtd_partition *nkw_mtd_find_partition_by_name(const char *name);

/* The partition whose block device is exactly `device_name`
 * ("/dev/mtdblock<N>"), or NULL. */
NKW_PAL_API const nkw_mtd_partition *nkw_mtd_find_partition_by_device_name(const char *device_name);

/*
 * Mounts "/dev/mtdblock<N>" on `mount_point` with noatime, nodev and
 * nodiratime; when `read_only` is set or that mount fails, mounts read-only
 * (its failure prints "Failed to mount ..." and returns the mount result).
 * Then adds any missing execute bit (0111) of the mount point. Returns the
 * result of the last of mount, stat or chmod: 0 or negative.
 */
NKW_PAL_API int nkw_mtd_mount_partition(const nkw_mtd_partition *partition, const char *mount_point,
                                        const char *filesystem, int read_only);

/* Device sizes from MEMGETINFO into the pointers that are not NULL; 0 or -1. */
NKW_PAL_API int nkw_mtd_partition_info(const nkw_mtd_partition *partition, size_t *total_size,
                                       size_t *erase_size, size_t *write_size);

/*
 * Streaming read from the start of the partition. Blocks that cannot be
 * read, that raise the uncorrectable-ECC counter or that are marked bad are
 * skipped silently, so the data read is that of the good blocks in order.
 */
NKW_PAL_API nkw_mtd_read_context *nkw_mtd_read_partition(const nkw_mtd_partition *partition);
/* lseek of the device to `offset`; returns the new offset or -1. The block
 * buffer is not discarded. */
NKW_PAL_API off_t nkw_mtd_read_skip_to(const nkw_mtd_read_context *context, off_t offset);
/* `len` bytes or -1 (then bytes already copied are lost to the caller). */
NKW_PAL_API ssize_t nkw_mtd_read_data(nkw_mtd_read_context *context, char *data, size_t len);
NKW_PAL_API void nkw_mtd_read_close(nkw_mtd_read_context *context);

/*
 * Streaming write from the start of the partition. Every erase block is
 * erased, written, read back and compared, with two attempts; blocks marked
 * bad or failing both attempts are skipped (listed, and the failing ones
 * erased again) and the data goes to the next block. Data is written in
 * whole erase blocks: close the context to write the last partial block,
 * padded with zero bytes.
 */
NKW_PAL_API nkw_mtd_write_context *nkw_mtd_write_partition(const nkw_mtd_partition *partition);
/* Takes all `len` bytes (returns `len`) or returns -1 on a block failure. */
NKW_PAL_API ssize_t nkw_mtd_write_data(nkw_mtd_write_context *context, const char *data,
                                       size_t len);
/* Writes a held partial block, then erases `blocks` blocks from the device
 * position (negative: all that remain), skipping bad ones. Returns the
 * offset after the last block, or -1. */
NKW_PAL_API off_t nkw_mtd_erase_blocks(nkw_mtd_write_context *context, int blocks);
/* Flushes the partial block, closes and frees; 0, or -1 if the flush or the
 * close failed (the context is freed either way). */
NKW_PAL_API int nkw_mtd_write_close(nkw_mtd_write_context *context);
/* The first offset at or after `pos` that this stream has not found bad. */
NKW_PAL_API off_t mtd_find_write_start(const nkw_mtd_write_context *context, off_t pos);

/*
 * Direct block access. Each call opens the device itself and closes it on
 * every path; results are 0 or the negative codes below.
 *
 * Reads: -1 open failed, -2 ECCGETSTATS failed, -3 seek failed, -5 range
 * beyond the partition (also a negative length), -4 short read. ECC and bad
 * block state is not checked.
 */
NKW_PAL_API int nkw_tolv_mtd_read_one_block(const nkw_mtd_partition *partition, int index,
                                            char *buf);
NKW_PAL_API int nkw_mtd_read_block(const nkw_mtd_partition *partition, char *buf, int len,
                                   int offset);
/* Erases (one retry) and writes block `index`, without read-back: -1 open,
 * -2 seek, -4 beyond the partition or erase failed twice, -3 short write. */
NKW_PAL_API int nkw_mtd_write_one_block(const nkw_mtd_partition *partition, int index,
                                        const char *buf);
/* offset + len rounded up to the erase size (32-bit arithmetic). */
NKW_PAL_API uint32_t nkw_mtd_malloc_all_size(const nkw_mtd_partition *partition, uint32_t offset,
                                             uint32_t len);
/*
 * Writes `len` bytes at byte `offset`, keeping the other bytes of the
 * touched erase blocks: -1 open or allocation failed, -2 reading them back
 * or seeking failed, -4 beyond the partition or erase failed twice, -3 short
 * write. The erase length is nkw_mtd_malloc_all_size(offset, len) taken from
 * the first touched block, so for ranges beyond the first block the blocks
 * after the touched ones are erased too, and near the partition end the
 * erase is refused (-4). An end offset on a block boundary reads a whole
 * extra block as its tail, so a range ending at the partition end gives -2.
 */
NKW_PAL_API int nkw_mtd_write_block(const nkw_mtd_partition *partition, const char *data,
                                    uint32_t len, uint32_t offset);
/* Leaves [offset, offset + len) erased (0xFF), keeping the rest of the
 * touched blocks; codes and erase length as nkw_mtd_write_block. */
NKW_PAL_API int nkw_mtd_erase_block(const nkw_mtd_partition *partition, uint32_t len,
                                    uint32_t offset);

/* ---- Flash region ----------------------------------------------------------
 * A byte-addressed store on the raw partition "mddata_bak" (log tag FLASH).
 * nkw_pal_flash_init must have succeeded first: the other calls look the
 * partition up in the table it fills. Calls must not overlap.
 */

enum {
    NKW_PAL_FLASH_SCAN_ERROR = 602,   /* "/proc/mtd" could not be read */
    NKW_PAL_FLASH_PARAM_ERROR = 603,  /* NULL data */
    NKW_PAL_FLASH_RANGE_ERROR = 604,  /* offset or offset + len past the partition */
    NKW_PAL_FLASH_NO_PARTITION = 605, /* "mddata_bak" not in the table */
    NKW_PAL_FLASH_READ_ERROR = 606,   /* the block read failed */
    NKW_PAL_FLASH_WRITE_ERROR = 607,  /* the block write failed */
    NKW_PAL_FLASH_ERASE_ERROR = 608   /* the block erase failed */
};

NKW_PAL_API int32_t nkw_pal_flash_init(void);
/*
 * The range check takes offset + len in 32-bit arithmetic, so a wrapping
 * sum passes it; the block layer then refuses the range (606, 607 or 608).
 * A failed write or erase may leave the touched blocks erased.
 */
NKW_PAL_API int32_t nkw_pal_flash_read(unsigned int offset, void *data, unsigned int len);
NKW_PAL_API int32_t nkw_pal_flash_write(unsigned int offset, const void *data, unsigned int len);
NKW_PAL_API int32_t nkw_pal_flash_erase(unsigned int offset, unsigned int len);

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
