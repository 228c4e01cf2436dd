// Decoded SMS messages per second over a mix of GSM and CDMA PDUs, with the
// log level at 1 (errors only), so that success paths write nothing.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "nkw_pal.h"

namespace {

// GSM: 7-bit with international, alphanumeric and extension-table text,
// 8-bit, UCS2, two SUBMITs and the three parts of one concatenated message.
const char *const kGsm[] = {
    // deliver_7bit_intl_odd
    "07911326040000F0040B911316325476F80000421112214365800BC8329BFD06DDDF723619",
    // deliver_alpha
    "07911326040000F0040ED04F78591EA6BFE50000421112214365800BD437BC558783C86F7719",
    // deliver_extension
    "07911326040000F0040791442143F5000042111221436580161B547893DAF0C41BDFA6B7796D801B"
    "CAA6BC5100",
    // deliver_8bit_f4
    "07911326040000F0040791442143F500F442111221436580050102FF007F",
    // deliver_ucs2
    "07911326040000F0040791442143F500084211122143658008004800690020041F",
    // submit_7bit
    "0011000B912120550521F30000AA0CD37219947FD741613AA806",
    // submit_ucs2
    "0011000781551532F40008AA04004F006B",
    // concat_1
    "07911326040000F0440791442143F5000042111221436580200500032A0301A061391DF47697416F"
    "33280C62BFDD6710BD8CA7B340",
    // concat_2
    "07911326040000F0440791442143F5000042111221436580220500032A0302E061391D44BFBF41E6"
    "379BFDBECF411B1EBA2C2F6F7C2C10",
    // concat_3
    "07911326040000F0440791442143F5000042111221436580130500032A0303C26E32888E2E83CA6E"
    "B20B",
};

// CDMA: deliver with DTMF and e-mail addresses, 7-bit ASCII, octet and 70
// Unicode fields; a submit.
const char *const kCdma[] = {
    // deliver_dtmf_ascii
    "0000021002020702955448D159C0081A0003112340010B10548CBB366F410E24D820030624112112"
    "3456",
    // deliver_email_address
    "00000210020208D082B0A031173180081300031123400104001008100306241121123456",
    // deliver_unicode_70
    "0000021002020300C48C089D0003112340018E223020F820F820F820F820F820F820F820F820F820"
    "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
    "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
    "F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820F820"
    "F80306241121123456",
    // submit_ascii
    "000002100204098839A9A9A981898180080D00032123400106102D2CBC3679",
};

std::vector<uint8_t> from_hex(const std::string &hex) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        out.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return out;
}

struct Corpus {
    std::vector<std::array<uint8_t, 256>> gsm;
    std::vector<std::vector<uint8_t>> cdma;
};

Corpus load() {
    Corpus corpus;
    for (const char *hex : kGsm) {
        std::array<uint8_t, 256> buffer{};
        std::vector<uint8_t> bytes = from_hex(hex);
        std::copy(bytes.begin(), bytes.end(), buffer.begin());
        corpus.gsm.push_back(buffer);
    }
    for (const char *hex : kCdma) corpus.cdma.push_back(from_hex(hex));
    return corpus;
}

void BM_DecodeMixed(benchmark::State &state) {
    nkw_pal_log_set_level(NKW_PAL_LOG_ERROR);
    const Corpus corpus = load();
    sms_decoded_msg msg;
    int64_t failures = 0;
    for (auto _ : state) {
        for (const auto &pdu : corpus.gsm) failures += DecodeGsmPdu(pdu.data(), &msg) != 0;
        for (const auto &pdu : corpus.cdma)
            failures += DecodeCdmaPdu(pdu.data(), static_cast<uint8_t>(pdu.size()), &msg) != 0;
        benchmark::DoNotOptimize(msg);
    }
    if (failures != 0) state.SkipWithError("a benchmark PDU failed to decode");
    state.SetItemsProcessed(state.iterations() *
                            static_cast<int64_t>(corpus.gsm.size() + corpus.cdma.size()));
}
BENCHMARK(BM_DecodeMixed);

void BM_DecodeGsm(benchmark::State &state) {
    nkw_pal_log_set_level(NKW_PAL_LOG_ERROR);
    const Corpus corpus = load();
    sms_decoded_msg msg;
    for (auto _ : state) {
        for (const auto &pdu : corpus.gsm) benchmark::DoNotOptimize(DecodeGsmPdu(pdu.data(), &msg));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(corpus.gsm.size()));
}
BENCHMARK(BM_DecodeGsm);

void BM_DecodeCdma(benchmark::State &state) {
    nkw_pal_log_set_level(NKW_PAL_LOG_ERROR);
    const Corpus corpus = load();
    sms_decoded_msg msg;
    for (auto _ : state) {
        for (const auto &pdu : corpus.cdma)
            benchmark::DoNotOptimize(
                DecodeCdmaPdu(pdu.data(), static_cast<uint8_t>(pdu.size()), &msg));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(corpus.cdma.size()));
}
BENCHMARK(BM_DecodeCdma);

}  // namespace

BENCHMARK_MAIN();
