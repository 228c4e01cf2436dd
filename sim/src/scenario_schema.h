// Checks of scenario documents: each names where a document is wrong (a JSON
// pointer) and what was expected there, and readers of values already checked.
#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace mipc_sim::schema {

using nlohmann::json;

// A schema failure: where and what was expected there.
struct Problem {
    std::string where;
    std::string expected;
};

using Check = bool (*)(const json &, const std::string &, Problem *);

inline bool fail(Problem *problem, const std::string &where, const std::string &expected) {
    *problem = {where.empty() ? "/" : where, expected};
    return false;
}

inline bool only_keys(const json &object, const std::string &where,
                      std::initializer_list<const char *> keys, Problem *problem) {
    if (!object.is_object()) return fail(problem, where, "an object");
    for (auto it = object.begin(); it != object.end(); ++it) {
        bool known = false;
        for (const char *key : keys) known = known || it.key() == key;
        if (!known) {
            std::string list;
            for (const char *key : keys) list += std::string(list.empty() ? "" : ", ") + key;
            return fail(problem, where + "/" + it.key(), "one of the keys " + list);
        }
    }
    return true;
}

inline bool number(const json &object, const char *key, const std::string &where, uint64_t max,
                   bool required, Problem *problem) {
    if (!object.contains(key))
        return !required || fail(problem, where + "/" + key, "a number (missing)");
    const json &value = object[key];
    if (!value.is_number_unsigned() || value.get<uint64_t>() > max)
        return fail(problem, where + "/" + key, "a number from 0 to " + std::to_string(max));
    return true;
}

// A whole number that may be negative.
inline bool integer(const json &object, const char *key, const std::string &where, int64_t min,
                    int64_t max, bool required, Problem *problem) {
    if (!object.contains(key))
        return !required || fail(problem, where + "/" + key, "a number (missing)");
    const json &value = object[key];
    const bool fits = value.is_number_unsigned()
                          ? value.get<uint64_t>() <= static_cast<uint64_t>(max)
                          : value.is_number_integer() && value.get<int64_t>() >= min &&
                                value.get<int64_t>() <= max;
    return fits ||
           fail(problem, where + "/" + key,
                "a whole number from " + std::to_string(min) + " to " + std::to_string(max));
}

// Any number, fractions allowed, within [min, max].
inline bool real(const json &object, const char *key, const std::string &where, double min,
                 double max, Problem *problem) {
    if (!object.contains(key)) return true;
    const json &value = object[key];
    if (!value.is_number() || !std::isfinite(value.get<double>()) || value.get<double>() < min ||
        value.get<double>() > max) {
        char range[64];
        std::snprintf(range, sizeof range, "a number from %g to %g", min, max);
        return fail(problem, where + "/" + key, range);
    }
    return true;
}

inline bool text(const json &object, const char *key, const std::string &where, bool required,
                 Problem *problem) {
    if (!object.contains(key))
        return !required || fail(problem, where + "/" + key, "a string (missing)");
    return object[key].is_string() || fail(problem, where + "/" + key, "a string");
}

inline bool flag(const json &object, const char *key, const std::string &where, Problem *problem) {
    return !object.contains(key) || object[key].is_boolean() ||
           fail(problem, where + "/" + key, "true or false");
}

// The string at `key`, or "" when it is missing or not a string.
inline std::string string_at(const json &object, const char *key) {
    return object.contains(key) && object[key].is_string() ? object[key].get<std::string>() : "";
}

inline bool hex_bytes(const std::string &hex, std::vector<uint8_t> *out) {
    if (hex.size() % 2 != 0) return false;
    out->clear();
    for (size_t i = 0; i < hex.size(); i += 2) {
        auto nibble = [](char c) {
            if (c >= '0' && c <= '9') return c - '0';
            if (c >= 'a' && c <= 'f') return c - 'a' + 10;
            if (c >= 'A' && c <= 'F') return c - 'A' + 10;
            return -1;
        };
        int high = nibble(hex[i]), low = nibble(hex[i + 1]);
        if (high < 0 || low < 0) return false;
        out->push_back(static_cast<uint8_t>(high << 4 | low));
    }
    return true;
}

inline bool hex(const json &object, const char *key, const std::string &where, Problem *problem) {
    std::vector<uint8_t> bytes;
    if (!object.contains(key) || !object[key].is_string() ||
        !hex_bytes(object[key].get<std::string>(), &bytes) || bytes.empty())
        return fail(problem, where + "/" + key, "a non-empty string of hex digit pairs");
    return true;
}

inline std::vector<uint8_t> bytes_of(const json &value) {
    std::vector<uint8_t> bytes;
    hex_bytes(value.get<std::string>(), &bytes);
    return bytes;
}

inline bool each(const json &list, const std::string &where, Check check, Problem *problem) {
    if (!list.is_array()) return fail(problem, where, "an array");
    for (size_t i = 0; i < list.size(); ++i)
        if (!check(list[i], where + "/" + std::to_string(i), problem)) return false;
    return true;
}

// ---- Names used in documents ----------------------------------------------

struct Name {
    const char *name;
    uint32_t value;
};

template <size_t N>
bool named(const json &object, const char *key, const std::string &where, const Name (&names)[N],
           Problem *problem) {
    if (!object.contains(key)) return true;
    std::string list;
    for (const Name &n : names) {
        if (object[key] == n.name) return true;
        list += std::string(list.empty() ? "" : ", ") + n.name;
    }
    return fail(problem, where + "/" + key, "one of " + list);
}

template <size_t N>
uint32_t value_of(const json &object, const char *key, const Name (&names)[N], uint32_t fallback) {
    if (!object.contains(key)) return fallback;
    for (const Name &n : names)
        if (object[key] == n.name) return n.value;
    return fallback;
}

}  // namespace mipc_sim::schema
