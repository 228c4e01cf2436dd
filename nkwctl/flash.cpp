// flash: the raw MTD partitions (list, geometry, read) and the flash region
// (read, and write or erase only as subcommands of their own).
#include <nkw_pal.h>

#include <cstdio>
#include <fstream>
#include <vector>

#include "commands.h"

namespace nkwctl {

namespace flash_group {
namespace {

// More than a bug report needs, well under what a small module can hold.
constexpr unsigned int kMaxLength = 16u * 1024 * 1024;
constexpr unsigned int kDefaultLength = 64;

std::string name;
unsigned int offset = 0;
unsigned int length = kDefaultLength;
std::string out_path;
std::string hex;

const nkw_mtd_partition *partition_named(const std::string &wanted) {
    if (nkw_mtd_scan_partitions() < 0) return nullptr;
    return nkw_mtd_find_partition_by_name(wanted.c_str());
}

// The bytes as hex, or into the file asked for.
int show_bytes(const std::string &key, const std::vector<char> &bytes, const Options &options) {
    Report report;
    if (!out_path.empty()) {
        std::ofstream out(out_path, std::ios::binary | std::ios::trunc);
        if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())) || !out.flush())
            return fail("flash read", -1, "could not write " + out_path);
        report.text(key + ".file", out_path);
        report.number(key + ".length", static_cast<int64_t>(bytes.size()));
    } else {
        report.text(key + ".hex",
                    hex_of(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size()));
    }
    report.print(options);
    return 0;
}

int list(const Options &options) {
    const int count = nkw_mtd_scan_partitions();
    if (count < 0) return fail("flash list", count, "the partition list could not be read");
    Report report;
    for (int device = 0; device < NKW_MTD_MAX_PARTITIONS; ++device) {
        const std::string block = "/dev/mtdblock" + std::to_string(device);
        const nkw_mtd_partition *p = nkw_mtd_find_partition_by_device_name(block.c_str());
        if (p == nullptr) continue;
        const std::string key = "flash.mtd" + std::to_string(device);
        report.text(key + ".name", p->name);
        report.number(key + ".size", p->size);
        report.number(key + ".erase_size", p->erase_size);
    }
    report.print(options);
    return 0;
}

int info(const Options &options) {
    const nkw_mtd_partition *p = partition_named(name);
    if (p == nullptr) return fail("flash info", -1, "no partition named " + name);
    size_t total = 0;
    size_t erase = 0;
    size_t write = 0;
    const int status = nkw_mtd_partition_info(p, &total, &erase, &write);
    if (status != 0) return fail("flash info", status, "the device did not report its geometry");
    Report report;
    const std::string key = "flash." + name;
    report.number(key + ".device", p->device_index);
    report.number(key + ".size", static_cast<int64_t>(total));
    report.number(key + ".erase_size", static_cast<int64_t>(erase));
    report.number(key + ".write_size", static_cast<int64_t>(write));
    report.print(options);
    return 0;
}

int read_partition(const Options &options) {
    const nkw_mtd_partition *p = partition_named(name);
    if (p == nullptr) return fail("flash read", -1, "no partition named " + name);
    std::vector<char> bytes(length);
    const int status =
        nkw_mtd_read_block(p, bytes.data(), static_cast<int>(length), static_cast<int>(offset));
    if (status != 0) return fail("flash read", status, "the range could not be read");
    return show_bytes("flash." + name, bytes, options);
}

int region_ready(const char *what) {
    const int32_t status = nkw_pal_flash_init();
    return status == 0 ? 0 : fail(what, status, "the partition list could not be read");
}

int region_read(const Options &options) {
    if (region_ready("flash region read") != 0) return 1;
    std::vector<char> bytes(length);
    const int32_t status = nkw_pal_flash_read(offset, bytes.data(), length);
    if (status != 0) return fail("flash region read", status, "the range could not be read");
    return show_bytes("flash.region", bytes, options);
}

int region_write(const Options &) {
    if (hex.empty() || hex.size() % 2 != 0)
        return fail("flash region write", -1, "expected an even number of hex digits");
    std::vector<uint8_t> data(hex.size() / 2);
    if (nkw_pal_hex2bin(hex.c_str(), hex.size(), data.data(), data.size()) != 0)
        return fail("flash region write", -1, "expected hex digits only");
    if (region_ready("flash region write") != 0) return 1;
    const int32_t status =
        nkw_pal_flash_write(offset, data.data(), static_cast<unsigned int>(data.size()));
    return status == 0 ? 0 : fail("flash region write", status, "the range was not written");
}

int region_erase(const Options &) {
    if (region_ready("flash region erase") != 0) return 1;
    const int32_t status = nkw_pal_flash_erase(offset, length);
    return status == 0 ? 0 : fail("flash region erase", status, "the range was not erased");
}

void choose(Action &action, int (*run)(const Options &)) {
    action.run = run;
    action.needs_modem = false;
}

// OFFSET and LENGTH in decimal or 0x hex.
void add_range(CLI::App *cmd, bool with_length) {
    cmd->add_option("OFFSET", offset, "byte offset")->required();
    if (with_length)
        cmd->add_option("LENGTH", length, "bytes")->required()->check(CLI::Range(1u, kMaxLength));
}

}  // namespace
}  // namespace flash_group

void add_flash(CLI::App &app, Action &action) {
    using namespace flash_group;
    auto *flash = app.add_subcommand("flash", "raw flash partitions and the flash region");
    flash->require_subcommand(1);
    flash->add_subcommand("list", "the MTD partitions: name, size, erase size")
        ->callback([&action] { choose(action, list); });
    auto *about = flash->add_subcommand("info", "a partition's device geometry");
    about->add_option("NAME", name)->required();
    about->callback([&action] { choose(action, info); });
    auto *rd = flash->add_subcommand("read", "read bytes of a partition as hex (or --out FILE)");
    rd->add_option("NAME", name)->required();
    add_range(rd, true);
    rd->add_option("--out", out_path, "write the bytes to this file");
    rd->callback([&action] { choose(action, read_partition); });

    auto *region = flash->add_subcommand("region", "the flash region (partition mddata_bak)");
    region->require_subcommand(1);
    auto *region_rd = region->add_subcommand("read", "read bytes as hex (or --out FILE)");
    add_range(region_rd, true);
    region_rd->add_option("--out", out_path, "write the bytes to this file");
    region_rd->callback([&action] { choose(action, region_read); });
    auto *region_wr = region->add_subcommand("write", "write hex bytes at OFFSET");
    add_range(region_wr, false);
    region_wr->add_option("HEX", hex)->required();
    region_wr->callback([&action] { choose(action, region_write); });
    auto *region_er = region->add_subcommand("erase", "erase LENGTH bytes at OFFSET (to 0xFF)");
    add_range(region_er, true);
    region_er->callback([&action] { choose(action, region_erase); });
}

}  // namespace nkwctl
