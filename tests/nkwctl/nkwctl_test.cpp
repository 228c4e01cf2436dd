// nkwctl against the simulated modem's defaults, run as its own process in
// the test's sandbox (the sandboxed library relocates every host path).
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "run.h"
#include "support/sandbox.h"

namespace {

using nkw::test::nkwctl;
using nkw::test::Outcome;
using nkw::test::slurp;

TEST(Nkwctl, KeyLinesOfEachGroup) {
    const struct {
        const char *args;
        int status;
        const char *out;
        const char *err;
    } cases[] = {
        {"-K sim status", 0,
         "sim.0.status : 0\nsim.1.status : 5\nsim.slot : 0\nsim.imsi : 001010123456789\n"
         "sim.iccid : 89860012345678901234\nsim.eid : 89049032000001000000000000000017\n"
         "sim.mcc : 001\nsim.mnc : 01\n",
         ""},
        {"-K net", 0,
         "net.operator : Test Network\nnet.mcc : 1\nnet.mnc : 1\nnet.cell_id : 1715004\n"
         "net.lac : 4660\nnet.dataclass : 1\nnet.rssi : -70\nnet.radio : 1\nnet.sbp_id : "
         "8\nnet.ps_state : 1\n",
         ""},
        {"-K net apn", 0,
         "net.apn.name : internet\nnet.apn.username : \nnet.apn.password : \nnet.apn.pdp_type : 0\n"
         "net.apn.roaming_pdp_type : 0\nnet.apn.auth_type : 0\n",
         ""},
        {"-K sim slot", 0, "sim.slot : 0\n", ""},
        {"-K net detach", 0, "", ""},
        {"-K sim pin 1234", 0, "", ""},
        {"-K sim pin 0000", 1, "", "sim pin failed: status -1: the SIM refused the PIN\n"},
        {"-K sim slot 1", 0, "", ""},
        {"-K net radio 0", 0, "", ""},
        {"-K at ATI", 0, "at.command : ATI\nat.response : OK\n", ""},
        {"-K at --async ATI", 0, "at.command : ATI\nat.response : OK\n", ""},
        {"-K device", 0,
         "device.imei : 350000000000017\ndevice.model : QV770K-XB\ndevice.chip_type : NKW5G01\n"
         "device.firmware : NKW_FW_1.0.0\ndevice.pidvid : 1d4b7701\n"
         "device.manufacture_date : 20230401\ndevice.sim_cd : 2\n",
         ""},
        {"-K codec bcd 21436587f9", 0, "codec.text : 123456789\n", ""},
        {"-K codec base64 aGVsbG8=", 0, "codec.length : 5\ncodec.hex : 68656C6C6F\n", ""},
        {"-K codec 7bit E8329BFD06", 0, "codec.septets : 5\ncodec.hex : 68656C6C6F\n", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args);
        const Outcome run = nkwctl(c.args);
        EXPECT_EQ(c.status, run.status);
        EXPECT_EQ(c.out, run.out);
        EXPECT_EQ(c.err, run.err);
    }
}

TEST(Nkwctl, NvItemWrittenThenReadBackInTheSandbox) {
    nkw::test::Sandbox::current().write_file("/data/.keep", "");  // the module's /data exists
    EXPECT_NE(std::string::npos, nkwctl("-K nv list")
                                     .out.find("nv.1.lid : 57853\nnv.1.position : 1\nnv.2.lid : 0\n"
                                               "nv.2.position : 0\nnv.2.file : test.txt\n"));
    const struct {
        const char *args;
        const char *out;
    } steps[] = {
        {"-K nv exists 2", "nv.2.exists : 0\n"},        {"-K nv write 2 --text hello", ""},
        {"-K nv exists 2", "nv.2.exists : 1\n"},        {"-K nv size 2", "nv.2.size : 5\n"},
        {"-K nv read 2 --text", "nv.2.text : hello\n"}, {"-K nv write 2 00ff10", ""},
        {"-K nv read 2", "nv.2.hex : 00FF10\n"},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(step.args);
        const Outcome run = nkwctl(step.args);
        EXPECT_EQ(0, run.status) << run.err;
        EXPECT_EQ(step.out, run.out);
    }
    EXPECT_EQ(std::string("\x00\xff\x10", 3),
              nkw::test::Sandbox::current().read_file("/data/quarn/test.txt"));
}

TEST(Nkwctl, TrafficCountersOfAnInterface) {
    const nkw::test::Sandbox &box = nkw::test::Sandbox::current();
    box.write_file("/sys/devices/virtual/net/ccmni0/statistics/rx_bytes", "4294967295\n");
    box.write_file("/sys/devices/virtual/net/ccmni0/statistics/tx_bytes", "1234\n");
    const Outcome run = nkwctl("-J data traffic ccmni0");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(
        "{\n  \"data\": {\n    \"ccmni0\": {\n      \"rx_bytes\": 4294967295,\n"
        "      \"tx_bytes\": 1234\n    }\n  }\n}\n",
        run.out);
    EXPECT_EQ(1, nkwctl("data traffic ccmni1").status);
}

TEST(Nkwctl, MonitorEndsCleanlyOnItsTimeOrAnInterrupt) {
    // Indication subscriptions last for the process by design (there is no
    // unsubscription), so a leak checker would report them at exit.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    EXPECT_EQ(0, nkwctl("-J monitor --seconds 1").status);
    nkw::test::Background monitor("monitor");
    ASSERT_TRUE(monitor.wait_for_err("monitor: ready")) << monitor.err();
    EXPECT_EQ(0, monitor.interrupt());
    EXPECT_EQ("", monitor.out());
}

TEST(Nkwctl, HeldDataCallIsReleasedOnInterrupt) {
    nkw::test::Background call("-K data connect internet --hold");
    ASSERT_TRUE(call.wait_for_err("holding call 1")) << call.err();
    EXPECT_NE(std::string::npos, call.out().find("data.call_id : 1\n")) << call.out();
    EXPECT_EQ(0, call.interrupt());
    EXPECT_NE(std::string::npos, call.err().find("data connect: call 1 released")) << call.err();
}

TEST(Nkwctl, PeopleSeeAlignedColumns) {
    EXPECT_EQ(
        "sim.0.status  0\nsim.1.status  5\nsim.slot      0\nsim.imsi      ********\n"
        "sim.iccid     ********\nsim.eid       ********\nsim.mcc       001\nsim.mnc       01\n",
        nkwctl("--hide-personal sim status").out);
    EXPECT_EQ("codec.text  123456789\n", nkwctl("codec bcd 21436587f9").out);
}

TEST(Nkwctl, JsonNestsTheDottedKeys) {
    const Outcome run = nkwctl("-J sim status");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(
        "{\n  \"sim\": {\n    \"0\": {\n      \"status\": 0\n    },\n    \"1\": {\n      "
        "\"status\": 5\n"
        "    },\n    \"eid\": \"89049032000001000000000000000017\",\n"
        "    \"iccid\": \"89860012345678901234\",\n    \"imsi\": \"001010123456789\",\n"
        "    \"mcc\": \"001\",\n    \"mnc\": \"01\",\n    \"slot\": 0\n  }\n}\n",
        run.out);
    const Outcome net = nkwctl("-J net");
    EXPECT_NE(std::string::npos, net.out.find("\"rssi\": -70"));
}

TEST(Nkwctl, HidePersonalMasksIdentityInEveryFormat) {
    const char *secrets[] = {"001010123456789", "89860012345678901234",
                             "89049032000001000000000000000017", "350000000000017"};
    for (const char *format : {"", "-K", "-J"}) {
        SCOPED_TRACE(format);
        const std::string out = nkwctl(std::string(format) + " --hide-personal sim status").out +
                                nkwctl(std::string(format) + " --hide-personal device").out;
        for (const char *secret : secrets) EXPECT_EQ(std::string::npos, out.find(secret)) << secret;
        EXPECT_NE(std::string::npos, out.find("********"));
        EXPECT_NE(std::string::npos, out.find("QV770K-XB"));  // not personal: kept
    }
}

TEST(Nkwctl, RefusedInputsExitWithOneAndAReason) {
    const struct {
        const char *args;
        const char *reason;
    } cases[] = {
        {"", "A subcommand is required"},
        {"bogus", "A subcommand is required"},
        {"-K -J sim status", "excludes"},
        {"sim slot 2", "SLOT"},
        {"net radio 7", "STATE"},
        {"sim pin", "PIN"},
        {"codec bcd 123", "codec failed: status -1: expected an even number of hex digits"},
        {"codec bcd zz", "codec failed: status -1: expected hex digits only"},
        {"codec bcd 1f", "codec bcd failed: status -1"},
        {"codec base64 abc", "codec base64 failed: status -1"},
        {"nv read 38", "nv read failed: status 710"},
        {"nv size 1", "nv size failed: status 714"},
        {"nv write 2 abc", "expected an even number of hex digits"},
        {"sms read 7", "sms read failed: status -1"},
        {"data connect", "APN"},
        {"data query 300", "ID"},
        {"data traffic", "IFNAME"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args);
        const Outcome run = nkwctl(c.args);
        EXPECT_EQ(1, run.status);
        EXPECT_NE(std::string::npos, run.err.find(c.reason)) << run.err;
        EXPECT_EQ("", run.out);
    }
    EXPECT_EQ(0, nkwctl("--help").status);
}

}  // namespace
