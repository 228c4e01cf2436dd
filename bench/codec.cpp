// Codec throughput (MB/s) on one SMS worth of data (160 bytes) and on 64 KiB,
// each optimised routine next to a plain one-step-at-a-time reference of the
// same arithmetic, measured in the same run. The ratio of a pair's
// bytes_per_second is the speed-up. Success paths write no log lines.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "nkw_pal.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

Bytes random_bytes(size_t n, uint8_t mask = 0xFF) {
    std::mt19937 rng(static_cast<uint32_t>(n));
    Bytes bytes(n);
    for (uint8_t &b : bytes) b = static_cast<uint8_t>(rng()) & mask;
    return bytes;
}

// ---- plain references ----

uint16_t crc16_bitwise(const uint8_t *buf, size_t n) {
    uint16_t reg = 0;
    for (size_t i = 0; i < n; ++i) {
        reg ^= static_cast<uint16_t>(buf[i] << 8);
        for (int bit = 0; bit < 8; ++bit) reg = (reg & 0x8000) ? (reg << 1) ^ 0x1021 : reg << 1;
    }
    return reg;
}

uint8_t bcc_bytewise(const uint8_t *buf, size_t n) {
    uint8_t sum = 0;
    for (size_t i = 0; i < n; ++i) sum ^= buf[i];
    return sum;
}

// One character per lookup.
size_t base64_encode_bytewise(const uint8_t *in, size_t n, char *out) {
    size_t at = 0;
    for (size_t i = 0; i < n; i += 3) {
        uint32_t bits = static_cast<uint32_t>(in[i]) << 16;
        if (i + 1 < n) bits |= static_cast<uint32_t>(in[i + 1]) << 8;
        if (i + 2 < n) bits |= in[i + 2];
        out[at++] = kAlphabet[bits >> 18 & 63];
        out[at++] = kAlphabet[bits >> 12 & 63];
        out[at++] = i + 1 < n ? kAlphabet[bits >> 6 & 63] : '=';
        out[at++] = i + 2 < n ? kAlphabet[bits & 63] : '=';
    }
    out[at] = '\0';
    return at;
}

struct DecodeMap {
    uint8_t value[256];
    DecodeMap() {
        for (uint8_t &v : value) v = 127;
        for (int i = 0; i < 64; ++i)
            value[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
        value['='] = 64;
    }
};
const DecodeMap kMap;

// The validation pass and the decoding pass, one character a step.
int32_t base64_decode_bytewise(const char *in, size_t n, uint8_t *out) {
    uint32_t pads = 0, accepted = 0;
    for (size_t i = 0; i < n; ++i) {
        uint32_t blanks = 0;
        for (; i < n && in[i] == ' '; ++i) ++blanks;
        if (i == n) break;
        if ((n - i >= 2 && in[i] == '\r' && in[i + 1] == '\n') || in[i] == '\n') continue;
        uint8_t v = kMap.value[static_cast<uint8_t>(in[i])];
        if (blanks != 0 || v == 127 || (v == 64 && ++pads > 2) || (v < 64 && pads != 0)) return -1;
        ++accepted;
    }
    if (accepted == 0) return 0;
    uint32_t bits = 0, chars = 0, group = 3;
    size_t at = 0;
    for (size_t i = 0; i < n; ++i) {
        char c = in[i];
        if (c == ' ' || c == '\r' || c == '\n') continue;
        uint8_t v = kMap.value[static_cast<uint8_t>(c)];
        if (v == 64) --group;
        bits = bits << 6 | (v & 63);
        if (++chars % 4 != 0) continue;
        if (group > 0) out[at++] = static_cast<uint8_t>(bits >> 16);
        if (group > 1) out[at++] = static_cast<uint8_t>(bits >> 8);
        if (group > 2) out[at++] = static_cast<uint8_t>(bits);
    }
    return static_cast<int32_t>(at);
}

uint32_t septets_encode_bytewise(const uint8_t *chars, uint32_t n, uint8_t *out, uint32_t size) {
    uint32_t count = 0, s = 7;
    uint8_t carry = 0;
    for (uint32_t i = 0; i < n && count < size; ++i) {
        s = i % 8;
        if (s == 0) {
            out[count] = carry = chars[i];
            continue;
        }
        out[count++] = static_cast<uint8_t>(chars[i] << (8 - s) | carry);
        carry = static_cast<uint8_t>(chars[i] >> s);
        if (s < 7) out[count] = carry;
    }
    return s < 7 ? count + 1 : count;
}

uint32_t septets_decode_bytewise(const uint8_t *packed, uint32_t n, uint8_t *out, uint32_t size) {
    uint32_t count = 0, shift = 0;
    uint8_t carry = 0;
    for (uint32_t i = 0; i < n && count < size; ++i) {
        out[count++] = static_cast<uint8_t>(((packed[i] << shift) & 0x7F) | (carry & 0x7F));
        carry = static_cast<uint8_t>(packed[i] >> (7 - shift));
        if (++shift == 7) {
            out[count++] = carry;
            shift = 0;
            carry = 0;
        }
    }
    return count;
}

// ---- benchmarks: range(0) is the input length ----

void report(benchmark::State &state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void Crc16_Library(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(nkw_pal_crc16(in.data(), static_cast<int32_t>(in.size())));
    report(state);
}

void Crc16_BitwiseReference(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(crc16_bitwise(in.data(), in.size()));
    report(state);
}

void Bcc_Library(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(nkw_pal_bcc(in.data(), static_cast<int32_t>(in.size())));
    report(state);
}

void Bcc_BytewiseReference(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(bcc_bytewise(in.data(), in.size()));
    report(state);
}

void Base64Encode_Library(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    std::vector<char> out(in.size() * 4 / 3 + 8);
    for (auto _ : state) {
        benchmark::DoNotOptimize(nkw_pal_base64_encode(out.data(),
                                                       static_cast<uint32_t>(out.size()), in.data(),
                                                       static_cast<uint32_t>(in.size())));
        benchmark::ClobberMemory();
    }
    report(state);
}

void Base64Encode_BytewiseReference(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    std::vector<char> out(in.size() * 4 / 3 + 8);
    for (auto _ : state) {
        benchmark::DoNotOptimize(base64_encode_bytewise(in.data(), in.size(), out.data()));
        benchmark::ClobberMemory();
    }
    report(state);
}

// A text of range(0) characters (the encoding of 3/4 as many bytes).
std::vector<char> base64_text(size_t chars) {
    Bytes bytes = random_bytes(chars / 4 * 3);
    std::vector<char> text(chars + 1);
    base64_encode_bytewise(bytes.data(), bytes.size(), text.data());
    text.pop_back();
    return text;
}

void Base64Decode_Library(benchmark::State &state) {
    std::vector<char> text = base64_text(static_cast<size_t>(state.range(0)));
    Bytes out(text.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            nkw_pal_base64_decode(out.data(), static_cast<uint32_t>(out.size()), text.data(),
                                  static_cast<uint32_t>(text.size())));
        benchmark::ClobberMemory();
    }
    report(state);
}

void Base64Decode_BytewiseReference(benchmark::State &state) {
    std::vector<char> text = base64_text(static_cast<size_t>(state.range(0)));
    Bytes out(text.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(base64_decode_bytewise(text.data(), text.size(), out.data()));
        benchmark::ClobberMemory();
    }
    report(state);
}

void SevenBitEncode_Library(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)), 0x7F);
    Bytes out(in.size() + 1);
    uint32_t count = 0;
    for (auto _ : state) {
        nkw_pal_7bit_encode(in.data(), static_cast<uint32_t>(in.size()), out.data(),
                            static_cast<uint32_t>(in.size()), &count);
        benchmark::DoNotOptimize(count);
        benchmark::ClobberMemory();
    }
    report(state);
}

