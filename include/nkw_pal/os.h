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

#include <pthread.h>

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

/* Statuses of threads, mutexes, timers, message queues and sockets. */
enum {
    NKW_PAL_MUTEX_INIT_FAILED = 2,          /* pthread_mutex_init refused */
    NKW_PAL_OS_MISSING_ARG = 8,             /* socket calls: address, host or data missing */
    NKW_PAL_THREAD_UNSUPPORTED = 10,        /* nkw_pal_thread_suspend / _resume */
    NKW_PAL_MUTEX_BUSY = 203,               /* trylock: errno was EBUSY */
    NKW_PAL_MUTEX_NO_MEMORY = 206,          /* mutex record allocation failed */
    NKW_PAL_MQ_NO_SPACE = 303,              /* mq_open: system queue limit reached */
    NKW_PAL_MQ_HALF_BUILT = 305,            /* delete of a handle missing its name */
    NKW_PAL_TIMER_NO_MEMORY = 403,          /* timer_create: out of memory */
    NKW_PAL_THREAD_CANCEL_REFUSED = 502,    /* pthread_cancel failed; nothing freed */
    NKW_PAL_THREAD_ATTR_INIT_FAILED = 503,  /* logged only ("thread create failed ret") */
    NKW_PAL_THREAD_SCHEDPARAM_FAILED = 504, /* logged only */
    NKW_PAL_THREAD_STACK_TOO_SMALL = 505,   /* logged only */
    NKW_PAL_RESOLVE_FAILED = 1502,          /* getaddrinfo failed or found nothing */
    NKW_PAL_RESOLVE_NO_ADDRESS = 1503       /* no IPv4 or IPv6 result */
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
 * Returns 0, 7 when handle or *handle is NULL,
 * 106 for a half-built handle (nothing freed).
 */
NKW_PAL_API int32_t nkw_pal_sem_deinit(sem_info **handle);

/* ---- Threads -------------------------------------------------------------
 * Detached POSIX threads, ended from outside by cancellation; there is no
 * join. Tag THREAD.
 */
typedef struct thread_attr {
    uint32_t priority;   /* 1..99 when applied (the default policy never applies it) */
    uint32_t stack_size; /* bytes; must be more than 16383 */
} thread_attr;

typedef struct thread_info thread_info;

/* The thread's function; its result is ignored. */
typedef void *(*nkw_pal_thread_fn)(void *arg);

/* Longest thread name (used only in log lines), terminator not counted. */
#define NKW_PAL_THREAD_NAME_MAX 128

/*
 * Starts `callback(arg)` on a new detached thread. `attr` may be NULL (default
 * attributes); it is read once. Returns 0 (handle stored in *out), 7 null
 * out/name, 22 name too long, 5 record allocation failed, -1 any later
 * failure (stack size of 16383 or less included; the reason is logged).
 * The handle record stays allocated after the function returns, until
 * nkw_pal_thread_delete.
 */
NKW_PAL_API int32_t nkw_pal_thread_create(thread_info **out, const char *name,
                                          const thread_attr *attr, nkw_pal_thread_fn callback,
                                          void *arg);

/*
 * Cancels the thread (without waiting for it to end), frees the handle and
 * clears *handle. The thread must not have returned yet, and should have
 * started (the new thread reads the record as it starts). Returns 0, 7 NULL
 * handle or handle address, 502 cancellation refused (nothing freed).
 */
NKW_PAL_API int32_t nkw_pal_thread_delete(thread_info **handle);

/* usleep(ms * 1000), the product taken in 32 bits; returns usleep's result. */
NKW_PAL_API int32_t nkw_pal_thread_msleep(uint32_t ms);

/* Not implemented: always NKW_PAL_THREAD_UNSUPPORTED; the argument is ignored. */
NKW_PAL_API int32_t nkw_pal_thread_suspend(void *handle);
NKW_PAL_API int32_t nkw_pal_thread_resume(void *handle);

/* The thread's pthread_t, or 0 for a NULL handle. */
NKW_PAL_API pthread_t nkw_pal_thread_id(thread_info *handle);

/* ---- Mutexes -------------------------------------------------------------
 * Recursive POSIX mutexes: the owner may lock again and must unlock as often.
 * Tag MUTEX.
 */
typedef struct mutex_info mutex_info;

/* Returns 0 (handle stored in *out), 7 null out, 206 allocation failed, 2 init failed. */
NKW_PAL_API int32_t nkw_pal_mutex_create(mutex_info **out);
/* Returns 0, 7 null handle, -1 failure. */
NKW_PAL_API int32_t nkw_pal_mutex_lock(mutex_info *handle);
/*
 * Returns 0, 7 null handle; when the mutex is not taken the status follows
 * errno rather than the call's result: 203 if errno holds EBUSY, else -1.
 */
NKW_PAL_API int32_t nkw_pal_mutex_trylock(mutex_info *handle);
/* Returns 0, 7 null handle, -1 failure (e.g. not the owner). */
NKW_PAL_API int32_t nkw_pal_mutex_unlock(mutex_info *handle);
/*
 * Destroys the mutex, frees the handle and clears *handle. Returns 0, 7 NULL
 * handle or handle address, -1 destroy refused (a locked mutex; nothing
 * freed).
 */
NKW_PAL_API int32_t nkw_pal_mutex_delete(mutex_info **handle);

/* ---- Timers --------------------------------------------------------------
 * Millisecond timers on the wake-up alarm boot-time clock (no fallback clock:
 * a process without the wake-alarm capability gets -1 from create). Each
 * expiry calls the callback on a thread the C library starts for it,
 * concurrently with the caller's threads. Tag TIMER.
 */
typedef struct timer_info timer_info;

typedef void (*nkw_pal_timer_fn)(void *arg);

/*
 * Creates a disarmed timer; `name` is only logged, `arg` may be NULL.
 * Returns 0 (handle stored in *out), 5 null callback/name/out, 403 out of
 * memory in timer_create, -1 other failure.
 */
NKW_PAL_API int32_t nkw_pal_timer_create(nkw_pal_timer_fn callback, void *arg, const char *name,
                                         timer_info **out);
/*
 * Arms the timer `ms` from now (re-arming a running one); with `periodic`
 * non-zero it repeats every `ms`. 0 ms disarms. Returns 0, 5, -1.
 */
NKW_PAL_API int32_t nkw_pal_timer_start(timer_info *handle, uint32_t ms, uint8_t periodic);
/* Disarms. Returns 0, 5, -1. */
NKW_PAL_API int32_t nkw_pal_timer_stop(timer_info *handle);
/*
 * Deletes the timer, frees the handle and clears *handle. A callback already
 * under way may still be running when this returns, so stop the timer and
 * let its last callback finish first. Returns 0, 5 NULL handle or handle
 * address, -1 timer_delete failed (handle kept).
 */
NKW_PAL_API int32_t nkw_pal_timer_delete(timer_info **handle);
/* 1 while armed, else 0 (also for a bad handle). */
NKW_PAL_API int32_t nkw_pal_timer_isRunning(timer_info *handle);
/* 1 while armed with a period, else 0 (also for a bad handle). */
NKW_PAL_API int32_t nkw_pal_timer_isPeriodic(timer_info *handle);

/* ---- Message queues ------------------------------------------------------
 * POSIX message queues "/TOLV_Openwrt_<name>.queue", shared by every process
 * that creates the same name. Messages carry no priority. The blocking mode
 * lives in the shared open queue: a zero time-out in one thread can turn a
 * concurrent unlimited call on the same handle into a non-blocking one, so
 * serialise calls on a shared handle. Tag MQ.
 */
typedef struct mq_info mq_info;

/* Filled by nkw_pal_mq_info. */
typedef struct mq_usage {
    uint32_t curmsgs;  /* messages now in the queue */
    uint32_t freemsgs; /* places left: mq_maxmsg - curmsgs */
} mq_usage;

/* Longest queue name, terminator not counted. */
#define NKW_PAL_MQ_NAME_MAX 64

/*
 * Opens (creating if absent) the queue `name`. An existing queue keeps its
 * sizes and messages. Returns 0 (handle stored in *out), 7 null name/out,
 * 3 allocation failed, 22 name too long (a small record is then not freed:
 * known and kept), 303 system queue limit reached, -1 other failure.
 */
NKW_PAL_API int32_t nkw_pal_mq_create(uint32_t maxmsg, uint32_t msgsize, const char *name,
                                      mq_info **out);
/*
 * Closes and unlinks the queue, frees the handle and clears *handle. Returns
 * 0, 5 NULL handle or handle address, 305 half-built handle.
 */
NKW_PAL_API int32_t nkw_pal_mq_delete(mq_info **handle);
/*
 * Sends `len` bytes under the time-out convention. A full queue with a zero
 * time-out, an expired wait and a message over the queue's size all give -1.
 * Returns 0, 7 bad argument, -1.
 */
NKW_PAL_API int32_t nkw_pal_mq_put(mq_info *handle, const void *msg, uint32_t len,
                                   const uint32_t *timeout_ms);
/*
 * Receives one message into `buf`, which must hold the queue's message size
 * (the size given at creation). *len_out gets its length (0 on failure).
 * Returns 0, 7 bad argument, -1 (empty with a zero time-out, expired wait...).
 */
NKW_PAL_API int32_t nkw_pal_mq_get(mq_info *handle, void *buf, uint32_t *len_out,
                                   const uint32_t *timeout_ms);
/* Returns 0, 7 bad argument, -1 getattr failed. */
NKW_PAL_API int32_t nkw_pal_mq_info(mq_info *handle, mq_usage *info);

/* ---- Sockets and name resolution -----------------------------------------
 * One address form for IPv4 and IPv6: an address type, a 16-byte address in
 * network byte order (IPv4 in the first 4 bytes) and a port in host order.
 * Tag SOCKET.
 */
enum {
    IP_TYPE_IPV4 = 0,  /* AF_INET */
    IP_TYPE_IPV6 = 1,  /* AF_INET6 */
    IP_TYPE_UNSPEC = 2 /* AF_UNSPEC */
};

typedef struct ip_addr {
    uint8_t addr[16];
} ip_addr;

typedef struct addrinfo_entry {
    uint8_t address[16]; /* IPv4 in the first 4 bytes; the rest left as it was */
    uint16_t port;       /* host order; 0 when no port was asked for */
    uint8_t family;      /* 2 (AF_INET) or 10 (AF_INET6) */
} addrinfo_entry;

/* Entries nkw_pal_getaddrinfo fills at most. */
#define NKW_PAL_ADDRINFO_MAX 5

/*
 * Socket type 0 is TCP, 1 UDP. Returns the descriptor, -1 on failure (always
 * for IP_TYPE_UNSPEC), or 7 for a bad address or socket type: 7 is also a
 * valid descriptor number, so tell the argument error by the arguments.
 */
NKW_PAL_API int32_t nkw_pal_socket_create(uint32_t ip_type, int32_t sock_type);
/* Text to address. Returns 0, 7 bad type or NULL argument, -1 not converted. */
NKW_PAL_API int32_t nkw_pal_inet_pton(uint32_t ip_type, const char *text, ip_addr *out);
/* Address to text in `buf` of `size` bytes. Returns buf, or NULL. */
NKW_PAL_API const char *nkw_pal_inet_ntop(uint32_t ip_type, const ip_addr *addr, char *buf,
                                          int32_t size);
/*
 * Resolves `host` (port NULL: ports come back 0) into up to 5 entries, in the
 * resolver's order; addresses of other families are skipped. The count is
 * not returned: clear `entries` first and read until a family byte is
 * neither 2 nor 10. Returns 0, 8 NULL host/entries, 1502 resolution failed or
 * empty, 1503 no IPv4/IPv6 result.
 */
NKW_PAL_API int32_t nkw_pal_getaddrinfo(const char *host, const uint16_t *port,
                                        addrinfo_entry entries[NKW_PAL_ADDRINFO_MAX],
                                        uint32_t ip_type);
/* Returns 0, 7 negative fd, 8 NULL address, -1 unknown type or connect failed. */
NKW_PAL_API int32_t nkw_pal_socket_connect(int32_t fd, const ip_addr *addr, uint16_t port,
                                           int32_t ip_type);
/*
 * Binds an IPv4 socket address built from the first 4 bytes of `addr`, whatever
 * the address is. Returns 0, 8 NULL address, -1 bind failed.
 */
NKW_PAL_API int32_t nkw_pal_socket_bind(int32_t fd, const ip_addr *addr, uint16_t port);
/* Returns the bytes sent, 8 NULL address/data, -1 unknown type or send failed. */
NKW_PAL_API int32_t nkw_pal_socket_sendto(int32_t fd, const void *data, uint32_t len,
                                          const ip_addr *addr, uint16_t port, int32_t ip_type);
/*
 * Receives one datagram from any sender (`addr`/`port` do not filter, and the
 * sender is not reported). Returns the bytes received, 8 NULL address/buffer,
 * -1 unknown type or receive failed.
 */
NKW_PAL_API int32_t nkw_pal_socket_recvfrom(int32_t fd, void *buf, uint32_t len,
                                            const ip_addr *addr, uint16_t port, int32_t ip_type);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_OS_H */
