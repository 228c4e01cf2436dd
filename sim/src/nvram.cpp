// NVRAM model: items by LID. A read answers with the item's full length and
// as many bytes as the request's size leaves room for; writes replace an
// item's bytes. Asynchronous completions run on the dispatcher thread.
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>

#include "core.h"
#include "mipc_sim_nvram.h"

using namespace mipc_sim;

namespace {

constexpr uint16_t kItemRecord = 1;

// A fresh module carries its PCI subsystem ids (device id, then vendor id,
// little-endian) from the factory.
constexpr uint32_t kSubsystemIdsLid = 0xE111;
constexpr uint8_t kSubsystemIds[] = {0x01, 0x77, 0x4b, 0x1d};  // ssdid 0x7701, ssvid 0x1d4b

struct State {
    std::map<uint32_t, std::vector<uint8_t>> items = {
        {kSubsystemIdsLid, {std::begin(kSubsystemIds), std::end(kSubsystemIds)}}};
    std::vector<NvramRequest> requests;
};

State &state() {
    static State instance;
    return instance;
}

const core::ResetHook kReset([] {
    std::lock_guard<std::mutex> guard(core::state_lock());
    state() = State{};
});

// Journals the request and takes its fault. True when the call must return
// `*early` at once.
bool receive(const char *function, mipc_sim_ps_id_enum ps_id, uint32_t lid, uint16_t record_idx,
             uint16_t size, Fault *fault, bool *faulted) {
    core::record({function, ps_id, 0, "", lid, {}});
    {
        std::lock_guard<std::mutex> guard(core::state_lock());
        state().requests.push_back({function, ps_id, lid, record_idx, size});
    }
    *faulted = core::take_fault(function, fault);
    return *faulted && fault->kind == Fault::Kind::kReturn;
}

// Result code of a read, filling `data` (room for `size` bytes) and `*length`.
uint32_t read_item(uint32_t lid, uint16_t record_idx, uint16_t size, uint8_t *data,
                   uint16_t *length) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    auto found = state().items.find(lid);
    if (record_idx != kItemRecord || found == state().items.end()) return kNvramNoItem;
    const std::vector<uint8_t> &bytes = found->second;
    size_t copied = bytes.size() < size ? bytes.size() : size;
    if (copied != 0) std::memcpy(data, bytes.data(), copied);
    *length = static_cast<uint16_t>(bytes.size());
    return 0;
}

uint32_t write_item(uint32_t lid, uint16_t record_idx, uint16_t size, const uint8_t *data) {
    if (record_idx != kItemRecord || data == nullptr) return kNvramNoItem;
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().items[lid].assign(data, data + size);
    return 0;
}

}  // namespace

extern "C" {

mipc_result_enum mipc_sys_nvram_read_sync(mipc_sim_ps_id_enum sim_ps_id,
                                          mipc_sys_nvram_read_struct *result_ptr, uint32_t lid,
                                          uint16_t record_idx, uint16_t size) {
    Fault fault{};
    bool faulted = false;
    if (receive("mipc_sys_nvram_read_sync", sim_ps_id, lid, record_idx, size, &fault, &faulted))
        return static_cast<mipc_result_enum>(fault.value);
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_TIMEOUT;
    result_ptr->data_len = 0;
    result_ptr->result_code =
        read_item(lid, record_idx, size, result_ptr->data, &result_ptr->data_len);
    if (faulted) result_ptr->result_code = fault.value;
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sys_nvram_write_sync(mipc_sim_ps_id_enum sim_ps_id,
                                           mipc_sys_nvram_write_struct *result_ptr, uint32_t lid,
                                           uint16_t record_idx, uint16_t size,
                                           const uint8_t *data_ptr) {
    Fault fault{};
    bool faulted = false;
    if (receive("mipc_sys_nvram_write_sync", sim_ps_id, lid, record_idx, size, &fault, &faulted))
        return static_cast<mipc_result_enum>(fault.value);
    if (result_ptr == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_TIMEOUT;
    // A refused write leaves the item as it was.
    result_ptr->result_code = faulted ? fault.value : write_item(lid, record_idx, size, data_ptr);
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sys_nvram_read_async(mipc_sim_ps_id_enum sim_ps_id, mipc_sys_nvram_read_cb cb,
                                           void *cb_priv_ptr, uint32_t lid, uint16_t record_idx,
                                           uint16_t size) {
    Fault fault{};
    bool faulted = false;
    if (receive("mipc_sys_nvram_read_async", sim_ps_id, lid, record_idx, size, &fault, &faulted))
        return static_cast<mipc_result_enum>(fault.value);
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_SUCCESS;
    post([=] {
        // The record lives only while the completion runs, as the real one.
        std::vector<uint8_t> storage(sizeof(mipc_sys_nvram_read_struct) + size);
        auto *record = reinterpret_cast<mipc_sys_nvram_read_struct *>(storage.data());
        record->result_code = read_item(lid, record_idx, size, record->data, &record->data_len);
        if (faulted) record->result_code = fault.value;
        cb(sim_ps_id, record, cb_priv_ptr);
    });
    return MIPC_RESULT_SUCCESS;
}

mipc_result_enum mipc_sys_nvram_write_async(mipc_sim_ps_id_enum sim_ps_id,
                                            mipc_sys_nvram_write_cb cb, void *cb_priv_ptr,
                                            uint32_t lid, uint16_t record_idx, uint16_t size,
                                            const uint8_t *data_ptr) {
    Fault fault{};
    bool faulted = false;
    if (receive("mipc_sys_nvram_write_async", sim_ps_id, lid, record_idx, size, &fault, &faulted))
        return static_cast<mipc_result_enum>(fault.value);
    if (cb == nullptr) return MIPC_RESULT_BAD_PARAM;
    if (faulted && fault.kind == Fault::Kind::kNoConfirmation) return MIPC_RESULT_SUCCESS;
    // The request is sent now: the caller's bytes are taken before returning.
    std::vector<uint8_t> bytes;
    if (data_ptr != nullptr) bytes.assign(data_ptr, data_ptr + size);
    post([=] {
        mipc_sys_nvram_write_struct record{};
        record.result_code = faulted ? fault.value
                                     : write_item(lid, record_idx, size,
                                                  data_ptr != nullptr ? bytes.data() : nullptr);
        cb(sim_ps_id, &record, cb_priv_ptr);
    });
    return MIPC_RESULT_SUCCESS;
}

}  // extern "C"

namespace mipc_sim {

void set_nvram_item(uint32_t lid, const std::vector<uint8_t> &bytes) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    state().items[lid] = bytes;
}

std::optional<std::vector<uint8_t>> nvram_item(uint32_t lid) {
    std::lock_guard<std::mutex> guard(core::state_lock());
    auto found = state().items.find(lid);
    if (found == state().items.end()) return std::nullopt;
    return found->second;
}

std::vector<NvramRequest> nvram_requests() {
    std::lock_guard<std::mutex> guard(core::state_lock());
    return state().requests;
}

}  // namespace mipc_sim
