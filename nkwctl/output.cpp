#include "output.h"

#include <nkw_pal.h>

#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <vector>

namespace nkwctl {

namespace {

constexpr const char *kMask = "********";

std::string shown(const std::string &value, bool personal, const Options &options) {
    return personal && options.hide_personal ? kMask : value;
}

// Dotted keys become nested objects; numeric parts stay object keys so the
// layout does not change with the number of SIMs or items.
void put(nlohmann::json &root, const std::string &key, nlohmann::json value) {
    nlohmann::json *node = &root;
    size_t start = 0;
    for (size_t dot = key.find('.'); dot != std::string::npos; dot = key.find('.', start)) {
        node = &(*node)[key.substr(start, dot - start)];
        start = dot + 1;
    }
    (*node)[key.substr(start)] = std::move(value);
}

}  // namespace

void Report::text(const std::string &key, const std::string &value, bool personal) {
    fields_.push_back({key, value, false, personal, false});
}

void Report::number(const std::string &key, int64_t value) {
    fields_.push_back({key, std::to_string(value), true, false, false});
}

void Report::real(const std::string &key, double value, int decimals, bool personal) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    fields_.push_back({key, text, false, personal, true});
}

void Report::print(const Options &options) const {
    if (options.format == Format::Json) {
        nlohmann::json root = nlohmann::json::object();
        for (const Field &f : fields_) {
            if (f.is_number) {
                put(root, f.key, std::stoll(f.value));
            } else if (f.is_real && !(f.personal && options.hide_personal)) {
                put(root, f.key, std::stod(f.value));
            } else {
                put(root, f.key, shown(f.value, f.personal, options));
            }
        }
        std::cout << root.dump(2) << "\n";
        return;
    }
    size_t width = 0;
    for (const Field &f : fields_) width = std::max(width, f.key.size());
    for (const Field &f : fields_) {
        const std::string value = shown(f.value, f.personal, options);
        if (options.format == Format::Keys) {
            std::cout << f.key << " : " << value << "\n";
        } else {
            std::cout << f.key << std::string(width - f.key.size() + 2, ' ') << value << "\n";
        }
    }
}

int fail(const std::string &what, int64_t status, const std::string &reason) {
    std::cerr << what << " failed: status " << status << ": " << reason << "\n";
    return 1;
}

std::string text_of(const char *buf, size_t size) {
    size_t n = 0;
    while (n < size && buf[n] != '\0') ++n;
    return std::string(buf, n);
}

int add_texts(Report &report, const TextItem *items, size_t count) {
    constexpr size_t kText = 128;  // above every identity text the library writes
    int failed = 0;
    for (size_t i = 0; i < count; ++i) {
        char buf[kText] = {};
        const int32_t status = items[i].get(buf);
        if (status != 0) {
            failed = fail(items[i].key, status, "the modem did not answer");
            continue;
        }
        report.text(items[i].key, text_of(buf, sizeof buf), items[i].personal);
    }
    return failed;
}

std::string hex_of(const uint8_t *bytes, size_t count) {
    std::vector<char> out(count * 2 + 1, '\0');
    nkw_pal_bin2hex(bytes, count, out.data(), out.size());
    return text_of(out.data(), out.size());
}

}  // namespace nkwctl
