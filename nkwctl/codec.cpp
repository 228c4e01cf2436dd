// codec: field debugging of Base64, BCD and 7-bit texts; no modem needed.
#include <nkw_pal.h>

#include <vector>

#include "commands.h"

namespace nkwctl {

namespace codec_group {
namespace {

std::string input;

// Hex input as bytes; empty with a failure printed when it is not hex.
bool bytes_of_hex(std::vector<uint8_t> &bytes) {
    if (input.empty() || input.size() % 2 != 0) {
        fail("codec", -1, "expected an even number of hex digits");
        return false;
    }
    bytes.assign(input.size() / 2, 0);
    const int32_t status = nkw_pal_hex2bin(input.c_str(), input.size(), bytes.data(), bytes.size());
    if (status != 0) {
        fail("codec", status, "expected hex digits only");
        return false;
    }
    return true;
}

int base64(const Options &options) {
    // Slack beyond the expected length: the decoder may place its zero there.
    std::vector<uint8_t> out(input.size() * 3 / 4 + 2, 0);
    const int32_t length =
        nkw_pal_base64_decode(out.data(), out.size(), input.c_str(), input.size());
    if (length < 0)
        return fail("codec base64", length, "expected Base64 text, length a multiple of 4");
    Report report;
    report.number("codec.length", length);
    report.text("codec.hex", hex_of(out.data(), length));
    report.print(options);
    return 0;
}

int bcd(const Options &options) {
    std::vector<uint8_t> bytes;
    if (!bytes_of_hex(bytes)) return 1;
    // The decoder may write two bytes past `size`.
    std::vector<char> text(bytes.size() * 2 + 3, '\0');
    uint32_t length = 0;
    const int32_t status =
        nkw_pal_bcd_to_ascii(bytes.data(), bytes.size(), text.data(), text.size() - 2, &length);
    if (status != 0)
        return fail("codec bcd", status, "expected telephony BCD (filler only in a high nibble)");
    Report report;
    report.text("codec.text", std::string(text.data(), length));
    report.print(options);
    return 0;
}

int septets(const Options &options) {
    std::vector<uint8_t> bytes;
    if (!bytes_of_hex(bytes)) return 1;
    const uint32_t size = bytes.size() * 8 / 7;
    std::vector<uint8_t> out(size + 1, 0);  // one septet may land at index size
    uint32_t count = 0;
    nkw_pal_7bit_decode(bytes.data(), bytes.size(), out.data(), size, &count);
    Report report;
    report.number("codec.septets", count);
    report.text("codec.hex", hex_of(out.data(), count));
    report.print(options);
    return 0;
}

}  // namespace
}  // namespace codec_group

void add_codec(CLI::App &app, Action &action) {
    using namespace codec_group;
    auto *codec = app.add_subcommand("codec", "decode Base64, BCD or packed 7-bit text");
    codec->require_subcommand(1);
    struct Kind {
        const char *name;
        const char *help;
        int (*run)(const Options &);
    };
    static constexpr Kind kKinds[] = {
        {"base64", "Base64 text to hex bytes", base64},
        {"bcd", "BCD bytes (hex) to digits", bcd},
        {"7bit", "packed 7-bit bytes (hex) to septets (hex)", septets},
    };
    for (const Kind &kind : kKinds) {
        auto *cmd = codec->add_subcommand(kind.name, kind.help);
        cmd->add_option("INPUT", input)->required();
        auto run = kind.run;
        cmd->callback([&action, run] {
            action.run = run;
            action.needs_modem = false;
        });
    }
}

}  // namespace nkwctl
