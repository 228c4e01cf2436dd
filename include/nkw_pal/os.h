/*
 * nkw_pal OS services: heap, named semaphores (and, as they land, threads,
 * mutexes, timers, message queues, sockets).
 *
 * Handle convention: each object is a heap record owned by a caller variable
 * of pointer type. Create calls take the variable's address and fill it only
 * on success; use calls take its value; delete calls take its address,
 * release the object, free the record and set the variable to NULL.
 *
 * Time-outs (semaphore wait, queue put/get) are a pointer to milliseconds:
 * NULL waits without limit, a pointed-to 0 does not wait, any other value is
 * a deadline of now plus that many milliseconds. The deadline's nanoseconds
 * are not normalised: when they reach a whole second the wait fails at once
 * with -1 unless the object is available immediately (existing callers rely
 * on this).
 */
#ifndef NKW_PAL_OS_H
#define NKW_PAL_OS_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* Statuses of the OS services. */
enum {
    NKW_PAL_HEAP_INFO_UNSUPPORTED = 10, /* nkw_pal_getHeapInfo */
    NKW_PAL_OS_TIMEOUT = 17,            /* a timed wait ran out */
    NKW_PAL_OS_NAME_TOO_LONG = 22,      /* object name over its limit */
    NKW_PAL_SEM_AT_MAXIMUM = 103,       /* post refused: count at its maximum */
    NKW_PAL_SEM_HALF_BUILT = 106        /* deinit of a handle missing its parts */
};

/* ---- Heap ---------------------------------------------------------------
 * Wrappers over the C allocator that log every allocation and free under
 * the tag MEM (debug level). Blocks are released with nkw_pal_free.
 */

/* size 0: NULL with an error line. */
NKW_PAL_API void *nkw_pal_malloc(uint32_t size);
/* count or size 0: NULL with an error line. The block is zeroed. */
NKW_PAL_API void *nkw_pal_calloc(uint32_t count, uint32_t size);
/*
 * NULL with size 0 is refused (NULL, error line). A non-null block with size
 * 0 is handed to the C library as it is, and its result returned without an
 * error. On failure for a non-zero size the old block stays the caller's.
 */
NKW_PAL_API void *nkw_pal_realloc(void *ptr, uint32_t size);
/* NULL only logs a warning. */
NKW_PAL_API void nkw_pal_free(void *ptr);
/* Not implemented: always NKW_PAL_HEAP_INFO_UNSUPPORTED. */
NKW_PAL_API int32_t nkw_pal_getHeapInfo(void);

/* ---- Named semaphores ------------------------------------------------------
 * POSIX named counting semaphores "/TOLV_Openwrt_<name>.sem", shared by every
 * process that opens the same name. Tag SEM.
 */
typedef struct sem_info sem_info;

/* Longest semaphore name, terminator not counted. */
#define NKW_PAL_SEM_NAME_MAX 64

/*
 * Opens (creating if absent) the semaphore `name` (at most 64 characters).
 * An existing semaphore keeps its count; `init_value` then has no effect.
 * `max_value` is only checked against `init_value`.
 * Returns 0 (handle stored in *out), 5 null out/name, 22 name too long,
 * 7 max_value < init_value, -1 allocation or sem_open failure.
 */
NKW_PAL_API int32_t nkw_pal_sem_init(sem_info **out, const char *name, uint32_t max_value,
                                     uint32_t init_value);

/* Returns 0, 5 bad handle, 103 count at maximum, -1 other failure. */
NKW_PAL_API int32_t nkw_pal_sem_post(sem_info *handle);

/*
 * Waits per the time-out convention above. EINTR ends an untimed wait with
 * -1; a timed wait resumes with the same deadline. Returns 0, 5 bad handle,
 * 17 time-out, -1 other failure (including a zero time-out on a semaphore
 * that is not available).
 */
NKW_PAL_API int32_t nkw_pal_sem_wait(sem_info *handle, const uint32_t *timeout_ms);

/*
 * Closes and unlinks the semaphore, frees the handle and clears *handle.
 * `handle` itself must not be NULL. Returns 0, 7 when *handle is NULL,
 * 106 for a half-built handle (nothing freed).
 */
NKW_PAL_API int32_t nkw_pal_sem_deinit(sem_info **handle);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_OS_H */
