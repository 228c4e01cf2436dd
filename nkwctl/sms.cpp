// sms: the modem's message store, read and deleted by index.
#include <nkw_pal.h>

#include "commands.h"

namespace nkwctl {

namespace sms_group {
namespace {

constexpr uint32_t kSimId = 0;  // the library ignores it
constexpr size_t kTextSize = 161;

uint32_t index = 0;

int read(const Options &options) {
    char buf[kTextSize + 1] = {};
    uint32_t length = 0;
    const int32_t status = nkw_pal_sms_get_message_request(kSimId, index, buf, &length);
    if (status != 0)
        return fail("sms read", status, "no message the library could decode at this index");
    Report report;
    report.number("sms.index", index);
    report.text("sms.text", std::string(buf, length));
    report.print(options);
    return 0;
}

int remove(const Options &) {
    const int32_t status = nkw_pal_sms_delete_by_index(kSimId, index);
    return status == 0 ? 0 : fail("sms delete", status, "the request could not be made");
}

int remove_all(const Options &) {
    const int32_t status = nkw_pal_sms_delete_all();
    return status == 0 ? 0 : fail("sms delete-all", status, "the request could not be made");
}

}  // namespace
}  // namespace sms_group

void add_sms(CLI::App &app, Action &action) {
    using namespace sms_group;
    auto *sms = app.add_subcommand("sms", "read and delete stored messages");
    sms->require_subcommand(1);
    auto *rd = sms->add_subcommand("read", "decoded text of the message at INDEX");
    rd->add_option("INDEX", index)->required();
    rd->callback([&action] { action.run = read; });
    auto *del = sms->add_subcommand("delete", "delete the message at INDEX");
    del->add_option("INDEX", index)->required();
    del->callback([&action] { action.run = remove; });
    sms->add_subcommand("delete-all", "delete every stored message")->callback([&action] {
        action.run = remove_all;
    });
}

}  // namespace nkwctl
