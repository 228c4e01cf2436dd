// Test PDUs as hex text, and what the decoded record holds.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "nkw_pal.h"
#include "support/syslog_capture.h"

namespace nkw::test {

inline std::vector<uint8_t> from_hex(const std::string &hex) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        out.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return out;
}

// The GSM decoder may read the whole 256-byte span; the rest is zero.
inline std::array<uint8_t, 256> gsm_buffer(const std::string &hex) {
    std::array<uint8_t, 256> buffer{};
    std::vector<uint8_t> bytes = from_hex(hex);
    std::memcpy(buffer.data(), bytes.data(), bytes.size());
    return buffer;
}

inline std::string address_of(const sms_decoded_msg &msg) {
    return std::string(msg.deliver.address,
                       strnlen(msg.deliver.address, sizeof msg.deliver.address));
}

inline std::string deliver_text(const sms_decoded_msg &msg) {
    return std::string(msg.deliver.data, msg.deliver.dataLen > 161 ? 161 : msg.deliver.dataLen);
}

inline std::string submit_text(const sms_decoded_msg &msg) {
    return std::string(msg.submit.data, msg.submit.dataLen > 161 ? 161 : msg.submit.dataLen);
}

// Whether a line containing `needle` was logged under `function`'s name.
inline bool logged_in(const std::string &needle, const std::string &function) {
    for (const SyslogRecord &r : syslog_matching(needle)) {
        if (r.text.find("[" + function + ":") != std::string::npos) return true;
    }
    return false;
}

}  // namespace nkw::test