void SevenBitEncode_BytewiseReference(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)), 0x7F);
    Bytes out(in.size() + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            septets_encode_bytewise(in.data(), static_cast<uint32_t>(in.size()), out.data(),
                                    static_cast<uint32_t>(in.size())));
        benchmark::ClobberMemory();
    }
    report(state);
}

void SevenBitDecode_Library(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    Bytes out(in.size() * 8 / 7 + 9);
    uint32_t count = 0;
    for (auto _ : state) {
        nkw_pal_7bit_decode(in.data(), static_cast<uint32_t>(in.size()), out.data(),
                            static_cast<uint32_t>(out.size() - 1), &count);
        benchmark::DoNotOptimize(count);
        benchmark::ClobberMemory();
    }
    report(state);
}

void SevenBitDecode_BytewiseReference(benchmark::State &state) {
    Bytes in = random_bytes(static_cast<size_t>(state.range(0)));
    Bytes out(in.size() * 8 / 7 + 9);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            septets_decode_bytewise(in.data(), static_cast<uint32_t>(in.size()), out.data(),
                                    static_cast<uint32_t>(out.size() - 1)));
        benchmark::ClobberMemory();
    }
    report(state);
}

constexpr int64_t kSms = 160;
constexpr int64_t k64KiB = 64 * 1024;

void sizes(benchmark::internal::Benchmark *b) {
    b->Arg(kSms)->Arg(k64KiB);
}

BENCHMARK(Crc16_Library)->Apply(sizes);
BENCHMARK(Crc16_BitwiseReference)->Apply(sizes);
BENCHMARK(Bcc_Library)->Apply(sizes);
BENCHMARK(Bcc_BytewiseReference)->Apply(sizes);
BENCHMARK(Base64Encode_Library)->Apply(sizes);
BENCHMARK(Base64Encode_BytewiseReference)->Apply(sizes);
BENCHMARK(Base64Decode_Library)->Apply(sizes);
BENCHMARK(Base64Decode_BytewiseReference)->Apply(sizes);
BENCHMARK(SevenBitEncode_Library)->Apply(sizes);
BENCHMARK(SevenBitEncode_BytewiseReference)->Apply(sizes);
BENCHMARK(SevenBitDecode_Library)->Apply(sizes);
BENCHMARK(SevenBitDecode_BytewiseReference)->Apply(sizes);

}  // namespace

int main(int argc, char **argv) {
    nkw_pal_log_set_level(NKW_PAL_LOG_WARN);  // success paths write nothing at any level
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
