// Events the simulated modem pushes to the library: host link plug changes
// and the MBIM-side events. Each control builds the modem's message (value
// TLVs 256 and 257), pushes it to the handler the library registered, on the
// dispatcher thread, and waits for the handler to return.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mipc_sim.h"

namespace mipc_sim {

// Message ids of the events.
constexpr uint16_t kHotplugInd = 0x4505;
constexpr uint16_t kMbimOpenInd = 0x8F57;
constexpr uint16_t kMbimSlotMappingInd = 0x8F59;
constexpr uint16_t kMbimPinStatusInd = 0x8F53;
constexpr uint16_t kMbimConnectStatusInd = 0x8F4D;
constexpr uint16_t kMbimLpaApduInd = 0x8F65;

// Value TLVs of the events.
constexpr uint16_t kEventValue1 = 256;
constexpr uint16_t kEventValue2 = 257;

// Value TLVs to leave out of a message (a bit mask).
enum Omit : unsigned { kOmitNone = 0, kOmitValue1 = 1, kOmitValue2 = 2 };

// The host link event (indication on protocol stack 1): the cause in TLV
// 257, one byte. Returns false when nothing is registered.
bool push_hotplug(uint8_t cause, unsigned omit = kOmitNone);

// MBIM events (commands the library must acknowledge). Each returns the
// handler's result, or -1 when nothing is registered.
int push_mbim_open(uint32_t status, unsigned omit = kOmitNone);
int push_mbim_slot_mapping(uint32_t option, uint32_t sim_id, unsigned omit = kOmitNone);
// TLV 256: the 18-byte PIN record, the status byte then the PIN, zero-padded.
int push_mbim_pin_status(uint8_t status, const std::string &pin, unsigned omit = kOmitNone);
// TLV 256: the status; TLV 257: the APN, NUL-terminated.
int push_mbim_connect_status(uint32_t status, const std::string &apn, unsigned omit = kOmitNone);
int push_mbim_lpa_apdu(uint32_t value, unsigned omit = kOmitNone);

// The library's acknowledgements: replies_to(<event id>) (mipc_sim.h).

}  // namespace mipc_sim
