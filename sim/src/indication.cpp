// Event messages the modem pushes to the library.
#include <algorithm>

#include "core.h"
#include "mipc_sim_indication.h"

namespace mipc_sim {

namespace {

constexpr size_t kPinRecordSize = 18;

// The message's value TLVs, without those the caller leaves out.
std::vector<Tlv> values(unsigned omit, std::vector<Tlv> tlvs) {
    tlvs.erase(std::remove_if(tlvs.begin(), tlvs.end(),
                              [omit](const Tlv &tlv) {
                                  return (tlv.type == kEventValue1 && (omit & kOmitValue1)) ||
                                         (tlv.type == kEventValue2 && (omit & kOmitValue2));
                              }),
               tlvs.end());
    return tlvs;
}

}  // namespace

bool push_hotplug(uint8_t cause, unsigned omit) {
    return deliver_indication(MIPC_PS0, kHotplugInd, values(omit, {tlv_u8(kEventValue2, cause)}));
}

int push_mbim_open(uint32_t status, unsigned omit) {
    return deliver_command(kMbimOpenInd, values(omit, {tlv_u32(kEventValue1, status)}));
}

int push_mbim_slot_mapping(uint32_t option, uint32_t sim_id, unsigned omit) {
    return deliver_command(kMbimSlotMappingInd, values(omit, {tlv_u32(kEventValue1, option),
                                                              tlv_u32(kEventValue2, sim_id)}));
}

int push_mbim_pin_status(uint8_t status, const std::string &pin, unsigned omit) {
    std::vector<uint8_t> record(kPinRecordSize, 0);
    record[0] = status;
    std::copy_n(pin.begin(), std::min(pin.size(), kPinRecordSize - 1), record.begin() + 1);
    return deliver_command(kMbimPinStatusInd,
                           values(omit, {tlv_bytes(kEventValue1, record.data(), record.size())}));
}

int push_mbim_connect_status(uint32_t status, const std::string &apn, unsigned omit) {
    return deliver_command(kMbimConnectStatusInd, values(omit, {tlv_u32(kEventValue1, status),
                                                                tlv_text(kEventValue2, apn)}));
}

int push_mbim_lpa_apdu(uint32_t value, unsigned omit) {
    return deliver_command(kMbimLpaApduInd, values(omit, {tlv_u32(kEventValue1, value)}));
}

}  // namespace mipc_sim
