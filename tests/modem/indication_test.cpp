// Modem indications: registrations, the values each event passes on, and the
// acknowledgement of MBIM events.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_indication.h"
#include "modem/indication/subscription.h"
#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;
using nkw::test::syslog_matching;

namespace {

// What the callbacks received, on which thread, with which user datum.
struct Seen {
    std::vector<int32_t> values;
    std::string text;
    void *user = nullptr;
    std::thread::id thread;
    int calls = 0;
};
Seen g_seen;
int g_user;

void saw(std::vector<int32_t> values, void *user, std::string text = "") {
    g_seen.values = std::move(values);
    g_seen.user = user;
    g_seen.text = std::move(text);
    g_seen.thread = std::this_thread::get_id();
    ++g_seen.calls;
}

void on_hotplug(int32_t plugged, void *user) {
    saw({plugged}, user);
}
void on_open(int32_t status, void *user) {
    saw({status}, user);
}
void on_slot(int32_t option, int32_t sim_id, void *user) {
    saw({option, sim_id}, user);
}
void on_pin(nkw_pal_mbim_pin_info *pin, void *user) {
    saw({pin->status}, user, std::string(reinterpret_cast<const char *>(pin), sizeof *pin));
}
void on_connect(int32_t connected, const char *apn, void *user) {
    saw({connected}, user, apn);
}
void on_lpa(int32_t value, void *user) {
    saw({value}, user);
}

void subscribe_all() {
    ASSERT_EQ(0, nkw_pal_hotplug_status_indication_register(on_hotplug, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_open_status_indication_register(on_open, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_sim_slot_mapping_indication_register(on_slot, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_simpin_status_indication_register(on_pin, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_connect_status_indication_register(on_connect, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_lpa_auth_server_apdu_indication_register(on_lpa, &g_user));
}

std::string pin_record(uint8_t status, const std::string &pin) {
    std::string record(18, '\0');
    record[0] = static_cast<char>(status);
    record.replace(1, pin.size(), pin);
    return record;
}

struct EventCase {
    const char *name;
    std::function<void()> push;
    uint16_t msg_id;
    bool called;
    std::vector<int32_t> values;  // the callback's arguments before the user datum
    std::string text;             // APN, or the PIN record as delivered
    bool acknowledged;
    const char *message;  // nullptr: logs nothing of its own
};

TEST(Indication, EventsPassOnTheTablesValuesOnTheModemThreadAndMbimEventsAreAcknowledged) {
    using namespace mipc_sim;
    const EventCase cases[] = {
        {"unplugged", [] { push_hotplug(11); }, kHotplugInd, true, {0}, "", false,
         "hotplug_status_indicate_cb cause=11 \n"},
        {"plugged", [] { push_hotplug(12); }, kHotplugInd, true, {1}, "", false, "cause=12 \n"},
        {"other cause", [] { push_hotplug(3); }, kHotplugInd, false, {}, "", false, "cause=3 \n"},
        {"no cause", [] { push_hotplug(12, kOmitValue2); }, kHotplugInd, false, {}, "", false,
         "cause=255 \n"},
        {"open", [] { push_mbim_open(2); }, kMbimOpenInd, true, {2}, "", true,
         "mbim_open_status_indicate_cb mbim_status=2 \n"},
        {"slot", [] { push_mbim_slot_mapping(4, 1); }, kMbimSlotMappingInd, true, {4, 1}, "", true,
         "mbim_sim_slot_mapping_indicate_cb opt=4, sim_id=1 \n"},
        {"pin ready", [] { push_mbim_pin_status(3, "1234"); }, kMbimPinStatusInd, true, {1},
         pin_record(1, "1234"), true, "pin_status=3, pin_code=1234 \n"},
        {"pin not set", [] { push_mbim_pin_status(2, "1234"); }, kMbimPinStatusInd, true, {0},
         std::string(18, '\0'), true, "pin_status=2, pin_code=1234 \n"},
        {"pin other", [] { push_mbim_pin_status(7, "9"); }, kMbimPinStatusInd, false, {}, "",
         true, "pin_status=7, pin_code=9 \n"},
        {"connected", [] { push_mbim_connect_status(1, "internet"); }, kMbimConnectStatusInd,
         true, {1}, "internet", true, "mbim_connect_status_indicate_cb status=1, apn=internet \n"},
        {"disconnected", [] { push_mbim_connect_status(3, "ims"); }, kMbimConnectStatusInd, true,
         {0}, "ims", true, "status=3, apn=ims \n"},
        {"connecting", [] { push_mbim_connect_status(2, "ims"); }, kMbimConnectStatusInd, false,
         {}, "", true, "status=2, apn=ims \n"},
        {"lpa (logs no event)", [] { push_mbim_lpa_apdu(0xA5); }, kMbimLpaApduInd, true, {0xA5},
         "", true, nullptr},
    };
    for (const EventCase &c : cases) {
        mipc_sim::reset();
        nkw::test::syslog_clear();
        g_seen = Seen{};
        subscribe_all();
        c.push();
        EXPECT_EQ(c.called ? 1 : 0, g_seen.calls) << c.name;
        if (c.called) {
            EXPECT_EQ(c.values, g_seen.values) << c.name;
            EXPECT_EQ(c.text, g_seen.text) << c.name;
            EXPECT_EQ(&g_user, g_seen.user) << c.name;
            EXPECT_NE(std::this_thread::get_id(), g_seen.thread) << c.name;
        }
        auto acks = replies_to(c.msg_id);
        ASSERT_EQ(c.acknowledged ? 1u : 0u, acks.size()) << c.name;
        if (c.acknowledged) {
            ASSERT_EQ(1u, acks[0].tlvs.size());
            EXPECT_EQ(std::vector<uint8_t>(4, 0), acks[0].tlvs[0].value) << c.name;
        }
        if (c.message != nullptr) {
            EXPECT_TRUE(syslog_contains(c.message)) << c.name;
        }
    }
}

TEST(Indication, EventsMissingAValueAreReportedAndNeitherPassedOnNorAcknowledged) {
    using namespace mipc_sim;
    const struct {
        std::function<int()> push;
        const char *message;
    } cases[] = {
        {[] { return push_mbim_open(1, kOmitValue1); }, "mbim_open_status_indicate_cb val_ptr"},
        {[] { return push_mbim_slot_mapping(1, 1, kOmitValue1); }, "val_ptr_1 get failed \n"},
        {[] { return push_mbim_slot_mapping(1, 1, kOmitValue2); }, "val_ptr_2 get failed \n"},
        {[] { return push_mbim_pin_status(1, "", kOmitValue1); },
         "mbim_simpin_status_indicate_cb val_ptr get failed \n"},
        {[] { return push_mbim_connect_status(1, "a", kOmitValue1); },
         "connect_status get failed \n"},
        {[] { return push_mbim_connect_status(1, "a", kOmitValue2); }, "apn get failed \n"},
        {[] { return push_mbim_lpa_apdu(1, kOmitValue1); },
         "]-lpa_auth_server_apdu info get failed \n"},
    };
    subscribe_all();
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        EXPECT_NE(0, c.push()) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
    }
    // A short value is no value: the PIN record must be whole.
    uint8_t short_pin[4] = {1, '1', '2', '3'};
    EXPECT_NE(0, deliver_command(kMbimPinStatusInd, {tlv_bytes(kEventValue1, short_pin, 4)}));
    EXPECT_EQ(0, g_seen.calls);
    EXPECT_TRUE(replies().empty());
}

TEST(Indication, RegistrationsUseTheirMessageIdsAndKeepOnlyTheirRecords) {
    subscribe_all();
    auto hotplug = mipc_sim::calls_to("mipc_msg_register_ind_api");
    ASSERT_EQ(1u, hotplug.size());
    EXPECT_EQ(MIPC_PS0, hotplug[0].ps_id);
    EXPECT_EQ(mipc_sim::kHotplugInd, hotplug[0].msg_id);
    std::vector<uint32_t> ids;
    for (const auto &call : mipc_sim::calls_to("mipc_msg_register_cmd_api")) {
        ids.push_back(call.msg_id);
        EXPECT_EQ(0, call.arg);
    }
    EXPECT_EQ((std::vector<uint32_t>{0x8F57, 0x8F59, 0x8F53, 0x8F4D, 0x8F65}), ids);
    EXPECT_EQ(6u, syslog_matching("]-malloc 0x").size());
    EXPECT_TRUE(syslog_matching("]-free 0x").empty());

    // Null callbacks are refused, except by the LPA registration, whose
    // events are then only acknowledged.
    nkw::test::syslog_clear();
    mipc_sim::reset();
    EXPECT_EQ(-1, nkw_pal_hotplug_status_indication_register(nullptr, nullptr));
    EXPECT_EQ(-1, nkw_pal_mbim_connect_status_indication_register(nullptr, nullptr));
    EXPECT_EQ(2u, syslog_matching("]-callback is null \n").size());
    EXPECT_EQ(0, nkw_pal_mbim_lpa_auth_server_apdu_indication_register(nullptr, nullptr));
    EXPECT_EQ(0, mipc_sim::push_mbim_lpa_apdu(9));
    EXPECT_EQ(1u, mipc_sim::replies_to(mipc_sim::kMbimLpaApduInd).size());
}

TEST(Indication, ARefusedRegistrationFreesItsRecordAndNamesItself) {
    const struct {
        std::function<int32_t()> subscribe;
        const char *api;
        const char *message;
    } cases[] = {
        {[] { return nkw_pal_hotplug_status_indication_register(on_hotplug, nullptr); },
         "mipc_msg_register_ind_api", "hotplug_status_indication_register failed \n"},
        {[] { return nkw_pal_mbim_open_status_indication_register(on_open, nullptr); },
         "mipc_msg_register_cmd_api", "mbim_open_status_indication_register failed \n"},
        {[] { return nkw_pal_mbim_sim_slot_mapping_indication_register(on_slot, nullptr); },
         "mipc_msg_register_cmd_api", "mbim_sim_slot_mapping_indication_register failed \n"},
        {[] { return nkw_pal_mbim_simpin_status_indication_register(on_pin, nullptr); },
         "mipc_msg_register_cmd_api", "mbim_simpin_status_indication_register failed \n"},
        {[] { return nkw_pal_mbim_connect_status_indication_register(on_connect, nullptr); },
         "mipc_msg_register_cmd_api", "mbim_connect_status_indication_register failed \n"},
        {[] { return nkw_pal_mbim_lpa_auth_server_apdu_indication_register(on_lpa, nullptr); },
         "mipc_msg_register_cmd_api", "lpa_auth_server_apdu_indication_register failed \n"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        mipc_sim::fail_next(c.api, mipc_sim::return_value(MIPC_RESULT_FAILURE));
        EXPECT_EQ(-1, c.subscribe()) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
        EXPECT_EQ(1u, syslog_matching("]-free 0x").size()) << c.message;
    }
}

TEST(Indication, RoutinesTolerateMissingMessagesAndRecords) {
    // What a confused modem library could hand over: nothing is read or acknowledged.
    nkw_pal_hotplug_status_indicate_cb(nullptr, nullptr);
    EXPECT_TRUE(syslog_contains("cause=255 \n"));
    EXPECT_NE(MIPC_RESULT_SUCCESS, nkw_pal_mbim_open_status_indicate_cb(nullptr, nullptr));
    mipc_msg_t *open = mipc_sim::make_message(mipc_sim::kMbimOpenInd, MIPC_PS_ALL,
                                              {mipc_sim::tlv_u32(256, 1)});
    EXPECT_EQ(MIPC_RESULT_SUCCESS, nkw_pal_mbim_open_status_indicate_cb(open, nullptr));
    mipc_msg_deinit(open);
    EXPECT_EQ(1u, mipc_sim::replies().size());
}

}  // namespace
