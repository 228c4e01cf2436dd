// nv: the NV item table, and items read, written and sized by logical id.
#include <nkw_pal.h>

#include <vector>

#include "commands.h"

namespace nkwctl {

namespace nv_group {
namespace {

constexpr unsigned int kDefaultLength = 64;

unsigned int id = 0;
unsigned int length = kDefaultLength;
bool as_text = false;
std::string value;

int list(const Options &options) {
    Report report;
    for (int i = 0; i < nkw_pal_nvm_tab_count(); ++i) {
        const nkw_nvm_item &item = nkw_nvm_tab[i];
        const std::string key = "nv." + std::to_string(item.logic_id);
        report.number(key + ".lid", item.plat_nvm_id);
        report.number(key + ".position", item.position);
        if (item.file_name != nullptr) report.text(key + ".file", item.file_name);
    }
    report.print(options);
    return 0;
}

int read(const Options &options) {
    // A file item reads its own size; a modem item what was asked for.
    unsigned int size = 0;
    if (nkw_pal_nvm_get_nv_size(id, &size) != 0 || size == 0) size = length;
    std::vector<unsigned char> buf(size, 0);
    const int status = nkw_pal_nvm_read(id, buf.data(), buf.size());
    if (status != 0) return fail("nv read", status, "the item could not be read");
    Report report;
    const std::string key = "nv." + std::to_string(id);
    if (as_text) {
        report.text(key + ".text", text_of(reinterpret_cast<const char *>(buf.data()), buf.size()));
    } else {
        report.text(key + ".hex", hex_of(buf.data(), buf.size()));
    }
    report.print(options);
    return 0;
}

int write(const Options &) {
    std::vector<unsigned char> data(value.begin(), value.end());
    if (!as_text) {
        if (value.empty() || value.size() % 2 != 0)
            return fail("nv write", -1, "expected an even number of hex digits");
        data.assign(value.size() / 2, 0);
        const int32_t status =
            nkw_pal_hex2bin(value.c_str(), value.size(), data.data(), data.size());
        if (status != 0) return fail("nv write", status, "expected hex digits only");
    }
    if (data.empty()) return fail("nv write", -1, "nothing to write");
    const int status = nkw_pal_nvm_write(id, data.data(), data.size());
    return status == 0 ? 0 : fail("nv write", status, "the item could not be written");
}

int size(const Options &options) {
    unsigned int bytes = 0;
    const int status = nkw_pal_nvm_get_nv_size(id, &bytes);
    if (status != 0) return fail("nv size", status, "the item has no readable file");
    Report report;
    report.number("nv." + std::to_string(id) + ".size", bytes);
    report.print(options);
    return 0;
}

int exists(const Options &options) {
    const int status = nkw_pal_nvm_check_nv_exist(id);
    Report report;
    report.number("nv." + std::to_string(id) + ".exists", status == 0 ? 1 : 0);
    report.print(options);
    return 0;
}

CLI::App *with_id(CLI::App *cmd) {
    cmd->add_option("ID", id, "logical id")->required();
    return cmd;
}

}  // namespace
}  // namespace nv_group

void add_nv(CLI::App &app, Action &action) {
    using namespace nv_group;
    auto *nv = app.add_subcommand("nv", "NV item table and items");
    nv->require_subcommand(1);
    nv->add_subcommand("list", "the table: modem LID, position, file")->callback([&action] {
        action.run = list;
        action.needs_modem = false;
    });
    auto *rd = with_id(nv->add_subcommand("read", "read an item as hex (or --text)"));
    rd->add_option("--length", length, "bytes asked of a modem item")->check(CLI::Range(1, 65535));
    rd->add_flag("--text", as_text, "print the bytes up to the first NUL as text");
    rd->callback([&action] { action.run = read; });
    auto *wr = with_id(nv->add_subcommand("write", "write an item from hex (or --text)"));
    wr->add_option("VALUE", value, "hex bytes, or text with --text")->required();
    wr->add_flag("--text", as_text, "VALUE is text");
    wr->callback([&action] { action.run = write; });
    with_id(nv->add_subcommand("size", "size of a file item"))->callback([&action] {
        action.run = size;
    });
    with_id(nv->add_subcommand("exists", "1 when a file item exists"))->callback([&action] {
        action.run = exists;
    });
}

}  // namespace nkwctl
