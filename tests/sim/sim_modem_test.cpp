// The simulated modem itself: callbacks on its own thread, the journal,
// scripted confirmations and fault injection, which every other suite
// relies on.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "mipc_sim.h"
#include "mipc_sim_at.h"

namespace {

std::thread::id g_handler_thread;

TEST(SimDispatcher, HandlersRunOnTheDispatcherThreadNotTheCallers) {
    mipc_msg_register_ind_api(
        MIPC_PS0, 0x4505,
        [](mipc_msg_t *, void *) { g_handler_thread = std::this_thread::get_id(); }, 0, nullptr);
    ASSERT_TRUE(mipc_sim::deliver_indication(MIPC_PS0, 0x4505, {}));
    EXPECT_NE(std::this_thread::get_id(), g_handler_thread);
    EXPECT_FALSE(mipc_sim::deliver_indication(MIPC_PS1, 0x4505, {}))
        << "other stack: not registered";
    EXPECT_EQ(-1, mipc_sim::deliver_command(0x1234, {}));
}

TEST(SimAt, AsyncCompletionArrivesLaterOnTheDispatcher) {
    mipc_sim::set_at_reply("AT+CSQ", 0, "+CSQ: 20,99");
    static std::atomic<int> completions{0};
    static std::string response;
    ASSERT_EQ(MIPC_RESULT_SUCCESS, mipc_sys_at_async(
                                       MIPC_PS0,
                                       [](mipc_sim_ps_id_enum, mipc_sys_at_struct *r, void *) {
                                           response = r->atcmd_res_ptr;
                                           ++completions;
                                       },
                                       nullptr, "AT+CSQ"));
    mipc_sim::drain();
    EXPECT_EQ(1, completions.load());
    EXPECT_EQ("+CSQ: 20,99", response);

    mipc_sim::fail_next("mipc_sys_at_async", mipc_sim::no_confirmation());
    mipc_sys_at_async(
        MIPC_PS0, [](mipc_sim_ps_id_enum, mipc_sys_at_struct *, void *) { ++completions; }, nullptr,
        "AT");
    mipc_sim::drain();
    EXPECT_EQ(1, completions.load());
}

TEST(SimRequests, ConfirmationsAreScriptedAndCanBeWithheld) {
    mipc_sim::on_request(77, [](const mipc_sim::Call &) {
        return std::vector<mipc_sim::Tlv>{mipc_sim::tlv_u32(0, 0), mipc_sim::tlv_u32(257, 9)};
    });
    mipc_msg_t *request = mipc_msg_init(77, MIPC_PS_ALL);
    uint32_t value = 5;
    mipc_msg_add_tlv(request, 256, sizeof value, &value);
    mipc_msg_t *confirmation = mipc_msg_sync_timeout(request);
    ASSERT_NE(nullptr, confirmation);
    uint16_t len = 0;
    auto *sbp = static_cast<uint32_t *>(mipc_msg_get_val_ptr(confirmation, 257, &len));
    ASSERT_NE(nullptr, sbp);
    EXPECT_EQ(9u, *sbp);
    EXPECT_EQ(4u, len);
    mipc_msg_deinit(confirmation);

    auto sent = mipc_sim::calls_to("mipc_msg_sync_timeout");
    ASSERT_EQ(1u, sent.size());
    ASSERT_EQ(1u, sent[0].tlvs.size());
    EXPECT_EQ(256, sent[0].tlvs[0].type);

    mipc_sim::fail_next("mipc_msg_sync_timeout", mipc_sim::no_confirmation());
    EXPECT_EQ(nullptr, mipc_msg_sync_timeout(request));
    mipc_sim::fail_next("mipc_msg_sync_timeout", mipc_sim::result_code(3));
    confirmation = mipc_msg_sync_timeout(request);
    EXPECT_EQ(3u, *static_cast<uint32_t *>(mipc_msg_get_val_ptr(confirmation, 0, &len)));
    mipc_msg_deinit(confirmation);
    mipc_msg_deinit(request);
    EXPECT_EQ(0, mipc_sim::live_messages());
}

}  // namespace
