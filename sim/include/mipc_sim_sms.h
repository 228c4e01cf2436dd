// SMS store model of the simulated modem: stored PDUs by index with their
// status and class, read and deleted through the typed calls, emptied by
// the raw delete-all request (message 0x609, TLV 0x100 = 0). Receiving a
// message pushes the store-status indication a real modem sends.
#pragma once

#include <mipc_msg.h>

#include <cstdint>
#include <string>
#include <vector>

namespace mipc_sim {

// Result code of a read or delete of an empty index.
inline constexpr uint32_t kSmsEmptyIndex = 0x1101;
// Storage status of a stored message (3GPP TS 27.005 <stat>).
enum SmsStatus : uint8_t { kSmsUnread = 0, kSmsRead = 1, kSmsUnsent = 2, kSmsSent = 3 };
inline constexpr uint8_t kSmsNoClass = 0xFF;

struct StoredSms {
    std::vector<uint8_t> pdu;  // SMSC length octet, SMSC address, TPDU
    uint8_t status = kSmsUnread;
    uint8_t sms_class = kSmsNoClass;
};

// Places a message at `index` (replacing what was there), pushing nothing.
void store_sms(uint16_t index, const std::vector<uint8_t> &pdu, uint8_t status = kSmsRead,
               uint8_t sms_class = kSmsNoClass);
// A message arrives from the network: stored unread at the lowest free
// index, then the new-message indication goes to every registration, and
// the storage-full one too when that filled the store. A full store takes
// nothing and only says it is full. Returns the index, or -1 when full.
// Waits until the indications were handled.
int receive_sms(const std::vector<uint8_t> &pdu, uint8_t sms_class = kSmsNoClass);
// Number of indexes the store has (default 20); shrinking drops nothing.
void set_sms_capacity(uint16_t capacity);

bool stored_sms(uint16_t index, StoredSms *out);
size_t stored_sms_count();

// Pushes one raw store-status indication (any flag, any result code) to
// every registration, or a null record, and waits until it was handled.
void push_sms_store_status(const mipc_sms_status_struct &status);
void push_sms_store_status_without_record();

// One read, delete or registration as the modem received it.
struct SmsRequest {
    std::string function;  // mipc_sms_read_sync, mipc_sms_delete_sync, ...
    int ps_id;
    uint16_t index;
    uint32_t flag;
    uint32_t format;  // reads only
};
std::vector<SmsRequest> sms_requests();

}  // namespace mipc_sim
