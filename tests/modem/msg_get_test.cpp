// Extracting TLV values from a received modem message.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "mipc_sim.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

constexpr uint16_t kText = 256;
constexpr uint16_t kEmpty = 257;
constexpr uint16_t kAbsent = 300;

// A message as the modem would push it, released at the end of the test.
struct Message {
    mipc_msg_t *msg = mipc_sim::make_message(
        0x8F57, MIPC_PS_ALL,
        {mipc_sim::tlv_text(kText, "ABCDEF", false), mipc_sim::tlv_bytes(kEmpty, nullptr, 0)});
    ~Message() { mipc_msg_deinit(msg); }
};

struct GetCase {
    const char *name;
    uint16_t type;
    bool with_buffer;
    uint32_t buffer_size;
    int32_t status;
    uint32_t out_len;  // expected *out_len; 99 = untouched
    const char *message;
    bool copied;
};

TEST(ModemMsgGet, CopiesOrExplainsWhatTheCallerMustProvide) {
    const GetCase cases[] = {
        {"exact fit", kText, true, 6, 0, 6, "Get msg(type: 256) success. msg_info len: 6 \n", true},
        {"larger buffer", kText, true, 64, 0, 6, "Modem msg type is 256 \n", true},
        {"one byte short", kText, true, 5, 1602, 6,
         "data_size is too short. out_data_size must longer than 6 \n", false},
        {"size query", kText, false, 0, 1602, 6,
         "out_data is NULL. out_data_size must longer than 6 \n", false},
        {"empty TLV", kEmpty, true, 64, -1, 99, "Get msg(type: 257)s failed \n", false},
        {"absent TLV", kAbsent, true, 64, -1, 99, "Get msg(type: 300)s failed \n", false},
    };
    for (const GetCase &c : cases) {
        Message m;
        nkw::test::syslog_clear();
        uint16_t type = c.type;
        uint16_t *type_ref = &type;
        char buffer[64];
        std::memset(buffer, '#', sizeof buffer);
        uint32_t out_len = 99;
        EXPECT_EQ(c.status,
                  nkw_pal_modem_msg_get(m.msg, &type_ref, c.with_buffer ? buffer : nullptr,
                                        c.buffer_size, &out_len))
            << c.name;
        EXPECT_EQ(c.out_len, out_len) << c.name;
        EXPECT_TRUE(syslog_contains(c.message)) << c.name;
        // Exactly the value's bytes are copied: no terminator is added.
        std::string expected =
            c.copied ? std::string("ABCDEF") + std::string(58, '#') : std::string(64, '#');
        EXPECT_EQ(expected, std::string(buffer, sizeof buffer)) << c.name;
    }
}

TEST(ModemMsgGet, MissingArgumentsGive7) {
    Message m;
    uint16_t type = kText;
    uint16_t *type_ref = &type;
    uint16_t *null_type = nullptr;
    char buffer[8];
    uint32_t out_len = 0;
    EXPECT_EQ(7, nkw_pal_modem_msg_get(nullptr, &type_ref, buffer, 8, &out_len));
    EXPECT_EQ(7, nkw_pal_modem_msg_get(m.msg, nullptr, buffer, 8, &out_len));
    EXPECT_EQ(7, nkw_pal_modem_msg_get(m.msg, &type_ref, buffer, 8, nullptr));
    EXPECT_TRUE(syslog_contains("]-The input parameters is incorrect \n"));
    EXPECT_EQ(7, nkw_pal_modem_msg_get(m.msg, &null_type, buffer, 8, &out_len));
    EXPECT_TRUE(syslog_contains("]-Modem msg type is null. \n"));
}

TEST(ModemSession, InitAndDeinitPassTheModemLibraryThrough) {
    EXPECT_EQ(0, nkw_pal_modem_msg_init("connmgrd"));
    EXPECT_TRUE(mipc_sim::session_open());
    EXPECT_EQ("connmgrd", mipc_sim::session_client());
    EXPECT_EQ(0, nkw_pal_modem_msg_deinit());
    EXPECT_FALSE(mipc_sim::session_open());

    mipc_sim::fail_next("mipc_init", mipc_sim::return_value(MIPC_RESULT_NOT_INIT));
    EXPECT_EQ(MIPC_RESULT_NOT_INIT, nkw_pal_modem_msg_init("connmgrd"));
    mipc_sim::fail_next("mipc_deinit", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(MIPC_RESULT_FAILURE, nkw_pal_modem_msg_deinit());
}

}  // namespace
