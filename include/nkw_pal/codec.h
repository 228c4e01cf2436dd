/*
 * nkw_pal codec utilities: text and number conversions, Base64, BCD, GSM 7-bit, checksums.
 *
 * Pure conversions on caller-supplied buffers: no state, no allocation, safe
 * to call from any thread. Failures are logged at error level (tags
 * CODETRANS and UTILS) and answered with -1 unless a function says otherwise.
 *
 * Buffer sizes. Every output buffer is described by a pointer and a size
 * argument. Several functions keep arithmetic that existing callers rely on
 * and that lets an output run one or two bytes past `size` (a terminator, a
 * last character); each function states its "Capacity": the number of bytes
 * the buffer must really hold, as a function of its arguments. The functions
 * never read or write outside that capacity, nor outside the input lengths
 * given. The one byte whose position cannot be bounded so (the Base64
 * decoder's trailing zero) is written only when it falls inside `size`.
 */
#ifndef NKW_PAL_CODEC_H
#define NKW_PAL_CODEC_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* Buffer sizes callers provide. */
enum {
    /* nkw_pal_itoa: 32 binary digits and the terminator ("-2147483648" needs 12). */
    NKW_PAL_ITOA_BUF_SIZE = 33,
    /* Largest input nkw_pal_base64_encode accepts (its text length must fit 32 bits). */
    NKW_PAL_BASE64_ENCODE_MAX = 0x3FFFFFFF,
    /* Largest text nkw_pal_base64_decode accepts (its byte count must fit 32 bits). */
    NKW_PAL_BASE64_DECODE_MAX = 0x55555554
};

/* ---- Text and number conversions ------------------------------------------
 * Tag CODETRANS for atoi, itoa, hex2str and str2hex; UTILS for the rest.
 */

/*
 * Skips leading spaces (only ' '), takes one optional sign and decimal digits
 * up to the first non-digit. No overflow check: the value wraps to 32 bits.
 * Logs "there are no numbers in the string" whenever the digits give 0
 * (a text "0" included) and still returns 0. A NULL text returns -1.
 */
NKW_PAL_API int32_t nkw_pal_atoi(const char *text);

/*
 * Writes `value` in `radix` (2..36, digits "0-9A-Z") as a terminated text
 * and returns `buf`. Only radix 10 writes a '-' sign; other radices write a
 * negative value as its unsigned 32-bit pattern (-1 in 16 is "FFFFFFFF").
 * Capacity: NKW_PAL_ITOA_BUF_SIZE (33) bytes always suffice; there is no
 * size argument. Returns NULL (logged) for radix 0, a radix outside 2..36,
 * or a NULL `buf`.
 */
NKW_PAL_API char *nkw_pal_itoa(int32_t value, char *buf, int32_t radix);

/*
 * Hex text to bytes. `len` must be even and non-zero; `size` must be at
 * least len/2 + 1. Each pair of digits is ADDED to the byte already in
 * `out` (modulo 256), so pass a zero-filled `out`. Characters that are not
 * hex digits count as 0. A zero byte follows the len/2 bytes.
 * Capacity: `size`. Returns len/2, or -1.
 */
NKW_PAL_API int32_t nkw_pal_hex2str(const char *hex, uint32_t len, char *out, uint32_t size);

/*
 * Bytes to lower-case hex text, high nibble first, terminated. `count` must
 * be non-zero; `size` at least 2*count + 1. Capacity: `size`.
 * Returns 2*count, or -1.
 */
NKW_PAL_API int32_t nkw_pal_str2hex(const char *bytes, uint32_t count, char *out, uint32_t size);

/*
 * Bytes to hex text, upper case when `upper` is non-zero, high nibble
 * first, NOT terminated. `size` at least 2*count. Capacity: `size`.
 * Returns 0, or -1.
 */
NKW_PAL_API int32_t nkw_pal_bin2hex1(const uint8_t *bytes, uint32_t count, char *out, uint32_t size,
                                     uint8_t upper);

/* nkw_pal_bin2hex1 with upper-case digits. */
NKW_PAL_API int32_t nkw_pal_bin2hex(const uint8_t *bytes, uint32_t count, char *out, uint32_t size);

/*
 * Hex text to bytes. `len` must be even (0 is allowed) and `size` at least
 * len/2. All `size` bytes of `out` are zeroed first; a non-hex character
 * stops the conversion with -1 (no log line), leaving the bytes converted
 * so far. Capacity: `size`. Returns 0, or -1.
 */
