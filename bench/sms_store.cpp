// Reading and decoding one stored message from the simulated modem's store,
// in messages per second, next to the bare modem read plus decode it wraps.
// Log level 1: success lines (and the per-byte dump) are filtered.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_sms.h"
#include "nkw_pal.h"

namespace {

// 7-bit, alphanumeric sender, UCS2, and a SUBMIT.
const char *const kStored[] = {
    "07911326040000F0040B911316325476F80000421112214365800BC8329BFD06DDDF723619",
    "07911326040000F0040ED04F78591EA6BFE50000421112214365800BD437BC558783C86F7719",
    "07911326040000F0040791442143F500084211122143658008004800690020041F",
    "0011000B912120550521F30000AA0CD37219947FD741613AA806",
};
constexpr uint16_t kCount = sizeof kStored / sizeof kStored[0];

std::vector<uint8_t> from_hex(const std::string &hex) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        out.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return out;
}

void fill_store() {
    nkw_pal_log_set_level(NKW_PAL_LOG_ERROR);
    mipc_sim::reset();
    for (uint16_t i = 0; i < kCount; ++i) mipc_sim::store_sms(i, from_hex(kStored[i]));
}

void Read_RawDecode(benchmark::State &state) {
    fill_store();
    mipc_sms_read_struct record;
    sms_decoded_msg msg;
    uint16_t index = 0;
    for (auto _ : state) {
        record.sms_pdu_count = 1;
        mipc_sms_read_sync(MIPC_PS_ALL, &record, 5, index, 0);
        benchmark::DoNotOptimize(DecodeGsmPdu(record.pdu, &msg));
        index = static_cast<uint16_t>((index + 1) % kCount);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Read_RawDecode);

void Read_StoredMessage(benchmark::State &state) {
    fill_store();
    char text[161];
    uint32_t len = 0;
    uint32_t index = 0;
    int64_t failures = 0;
    for (auto _ : state) {
        failures += nkw_pal_sms_get_message_request(0, index, text, &len) != 0;
        index = (index + 1) % kCount;
    }
    if (failures != 0) state.SkipWithError("a stored message failed to read");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Read_StoredMessage);

}  // namespace

BENCHMARK_MAIN();
