// The acknowledgement the library sends for messages the modem pushes.
#include "modem/ack.h"

#include <gtest/gtest.h>

#include <cstring>

#include "mipc_sim.h"

namespace {

TEST(ModemAck, RepliesWithOneZeroResultTlvAndReleasesTheReply) {
    mipc_msg_register_cmd_api(
        0x8F57,
        [](mipc_msg_t *msg, void *) {
            nkw::modem::acknowledge(msg);
            return MIPC_RESULT_SUCCESS;
        },
        0, nullptr);
    EXPECT_EQ(0, mipc_sim::deliver_command(0x8F57, {mipc_sim::tlv_u32(256, 7)}));

    auto replies = mipc_sim::replies();
    ASSERT_EQ(1u, replies.size());
    EXPECT_EQ(0x8F57u, replies[0].msg_id);
    ASSERT_EQ(1u, replies[0].tlvs.size());
    EXPECT_EQ(0, replies[0].tlvs[0].type);
    EXPECT_EQ(std::vector<uint8_t>(4, 0), replies[0].tlvs[0].value);
    EXPECT_EQ(0, mipc_sim::live_messages());
}

TEST(ModemAck, FailuresOfTheModemLibraryAreNotFatal) {
    mipc_msg_t *received = mipc_sim::make_message(0x8F59, MIPC_PS_ALL, {});
    mipc_sim::fail_next("mipc_msg_rsp", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    nkw::modem::acknowledge(received);
    mipc_sim::fail_next("mipc_msg_copy_hdr", mipc_sim::return_value(0));
    nkw::modem::acknowledge(received);  // no reply at all: nothing to send or release
    mipc_msg_deinit(received);
    EXPECT_TRUE(mipc_sim::replies().empty());
    EXPECT_EQ(0, mipc_sim::live_messages());
}

}  // namespace