NKW_PAL_API int32_t nkw_pal_hex2bin(const char *hex, uint32_t len, uint8_t *out, uint32_t size);

/* Pointer to the first character of `text` that is not `ch`; NULL for NULL. */
NKW_PAL_API char *nkw_pal_str_trim_left(char *text, char ch);

/*
 * Replaces trailing `ch` characters with zeros in place, never the first
 * character of the text (so "xxx" trimmed of 'x' leaves "x"). An empty text
 * is left alone. Returns `text` (NULL for NULL).
 */
NKW_PAL_API char *nkw_pal_str_trim_right(char *text, char ch);

/* Trims right, then left; returns the pointer from the left trim. */
NKW_PAL_API char *nkw_pal_str_trim(char *text, char ch);

/*
 * Whole-text decimal conversion (strtol / strtoul): a leading blank is
 * accepted, anything left over (a trailing blank included) is an error.
 * The value is stored truncated to 32 bits, without a range check; an
 * empty text stores 0. Returns 0, or -1 (NULL text or result, bad text).
 */
NKW_PAL_API int32_t nkw_pal_strtoint32(const char *text, int32_t *result);
NKW_PAL_API int32_t nkw_pal_strtouint32(const char *text, uint32_t *result);

/*
 * nkw_pal_strtoint32 into a local that starts at 0, then a range test
 * (min and max included). In range: stores the value and returns the
 * conversion's status, so an invalid text stores 0 and returns -1 when 0 is
 * in range. Out of range: logs, returns -1, leaves *result alone. A NULL
 * `result` returns -1.
 */
NKW_PAL_API int32_t nkw_pal_strtoint32_range(const char *text, int32_t min, int32_t max,
                                             int32_t *result);

/*
 * Equality helpers (no logging); 1 equal, 0 not. Different lengths are not
 * equal; a negative length is never equal; a NULL buffer equals anything
 * only over length 0.
 */
NKW_PAL_API int32_t nkw_pal_mem_equal(const void *a, int32_t len_a, const void *b, int32_t len_b);
/* strncmp over the common length, or strncasecmp when `case_sensitive` is 0. */
NKW_PAL_API int32_t nkw_pal_nstr_equal(const char *a, int32_t len_a, const char *b, int32_t len_b,
                                       uint8_t case_sensitive);
/* strcmp, or strcasecmp when `case_sensitive` is 0. NULL equals only NULL. */
NKW_PAL_API int32_t nkw_pal_str_equal(const char *a, const char *b, uint8_t case_sensitive);

/*
 * The C library's pow on the two values, truncated toward zero
 * (2^-1 gives 0). Results beyond the 64-bit range saturate; NaN gives 0.
 */
NKW_PAL_API int64_t nkw_pal_pow(int32_t base, int32_t exponent);

/* ---- Base64 (RFC 4648 alphabet, '=' padding) -------------------------------
 * Tag CODETRANS.
 */

/*
 * Encodes `n` bytes (1..NKW_PAL_BASE64_ENCODE_MAX) into L = 4*ceil(n/3)
 * characters followed by a zero. L equal to `size` is accepted, with the
 * zero at index `size`: Capacity: size + 1 bytes (L + 1 is what is used).
 * Returns L, or -1 (bad arguments, L > size).
 */
NKW_PAL_API int32_t nkw_pal_base64_encode(char *out, uint32_t size, const uint8_t *in, uint32_t n);

/*
 * Decodes a text whose length `n` is a non-zero multiple of 4 (at most
 * NKW_PAL_BASE64_DECODE_MAX). Spaces are allowed at the end of a line or of
 * the text, lines end in "\r\n" or "\n"; at most two '=' and only at the
 * end. The expected length E = n*3/4, less one per '=' among the last two
 * characters, must not exceed `size`.
 * Returns E (even when line breaks made fewer bytes: E counts the whole
 * text), 0 for a text of nothing but blanks and line breaks (nothing
 * written), or -1 (bad arguments, E > size, invalid text: nothing written).
 * After the decoded bytes a zero byte is written E positions further on
 * (at index bytes + E), only when that index is below `size`.
 * Capacity: `size`.
 */
