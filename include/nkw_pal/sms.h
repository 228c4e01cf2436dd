/* nkw_pal SMS: the decoded message record and the GSM/CDMA PDU decoders. */
#ifndef NKW_PAL_SMS_H
#define NKW_PAL_SMS_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

/* Values of the record's `type`. */
enum { NKW_PAL_SMS_TYPE_DELIVER = 0, NKW_PAL_SMS_TYPE_SUBMIT = 1 };

/* Bits OR-ed into the record's `flags`. */
enum {
    NKW_PAL_SMS_GSM_FLAG_DELIVER = 3,     /* a GSM DELIVER was decoded */
    NKW_PAL_SMS_GSM_FLAG_SUBMIT = 4,      /* a GSM SUBMIT was decoded */
    NKW_PAL_SMS_CDMA_FLAG_ORIGINATOR = 1, /* CDMA: the originating address was decoded */
    NKW_PAL_SMS_CDMA_FLAG_DESTINATION = 4 /* CDMA: the destination address was decoded */
};

/* Field sizes of the decoded record. */
enum {
    NKW_PAL_SMS_ADDRESS_SIZE = 18,   /* no terminator when all 18 bytes are used */
    NKW_PAL_SMS_TIMESTAMP_SIZE = 21, /* never filled: always empty */
    NKW_PAL_SMS_DATA_SIZE = 161,
    NKW_PAL_SMS_DECODED_SIZE = 212,
    /* Bytes the GSM decoder may read from its input, whatever the PDU says. */
    NKW_PAL_SMS_GSM_PDU_BUFFER_SIZE = 256
};

/*
 * A DELIVER as the decoders lay it out. `data` holds 8-bit text (the GSM 7-bit
 * alphabet converted to ISO 8859-1), or the raw octets of 8-bit and UCS2 user
 * data; it is NUL-terminated only when shorter than 161 bytes.
 */
typedef struct sms_deliver_msg {
    uint32_t type;
    uint32_t flags;
    char address[18];
    char timestamp[21];
    char data[161];
    uint32_t dataLen;
} sms_deliver_msg;

/*
 * A SUBMIT: `data` starts where a DELIVER's timestamp starts, and its length
 * lies 20 bytes before a DELIVER's `dataLen`. The tail stays zero.
 */
typedef struct sms_submit_msg {
    uint32_t type;
    uint32_t flags;
    char address[18];
    char data[161];
    uint32_t dataLen;
    uint8_t reserved[20];
} sms_submit_msg;

/*
 * The 212-byte decoded record. `type`, `flags` and `address` read the same
 * through either member; read `data`/`dataLen` through the member that
 * `type` names, with one exception: a GSM 7-bit message with a user-data
 * header (a concatenated part) has its text at the DELIVER `data` position
 * for both types, while its count is in the length field of its own type
 * (for a SUBMIT part of over 141 characters the text runs over that field).
 */
typedef union sms_decoded_msg {
    sms_deliver_msg deliver;
    sms_submit_msg submit;
} sms_decoded_msg;

#ifdef __cplusplus
static_assert(sizeof(sms_decoded_msg) == 212, "decoded SMS record is 212 bytes");
static_assert(offsetof(sms_deliver_msg, flags) == 4, "flags at 4");
static_assert(offsetof(sms_deliver_msg, address) == 8, "address at 8");
static_assert(offsetof(sms_deliver_msg, timestamp) == 26, "DELIVER timestamp at 26");
static_assert(offsetof(sms_deliver_msg, data) == 47, "DELIVER data at 47");
static_assert(offsetof(sms_deliver_msg, dataLen) == 208, "DELIVER dataLen at 208");
static_assert(offsetof(sms_submit_msg, address) == 8, "address at 8");
static_assert(offsetof(sms_submit_msg, data) == 26, "SUBMIT data at 26");
static_assert(offsetof(sms_submit_msg, dataLen) == 188, "SUBMIT dataLen at 188");
static_assert(sizeof(sms_submit_msg) == 212, "SUBMIT layout fills the record");
#else
_Static_assert(sizeof(sms_decoded_msg) == 212, "decoded SMS record is 212 bytes");
_Static_assert(offsetof(sms_deliver_msg, flags) == 4, "flags at 4");
_Static_assert(offsetof(sms_deliver_msg, address) == 8, "address at 8");
_Static_assert(offsetof(sms_deliver_msg, timestamp) == 26, "DELIVER timestamp at 26");
_Static_assert(offsetof(sms_deliver_msg, data) == 47, "DELIVER data at 47");
_Static_assert(offsetof(sms_deliver_msg, dataLen) == 208, "DELIVER dataLen at 208");
_Static_assert(offsetof(sms_submit_msg, address) == 8, "address at 8");
_Static_assert(offsetof(sms_submit_msg, data) == 26, "SUBMIT data at 26");
_Static_assert(offsetof(sms_submit_msg, dataLen) == 188, "SUBMIT dataLen at 188");
_Static_assert(sizeof(sms_submit_msg) == 212, "SUBMIT layout fills the record");
#endif

