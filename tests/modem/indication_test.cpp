// Modem indications: registrations, the values each event passes on, and the
// acknowledgement of MBIM events.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "mipc_sim.h"
#include "mipc_sim_indication.h"
#include "modem/indication/subscription.h"
#include "nkw_pal.h"
#include "os/os_test_util.h"

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

// The caller's callbacks, as each registration takes them.
struct On {
    static void hotplug(int32_t plugged, void *user) { saw({plugged}, user); }
    static void open(int32_t status, void *user) { saw({status}, user); }
    static void slot(int32_t option, int32_t sim_id, void *user) { saw({option, sim_id}, user); }
    static void pin(nkw_pal_mbim_pin_info *pin, void *user) {
        saw({pin->status}, user, std::string(reinterpret_cast<const char *>(pin), sizeof *pin));
    }
    static void connect(int32_t connected, const char *apn, void *user) {
        saw({connected}, user, apn);
    }
    static void lpa(int32_t value, void *user) { saw({value}, user); }
};

void subscribe_all() {
    ASSERT_EQ(0, nkw_pal_hotplug_status_indication_register(On::hotplug, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_open_status_indication_register(On::open, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_sim_slot_mapping_indication_register(On::slot, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_simpin_status_indication_register(On::pin, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_connect_status_indication_register(On::connect, &g_user));
    ASSERT_EQ(0, nkw_pal_mbim_lpa_auth_server_apdu_indication_register(On::lpa, &g_user));
}

std::string pin_record(uint8_t status, const std::string &pin) {
    std::string record(18, '\0');
    record[0] = static_cast<char>(status);
    return record.replace(1, pin.size(), pin);
}

enum class Event { kHotplug, kOpen, kSlot, kPin, kConnect, kLpa };

// One event as the modem sends it: values a and b (or the text), with the
// TLVs in `omit` left out.
struct Push {
    Event event;
    uint32_t a;
    uint32_t b = 0;
    const char *text = "";
    unsigned omit = mipc_sim::kOmitNone;
};

// The handler's result (hotplug: 0), or -1 when nothing is registered.
int push(const Push &p) {
    using namespace mipc_sim;
    switch (p.event) {
        case Event::kHotplug:
            return push_hotplug(static_cast<uint8_t>(p.a), p.omit) ? 0 : -1;
        case Event::kOpen:
            return push_mbim_open(p.a, p.omit);
        case Event::kSlot:
            return push_mbim_slot_mapping(p.a, p.b, p.omit);
        case Event::kPin:
            return push_mbim_pin_status(static_cast<uint8_t>(p.a), p.text, p.omit);
        case Event::kConnect:
            return push_mbim_connect_status(p.a, p.text, p.omit);
        case Event::kLpa:
            return push_mbim_lpa_apdu(p.a, p.omit);
    }
    return -1;
}

// Every test starts with no event seen, also when run in one process.
struct Indication : testing::Test {
    void SetUp() override { g_seen = Seen{}; }
};

TEST_F(Indication, EventsPassOnTheTablesValuesOnTheModemThreadAndMbimEventsAreAcknowledged) {
    using E = Event;
    const struct {
        Push push;
        std::vector<int32_t> values;  // the callback's arguments before the user datum; {}: no call
        std::string text;             // APN, or the PIN record as delivered
        const char *message;          // nullptr: the event logs nothing of its own
    } cases[] = {
        {{E::kHotplug, 11}, {0}, "", "hotplug_status_indicate_cb cause=11 \n"},
        {{E::kHotplug, 12}, {1}, "", "cause=12 \n"},
        {{E::kHotplug, 3}, {}, "", "cause=3 \n"},
        {{E::kHotplug, 12, 0, "", mipc_sim::kOmitValue2}, {}, "", "cause=255 \n"},
        {{E::kOpen, 2}, {2}, "", "mbim_open_status_indicate_cb mbim_status=2 \n"},
        {{E::kSlot, 4, 1}, {4, 1}, "", "mbim_sim_slot_mapping_indicate_cb opt=4, sim_id=1 \n"},
        {{E::kPin, 3, 0, "1234"}, {1}, pin_record(1, "1234"), "pin_status=3, pin_code=1234 \n"},
        {{E::kPin, 2, 0, "1234"}, {0}, std::string(18, '\0'), "pin_status=2, pin_code=1234 \n"},
        {{E::kPin, 7, 0, "9"}, {}, "", "pin_status=7, pin_code=9 \n"},
        {{E::kConnect, 1, 0, "internet"}, {1}, "internet", "status=1, apn=internet \n"},
        {{E::kConnect, 3, 0, "ims"}, {0}, "ims", "status=3, apn=ims \n"},
        {{E::kConnect, 2, 0, "ims"}, {}, "", "status=2, apn=ims \n"},
        {{E::kLpa, 0xA5}, {0xA5}, "", nullptr},
    };
    for (const auto &c : cases) {
        std::string name = c.message != nullptr ? c.message : "LPA";
        mipc_sim::reset();
        nkw::test::syslog_clear();
        g_seen = Seen{};
        subscribe_all();
        EXPECT_EQ(0, push(c.push)) << name;
        EXPECT_EQ(c.values.empty() ? 0 : 1, g_seen.calls) << name;
        if (!c.values.empty()) {
            EXPECT_EQ(c.values, g_seen.values) << name;
            EXPECT_EQ(c.text, g_seen.text) << name;
            EXPECT_EQ(&g_user, g_seen.user) << name;
            EXPECT_NE(std::this_thread::get_id(), g_seen.thread) << name;
        }
        // MBIM events are acknowledged with TLV 0 = 0; the host link event is not.
        auto acks = mipc_sim::replies();
        ASSERT_EQ(c.push.event == E::kHotplug ? 0u : 1u, acks.size()) << name;
        if (!acks.empty()) {
            ASSERT_EQ(1u, acks[0].tlvs.size());
            EXPECT_EQ(std::vector<uint8_t>(4, 0), acks[0].tlvs[0].value) << name;
        }
        if (c.message != nullptr) {
            EXPECT_TRUE(syslog_contains(c.message)) << name;
        }
    }
}

TEST_F(Indication, EventsMissingAValueAreReportedAndNeitherPassedOnNorAcknowledged) {
    using E = Event;
    constexpr unsigned kNo1 = mipc_sim::kOmitValue1, kNo2 = mipc_sim::kOmitValue2;
    const struct {
        Push push;
        const char *message;
    } cases[] = {
        {{E::kOpen, 1, 0, "", kNo1}, "mbim_open_status_indicate_cb val_ptr get failed \n"},
        {{E::kSlot, 1, 1, "", kNo1}, "val_ptr_1 get failed \n"},
        {{E::kSlot, 1, 1, "", kNo2}, "val_ptr_2 get failed \n"},
        {{E::kPin, 1, 0, "", kNo1}, "mbim_simpin_status_indicate_cb val_ptr get failed \n"},
        {{E::kConnect, 1, 0, "a", kNo1}, "connect_status get failed \n"},
        {{E::kConnect, 1, 0, "a", kNo2}, "apn get failed \n"},
        {{E::kLpa, 1, 0, "", kNo1}, "]-lpa_auth_server_apdu info get failed \n"},
    };
    subscribe_all();
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        EXPECT_NE(0, push(c.push)) << c.message;
        EXPECT_TRUE(syslog_contains(c.message)) << c.message;
    }
    // A short value is no value: the PIN record must be whole.
    uint8_t short_pin[4] = {1, '1', '2', '3'};
    EXPECT_NE(0, mipc_sim::deliver_command(mipc_sim::kMbimPinStatusInd,
                                           {mipc_sim::tlv_bytes(256, short_pin, 4)}));
    // What a confused modem library could hand over.
    EXPECT_NE(MIPC_RESULT_SUCCESS, nkw_pal_mbim_open_status_indicate_cb(nullptr, nullptr));
    nkw_pal_hotplug_status_indicate_cb(nullptr, nullptr);
    EXPECT_TRUE(syslog_contains("cause=255 \n"));
    EXPECT_EQ(0, g_seen.calls);
    EXPECT_TRUE(mipc_sim::replies().empty());
}

TEST_F(Indication, OnlySubscriptionRecordsOutliveTheCallAndRefusalsFreeTheirs) {
    subscribe_all();  // the events test proves each reached its message id
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

    // A refused registration frees its record and names itself.
    nkw::test::syslog_clear();
    mipc_sim::fail_next("mipc_msg_register_ind_api", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(-1, nkw_pal_hotplug_status_indication_register(On::hotplug, nullptr));
    mipc_sim::fail_next("mipc_msg_register_cmd_api", mipc_sim::return_value(MIPC_RESULT_FAILURE));
    EXPECT_EQ(-1, nkw_pal_mbim_simpin_status_indication_register(On::pin, nullptr));
    EXPECT_TRUE(syslog_contains("]-hotplug_status_indication_register failed \n"));
    EXPECT_TRUE(syslog_contains("]-mbim_simpin_status_indication_register failed \n"));
    EXPECT_TRUE(nkw::test::allocations_balanced());
}

}  // namespace