NKW_PAL_API int32_t nkw_pal_base64_decode(uint8_t *out, uint32_t size, const char *in, uint32_t n);

/* ---- BCD -------------------------------------------------------------------
 * Telephony BCD: nibbles 0-9 are digits, 10 '*', 11 '#', 12 'p', 13 'w',
 * 14 '+', 15 the filler that ends a number. Low nibble first. Tag UTILS.
 */

/*
 * BCD bytes to a terminated text. The size test is made once per byte,
 * before both of its characters: the last byte's second character can land
 * at index `size` and the terminator at `size` + 1.
 * Capacity: size + 2 bytes. A filler in a high nibble ends the number; one
 * in a low nibble is an error. Stores the text length in *len_out.
 * Returns 0, or -1 (count 0, NULL pointer, filler in a low nibble).
 */
NKW_PAL_API int32_t nkw_pal_bcd_to_ascii(const uint8_t *bcd, uint32_t count, char *text,
                                         uint32_t size, uint32_t *len_out);

/*
 * Text of digits, '*', '#', 'p'/'P', 'w'/'W', '+' to BCD; an odd length
 * leaves a filler in the last high nibble. Stops when `size` bytes are
 * complete. *count_out is (len + 1) / 2 even when the output was cut short.
 * Capacity: `size`. Returns 0, or -1 (len 0, NULL pointer, invalid
 * character: bytes already written stay).
 */
NKW_PAL_API int32_t nkw_pal_ascii_to_bcd(const char *text, uint32_t len, uint8_t *bcd,
                                         uint32_t size, uint32_t *count_out);

/*
 * Writes two upper-case hex digits per byte, low nibble first, no
 * terminator. Capacity: 2 * count. NULL `raw` or `text` writes nothing.
 */
NKW_PAL_API void nkw_pal_decode_rawbcd_to_ascii(const uint8_t *raw, char *text, uint8_t count);

/*
 * Packs a hex text two characters a byte, first character in the low
 * nibble. Only strlen(text) % 256 characters are used. Fills `size` bytes
 * with 0xFF first, but the pair loop runs while byte index <= size, so byte
 * `size` can be written too: Capacity: size + 1 bytes. An odd length takes
 * the terminator as the last high nibble (0, not F). Characters other than
 * hex digits are used as their own value. An empty text sets out[0] to 0.
 * Returns the last byte written (0 for NULL arguments, nothing written).
 */
NKW_PAL_API uint8_t nkw_pal_encode_ascii_to_rawbcd(const char *text, uint8_t *out, uint8_t size);

/* ---- GSM 7-bit packing ----------------------------------------------------
 * Septets are taken as given (no character translation). No logging; both
 * always return 0. NULL pointers: nothing written, *count_out set to 0 when
 * it is not NULL.
 */

/*
 * Packs `n` septets into bytes while fewer than `size` bytes are counted.
 * When n + 1 is a multiple of 8, a carriage return (0x1A) is ORed into the
 * seven spare bits of the last byte. The loop's bound lets the carry byte
 * (and that 0x1A) land at index `size`, and *count_out reach size + 1.
 * Capacity: size + 1 bytes.
 */
NKW_PAL_API int32_t nkw_pal_7bit_encode(const uint8_t *chars, uint32_t n, uint8_t *out,
                                        uint32_t size, uint32_t *count_out);

/*
 * Unpacks `n` bytes into septets while fewer than `size` are counted; every
 * seventh byte yields an eighth septet at once, which can land at index
 * `size` (*count_out then size + 1). No terminator.
 * Capacity: size + 1 bytes.
 */
NKW_PAL_API int32_t nkw_pal_7bit_decode(const uint8_t *packed, uint32_t n, uint8_t *out,
                                        uint32_t size, uint32_t *count_out);

/* ---- Checksums ------------------------------------------------------------ */

/* XOR of the first `n` bytes; 0 for n <= 0 or NULL. */
NKW_PAL_API uint32_t nkw_pal_bcc(const uint8_t *buf, int32_t n);

/*
 * CRC-16/XMODEM (polynomial 0x1021, initial 0, MSB first, no reflection,
 * no final XOR) of the first `n` bytes; 0 for n <= 0 or NULL.
 * "123456789" gives 0x31C3.
 */
NKW_PAL_API uint32_t nkw_pal_crc16(const uint8_t *buf, int32_t n);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_CODEC_H */
