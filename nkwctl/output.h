// One report per command, printed for people, as dotted `key : value` lines
// (-K) or as one JSON document (-J); personal fields can be masked.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace nkwctl {

enum class Format { People, Keys, Json };

struct Options {
    Format format = Format::People;
    bool hide_personal = false;
};

class Report {
   public:
    // `key` is dotted ("sim.0.status"); `personal` values are masked on request.
    void text(const std::string &key, const std::string &value, bool personal = false);
    void number(const std::string &key, int64_t value);
    // A real number shown with `decimals` places (a JSON number unless masked).
    void real(const std::string &key, double value, int decimals, bool personal = false);
    // Prints the report in the chosen format on standard output.
    void print(const Options &options) const;

   private:
    struct Field {
        std::string key;
        std::string value;
        bool is_number;
        bool personal;
        bool is_real;
    };
    std::vector<Field> fields_;
};

// A text the library writes into a caller's buffer.
struct TextItem {
    const char *key;
    int32_t (*get)(char *);
    bool personal;
};

// Adds every item that reads; one that fails is reported on standard error
// without hiding the others. Returns the exit status (1 when any failed).
int add_texts(Report &report, const TextItem *items, size_t count);

// Prints "<what> failed: status <status>: <reason>" on standard error; the
// tool's exit status for a failure.
int fail(const std::string &what, int64_t status, const std::string &reason);

// A text buffer handed to the library zero-filled (its texts need not end in a NUL).
std::string text_of(const char *buf, size_t size);

// Upper-case hex of `count` bytes, as the library writes it.
std::string hex_of(const uint8_t *bytes, size_t count);

}  // namespace nkwctl
