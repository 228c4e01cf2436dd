// AGPS modes: the adaptor's command and reply, and the two EPO files.
#include <gtest/gtest.h>

#include <string>

#include "location/gnss_test_util.h"
#include "nkw_pal.h"
#include "support/sandbox.h"
#include "support/syslog_capture.h"

using mipc_sim::AgpsReply;
using nkw::test::Sandbox;
using nkw::test::syslog_contains;

namespace {

constexpr char kMnlProp[] = "/etc/gnss/mnl.prop";
constexpr char kGpsConf[] = "/etc/gnss/gps.conf";

mipc_sim::GnssAdaptorScript replying(AgpsReply reply) {
    mipc_sim::GnssAdaptorScript script;
    script.agps = reply;
    return script;
}

// The configuration folder as it exists on the module, with stale settings.
void make_config_files() {
    Sandbox::current().write_file(kMnlProp, "EPO_enabled=2\nSTALE=1\n");
    Sandbox::current().write_file(kGpsConf, "EPO_ENABLE=1\nSTALE=1\n");
}

struct ModeCase {
    unsigned int mode;
    const char *command;
    const char *mnl_prop;
    const char *gps_conf;
};

TEST(AgpsConfig, EachModeSetsTheAdaptorAndBothFiles) {
    const ModeCase cases[] = {
        {0, "AT+ELCSAGPSMODE=,,,,,,,0", "EPO_enabled=0", "EPO_ENABLE=0"},
        {1, "AT+ELCSAGPSMODE=,,,,,,,1", "EPO_enabled=0", "EPO_ENABLE=0"},
        {2, "AT+ELCSAGPSMODE=,,,,,,,0", "EPO_enabled=2", "EPO_ENABLE=1"},
        {3, "AT+ELCSAGPSMODE=,,,,,,,0", "EPO_enabled=3", "EPO_ENABLE=0"},
        {4, "AT+ELCSAGPSMODE=,,,,,,,0", "EPO_enabled=1", "EPO_ENABLE=1"},
        {5, "AT+ELCSAGPSMODE=,,,,,,,1", "EPO_enabled=2", "EPO_ENABLE=1"},
        {6, "AT+ELCSAGPSMODE=,,,,,,,1", "EPO_enabled=1", "EPO_ENABLE=1"},
    };
    make_config_files();
    ASSERT_TRUE(nkw::test::start_adaptor(replying(AgpsReply::kOk)));
    size_t commands = 0;
    for (const ModeCase &c : cases) {
        nkw::test::syslog_clear();
        EXPECT_EQ(0, nkw_pal_agps_config(c.mode)) << c.mode;
        const std::vector<std::string> got = mipc_sim::gnss_adaptor_commands(++commands);
        ASSERT_EQ(commands, got.size());
        EXPECT_EQ(c.command, got.back()) << c.mode;
        EXPECT_EQ(c.mnl_prop, Sandbox::current().read_file(kMnlProp)) << c.mode;
        EXPECT_EQ(c.gps_conf, Sandbox::current().read_file(kGpsConf)) << c.mode;
        EXPECT_TRUE(syslog_contains("]- nkw_pal_agps_config success \n")) << c.mode;
        EXPECT_TRUE(
            syslog_contains(std::string("enable:1 disable:0. current:") + c.command[23] + "\n \n"))
            << c.mode;
    }
}

TEST(AgpsConfig, ModesFrom7AreRefusedUntouched) {
    make_config_files();
    ASSERT_TRUE(nkw::test::start_adaptor(replying(AgpsReply::kOk)));
    for (unsigned int mode : {7u, 8u, 0xFFFFFFFFu}) {
        EXPECT_EQ(-1, nkw_pal_agps_config(mode)) << mode;
    }
    EXPECT_EQ(3u, nkw::test::syslog_matching("]-agpsCFGmode parameter error \n").size());
    EXPECT_EQ(0, mipc_sim::gnss_adaptor_connections());
    EXPECT_EQ("EPO_enabled=2\nSTALE=1\n", Sandbox::current().read_file(kMnlProp));
}

struct ReplyCase {
    const char *name;
    AgpsReply reply;
    int status;
    const char *message;
};

TEST(AgpsEnable, RepliesOfTheAdaptor) {
    const ReplyCase cases[] = {
        {"OK", AgpsReply::kOk, 0, "]-send cmd return ok\n \n"},
        {"OK split over two reads", AgpsReply::kSplitOk, 0, "]-[gpio4]tmp_buffer: \r\nOK\r\n\n \n"},
        {"hang-up without a word", AgpsReply::kNothing, 0, "]-fail to read, g_gnssadp_fd is "},
        {"ERROR", AgpsReply::kError, -1, "]-send cmd return error.\n \n"},
        {"half a reply, then a hang-up", AgpsReply::kPartialHangUp, -1,
         "]-2nd read fail, size is 0\n \n"},
    };
    for (const ReplyCase &c : cases) {
        nkw::test::syslog_clear();
        ASSERT_TRUE(nkw::test::start_adaptor(replying(c.reply)));
        EXPECT_EQ(c.status, nkw_pal_agps_enable(1)) << c.name;
        EXPECT_TRUE(syslog_contains(c.message)) << c.name;
        EXPECT_EQ(c.status == 0,
                  syslog_contains("]-agps config success enable:1 disable:0. current:1\n \n"))
            << c.name;
        mipc_sim::stop_gnss_adaptor();
    }
}

TEST(AgpsConfig, BothStepsRunWhateverTheOtherGives) {
    // No configuration folder: the adaptor is still told.
    ASSERT_TRUE(nkw::test::start_adaptor(replying(AgpsReply::kOk)));
    EXPECT_EQ(-1, nkw_pal_agps_config(5));
    EXPECT_EQ(1u, mipc_sim::gnss_adaptor_commands(1).size());
    EXPECT_TRUE(syslog_contains("]-open /etc/gnss/mnl.prop error \n"));
    EXPECT_TRUE(syslog_contains("]-write to /etc/gnss/mnl.prop error. \n"));
    EXPECT_TRUE(syslog_contains("]-epo qepo config fail.\n \n"));

    // No adaptor: the mode command fails, the files are written all the same.
    mipc_sim::stop_gnss_adaptor();
    nkw::test::syslog_clear();
    make_config_files();
    EXPECT_EQ(-1, nkw_pal_agps_config(3));
    EXPECT_EQ("EPO_enabled=3", Sandbox::current().read_file(kMnlProp));
    EXPECT_EQ("EPO_ENABLE=0", Sandbox::current().read_file(kGpsConf));
    EXPECT_TRUE(
        syslog_contains("]-socket_tcp_client_connect_local() connect() failed, abstract=1"));
    EXPECT_TRUE(syslog_contains("]-socket_tcp_client_connect_local fail, g_gnssadp_fd = -1 \n \n"));
    EXPECT_TRUE(syslog_contains("]- nkw_pal_agps_config fail \n"));
}

}  // namespace