/*
 * Decodes one stored GSM message: octet 0 is the SMSC address length L,
 * octets 1..L the SMSC address, octet L+1 the first octet of the TPDU
 * (DELIVER or SUBMIT). `msg` is zeroed first and filled with type, flags,
 * address and user data.
 *
 * Input size: positions inside the PDU are 8-bit and wrap, so the decoder
 * reads only octets 0..255 of `pdu`, but it may read any of them when the
 * PDU's own lengths point there. Pass a buffer of
 * NKW_PAL_SMS_GSM_PDU_BUFFER_SIZE (256) readable bytes, zero-filled behind
 * the PDU.
 *
 * Concatenated parts (a user-data header) are tracked in process-wide state
 * that is not locked: decode one message at a time. `msg` always receives
 * the current part's text alone.
 *
 * Returns 0 decoded; -1 when the message cannot be decoded (status report or
 * command, unsupported coding, empty or oversized user data, NULL argument);
 * `msg` may then hold type and address.
 */
NKW_PAL_API int32_t DecodeGsmPdu(const uint8_t *pdu, sms_decoded_msg *msg);

/* WAP push messages are not decoded: always returns -1. */
NKW_PAL_API int32_t DecodeGsmPdu_WAP(const uint8_t *pdu, sms_decoded_msg *msg);

/*
 * Decodes one CDMA transport-layer message of `length` bytes (the message
 * type octet followed by its parameters). Only those `length` bytes are
 * read. On success `msg` is zeroed and filled: a deliver gets type 0, the
 * originating address and the DELIVER data; a submit type 1, the destination
 * address and the SUBMIT data. 7-bit ASCII text is unpacked to one character
 * a byte, Unicode and octet data are copied as octets.
 *
 * Returns 0 decoded; -1 when the message has no bearer data, no message
 * identifier or no usable user data, is of another message type, when its
 * parameter lengths run past `length`, or for a NULL argument. `msg` is left
 * untouched unless bearer data and a message identifier were found.
 */
NKW_PAL_API int32_t DecodeCdmaPdu(const uint8_t *pdu, uint8_t length, sms_decoded_msg *msg);

/* ---- SMS store ------------------------------------------------------------ */

/* Values of sms_store_event.event. */
enum { NKW_PAL_SMS_EVENT_NEW_MESSAGE = 1, NKW_PAL_SMS_EVENT_STORAGE_FULL = 2 };

/* What the store callback receives; store_flag is 2 for both events. */
typedef struct sms_store_event {
    uint32_t event;         /* NKW_PAL_SMS_EVENT_* */
    uint32_t store_flag;    /* always 2 */
    uint32_t message_index; /* storage index the modem reported */
} sms_store_event;

/* Runs on the modem IPC library's thread. */
typedef void (*nkw_pal_sms_store_cb)(sms_store_event event, void *user);

/*
 * Subscribes `callback` (with `user`) to new-message and storage-full events
 * of the modem's SMS store. Each call adds a subscription for the rest of the
 * process. Returns 0; -1 the modem refused; 3 no memory.
 */
NKW_PAL_API int32_t nkw_pal_sms_store_state_indication_register(nkw_pal_sms_store_cb callback,
                                                                void *user);

/*
 * Reads stored message `message_index` (16-bit on the modem side) and copies
 * its decoded text, unterminated, into `sms_buf`, which must hold at least
 * 161 bytes; *sms_len receives the number of bytes copied. The text is taken
 * from the DELIVER position of the decoded record, so a SUBMIT the module
 * stored reads as empty unless it is a 7-bit concatenated part.
 * Returns 0; 7 sms_buf NULL (the modem is not asked); -1 empty index, modem
 * failure or a message the decoder refuses (*sms_len untouched). `sim_id`
 * is ignored.
 */
NKW_PAL_API int32_t nkw_pal_sms_get_message_request(uint32_t sim_id, uint32_t message_index,
                                                    char *sms_buf, uint32_t *sms_len);

/*
 * Deletes stored message `message_index`. Returns 0 even when the modem
 * refuses (its answer is only logged); -1 when no memory. `sim_id` is ignored.
 */
NKW_PAL_API int32_t nkw_pal_sms_delete_by_index(uint32_t sim_id, uint32_t message_index);

/*
 * Deletes every stored message. Returns 0 once the request was sent, even
 * without a confirmation; -1 when the request could not be made.
 */
NKW_PAL_API int32_t nkw_pal_sms_delete_all(void);

NKW_PAL_END_DECLS

#endif /* NKW_PAL_SMS_H */
