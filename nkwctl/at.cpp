// at: one AT command and its answer, waited for or (--async) delivered later.
#include <nkw_pal.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "commands.h"

namespace nkwctl {

namespace at_group {
namespace {

constexpr int32_t kResponseSize = 4096;
// How long --async waits for the answer before giving up.
constexpr auto kAsyncWait = std::chrono::seconds(5);
constexpr auto kPoll = std::chrono::milliseconds(10);

std::string command;
bool async = false;
std::string async_response;
std::atomic<bool> answered{false};

void on_response(const char *response, int32_t length) {
    if (!answered.load()) {
        async_response.assign(response != nullptr ? response : "",
                              response != nullptr && length > 0 ? length : 0);
        answered.store(true);
    }
}

std::string with_line_end() {
    return command + "\r\n";
}

int send(const Options &options) {
    const std::string cmd = with_line_end();
    std::string response;
    if (async) {
        const int32_t status = nkw_pal_at_send_async(cmd.c_str(), cmd.size(), on_response);
        if (status != 0) return fail("at", status, "the command was not sent");
        const auto deadline = std::chrono::steady_clock::now() + kAsyncWait;
        while (!answered.load() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(kPoll);
        if (!answered.load()) return fail("at", -1, "no answer (an error answer is not delivered)");
        response = async_response;
    } else {
        char buf[kResponseSize] = {};
        uint32_t length = 0;
        const int32_t status = nkw_pal_at_send(cmd.c_str(), cmd.size(), buf, sizeof buf, &length);
        if (status != 0) return fail("at", status, "the modem answered with an error or nothing");
        response.assign(buf, length);
    }
    Report report;
    report.text("at.command", command);
    report.text("at.response", response);
    report.print(options);
    return 0;
}

}  // namespace
}  // namespace at_group

void add_at(CLI::App &app, Action &action) {
    using namespace at_group;
    auto *at = app.add_subcommand("at", "send an AT command and print the answer");
    at->add_option("COMMAND", command, "e.g. ATI")->required();
    at->add_flag("--async", async, "send without waiting and print the answer when it arrives");
    at->callback([&action] { action.run = send; });
}

}  // namespace nkwctl
