/* nkw_pal: shared conventions of every section. Include <nkw_pal.h>. */
#ifndef NKW_PAL_COMMON_H
#define NKW_PAL_COMMON_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define NKW_PAL_API __attribute__((visibility("default")))
#else
#define NKW_PAL_API
#endif

#ifdef __cplusplus
#define NKW_PAL_BEGIN_DECLS extern "C" {
#define NKW_PAL_END_DECLS }
#else
#define NKW_PAL_BEGIN_DECLS
#define NKW_PAL_END_DECLS
#endif

/*
 * Statuses shared by several sections. Each section adds its own block.
 * These are the library's numbers, not errno values.
 */
enum {
    NKW_PAL_OK = 0,
    NKW_PAL_FAIL = -1,                /* system or modem call failed, or non-zero result code */
    NKW_PAL_NO_MEMORY = 3,            /* allocation failed */
    NKW_PAL_BAD_MESSAGE = 5,          /* modem message not built; bad argument in some OS calls */
    NKW_PAL_INVALID_ARG = 7,          /* invalid argument or null output pointer */
    NKW_PAL_AT_RESULT_ERROR = 1107,   /* modem answered an AT command with an error */
    NKW_PAL_AT_RESPONSE_ERROR = 1109, /* AT response empty or did not fit */
    NKW_PAL_BUFFER_TOO_SMALL = 1602   /* caller's output buffer missing or too small */
};

#endif /* NKW_PAL_COMMON_H */
