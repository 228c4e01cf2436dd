// Simulated flash devices for the storage suites: each is created in the
// sandbox's flash model and listed in the sandbox's "/proc/mtd".
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "host/flash_model.h"
#include "nkw_pal.h"
#include "support/sandbox.h"

namespace nkw::test {

using Bytes = std::vector<uint8_t>;

inline std::string proc_mtd_line(int device, uint32_t size, uint32_t erase_size,
                                 const std::string &name) {
    char line[160];
    std::snprintf(line, sizeof line, "mtd%d: %08x %08x \"%s\"\n", device, size, erase_size,
                  name.c_str());
    return line;
}

inline void write_proc_mtd(const std::string &text) {
    Sandbox::current().write_file("/proc/mtd", text);
}

struct FlashDevice {
    int device;
    uint32_t size;
    uint32_t erase_size;
    std::string name;
};

// Creates the devices, lists them (under the usual header line) and scans.
inline void install(const std::vector<FlashDevice> &devices) {
    std::string text = "dev:    size   erasesize  name\n";
    for (const FlashDevice &d : devices) {
        ASSERT_EQ(nkw_pal_sim_flash_create(d.device, d.size, d.erase_size, 1), 0);
        text += proc_mtd_line(d.device, d.size, d.erase_size, d.name);
    }
    write_proc_mtd(text);
    ASSERT_EQ(nkw_mtd_scan_partitions(), static_cast<int>(devices.size()));
}

inline Bytes image(int device, uint32_t size) {
    const uint8_t *bytes = nkw_pal_sim_flash_image(device);
    return Bytes(bytes, bytes + size);
}

inline void preload(int device, const Bytes &bytes) {
    std::copy(bytes.begin(), bytes.end(), nkw_pal_sim_flash_image(device));
}

// Distinct bytes: every block of a pattern differs from every other block.
inline Bytes pattern(size_t n, uint32_t seed) {
    Bytes bytes(n);
    uint32_t x = seed * 2654435761u + 1;
    for (uint8_t &b : bytes) {
        x = x * 1103515245u + 12345u;
        b = static_cast<uint8_t>(x >> 16);
    }
    return bytes;
}

inline Bytes slice(const Bytes &bytes, size_t at, size_t n) {
    return Bytes(bytes.begin() + at, bytes.begin() + at + n);
}

// Starts each test with no simulated devices and no open descriptors.
class FlashTest : public testing::Test {
   protected:
    void SetUp() override { nkw_pal_sim_flash_reset(); }
    void TearDown() override {
        EXPECT_EQ(nkw_pal_sim_flash_open_count(), 0) << "descriptor left open";
    }
};

}  // namespace nkw::test
