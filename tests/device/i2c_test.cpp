// I2C bus access: configuration checks, transfers on the simulated bus,
// the interrupt thread fed from a netlink socket of the test, and close.
#include <dirent.h>
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

extern "C" {
void nkw_pal_sandbox_i2c_reset(void);
void nkw_pal_sandbox_i2c_set_present(int present);
int nkw_pal_sandbox_i2c_add_slave(uint16_t address, int ten_bit);
uint8_t *nkw_pal_sandbox_i2c_registers(uint16_t address, int ten_bit);
void nkw_pal_sandbox_i2c_fail_next(int kind, int err);
void nkw_pal_sandbox_i2c_yank(int restore);
int nkw_pal_sandbox_i2c_transfers(void);
int nkw_pal_sandbox_i2c_last_tenbit(void);
uint32_t nkw_pal_sandbox_i2c_mail_port(void);
}

namespace {

constexpr int kFailSlave = 0, kFailTenBit = 1, kFailTransfer = 2;

std::atomic<int> g_irqs{0};
void count_irq() {
    g_irqs.fetch_add(1);
}

int threads() {
    int n = 0;
    DIR *dir = opendir("/proc/self/task");
    while (dirent *e = readdir(dir)) n += e->d_name[0] != '.';
    closedir(dir);
    return n;
}

// Sends one message to the library's mail socket, as the kernel driver does.
void post_irq(const std::string &text) {
    int fd = socket(AF_NETLINK, SOCK_RAW, NETLINK_USERSOCK);
    ASSERT_GE(fd, 0);
    std::vector<char> message(NLMSG_HDRLEN + text.size() + 1, 0);
    auto *header = reinterpret_cast<nlmsghdr *>(message.data());
    header->nlmsg_len = static_cast<uint32_t>(message.size());
    std::memcpy(message.data() + NLMSG_HDRLEN, text.c_str(), text.size());
    sockaddr_nl to{};
    to.nl_family = AF_NETLINK;
    to.nl_pid = nkw_pal_sandbox_i2c_mail_port();
    ASSERT_EQ(static_cast<ssize_t>(message.size()),
              sendto(fd, message.data(), message.size(), 0, reinterpret_cast<sockaddr *>(&to),
                     sizeof to));
    close(fd);
}

// Waits (bounded) until the callback has run `n` times.
bool irqs_reach(int n) {
    for (int i = 0; i < 2000 && g_irqs.load() < n; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return g_irqs.load() >= n;
}

// The interrupt channel is a netlink user socket; emulators such as
// qemu-user translate only a few netlink protocols and refuse this one.
bool netlink_user_sockets_work() {
    int fd = socket(AF_NETLINK, SOCK_RAW, NETLINK_USERSOCK);
    if (fd < 0) return false;
    close(fd);
    return true;
}

class I2c : public testing::Test {
   protected:
    void SetUp() override {
        if (!netlink_user_sockets_work()) {
            GTEST_SKIP() << "netlink user sockets are refused here (" << std::strerror(errno)
                         << "), as under qemu-user: the I2C handle cannot open";
        }
        nkw_pal_sandbox_i2c_reset();
        g_irqs = 0;
    }
    void TearDown() override { nkw_pal_sandbox_i2c_reset(); }
};

TEST_F(I2c, OpenChecksTheConfigurationInOrder) {
    const struct {
        nkw_pal_i2c_cfg cfg;
        bool callback;
        bool opens;
        const char *log;
    } cases[] = {
        {{2, 0, 0x50, 0}, true, false, "i2c_controller_mode is unsupport \n"},
        {{2, 3, 0x50, 2}, true, false, "i2c_controller_mode is unsupport \n"},
        {{0, 3, 0x50, 0}, true, false, "i2c_bit_rate is unsupport \n"},
        {{0, 2, 0x50, 2}, true, false, "i2c_address_width is unsupport \n"},
        {{1, 0, 0x50, 0}, false, false, "i2c device mode is master,cb can not NULL \n"},
        {{0, 0, 0x50, 0}, false, true, "i2c open success \n"},
        {{1, 1, 0x50, 0}, true, true, "i2c open success \n"},
        {{1, 2, 0x50, 1}, true, true, "i2c open success \n"},
        // The slave address is set before 10-bit mode, so the kernel holds
        // a 10-bit address above 0x7F to the 7-bit range.
        {{1, 0, 0x1A0, 1}, true, false, "i2c ioctl set slave addr fail -1 \n"},
    };
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        nkw_pal_i2c_handle *h = nkw_pal_i2c_open(&c.cfg, c.callback ? count_irq : nullptr);
        EXPECT_EQ(c.opens, h != nullptr) << c.log;
        EXPECT_TRUE(syslog_contains(c.log)) << c.log;
        if (h != nullptr) {
            EXPECT_EQ(static_cast<int>(c.cfg.i2c_address_width), nkw_pal_sandbox_i2c_last_tenbit());
            EXPECT_EQ(0, nkw_pal_i2c_close(h));
        }
    }
    EXPECT_EQ(nullptr, nkw_pal_i2c_open(nullptr, count_irq));
    EXPECT_TRUE(syslog_contains("p_cfg is NULL \n"));
}

TEST_F(I2c, OpenReleasesWhatItHeldWhenAStepFails) {
    const nkw_pal_i2c_cfg cfg{1, 0, 0x50, 0};
    const int before = threads();
    nkw_pal_sandbox_i2c_set_present(0);
    EXPECT_EQ(nullptr, nkw_pal_i2c_open(&cfg, count_irq));
    EXPECT_TRUE(syslog_contains("i2c open fail, i2c_fd = -1 \n"));
    nkw_pal_sandbox_i2c_set_present(1);
    nkw_pal_sandbox_i2c_fail_next(kFailTenBit, EIO);
    EXPECT_EQ(nullptr, nkw_pal_i2c_open(&cfg, count_irq));
    EXPECT_TRUE(syslog_contains("i2c ioctl set address_width fail -1 \n"));
    nkw_pal_sandbox_i2c_fail_next(kFailSlave, EBUSY);
    EXPECT_EQ(nullptr, nkw_pal_i2c_open(&cfg, count_irq));
    // A second handle cannot bind the same mail port id.
    nkw_pal_i2c_handle *first = nkw_pal_i2c_open(&cfg, count_irq);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(nullptr, nkw_pal_i2c_open(&cfg, count_irq));
    EXPECT_TRUE(syslog_contains("i2c socket bind failed \n"));
    EXPECT_TRUE(syslog_contains("i2c mail create failed -1 \n"));
    EXPECT_EQ(0, nkw_pal_i2c_close(first));
    EXPECT_EQ(before, threads());
    int32_t fd = 0;
    EXPECT_EQ(-1, nkw_pal_i2c_mail_create(nullptr));
    EXPECT_TRUE(syslog_contains("i2c mail is NULL \n"));
    ASSERT_EQ(0, nkw_pal_i2c_mail_create(&fd));
    close(fd);
}

TEST_F(I2c, TransfersReachTheSlaveAndAreBoundedAt5121) {
    ASSERT_EQ(0, nkw_pal_sandbox_i2c_add_slave(0x50, 0));
    const nkw_pal_i2c_cfg cfg{0, 0, 0x50, 0};
    nkw_pal_i2c_handle *h = nkw_pal_i2c_open(&cfg, nullptr);
    ASSERT_NE(nullptr, h);
    const uint8_t write[] = {0x10, 'a', 'b', 'c'};  // register pointer, then data
    EXPECT_EQ(0, nkw_pal_i2c_writeBuff(h, write, sizeof write));
    EXPECT_EQ(0, std::memcmp(nkw_pal_sandbox_i2c_registers(0x50, 0) + 0x10, "abc", 3));
    EXPECT_EQ(0, nkw_pal_i2c_writeBuff(h, write, 1));
    uint8_t read[3] = {};
    EXPECT_EQ(0, nkw_pal_i2c_readBuff(h, read, sizeof read));
    EXPECT_EQ(0, std::memcmp(read, "abc", 3));

    std::vector<uint8_t> big(5122, 0);
    const struct {
        nkw_pal_i2c_handle *handle;
        uint8_t *buf;
        uint32_t len;
        int fail;  // errno of a failing transfer, or 0
        int read_status, write_status;
    } cases[] = {
        {h, big.data(), 5121, 0, 0, 0},       {h, big.data(), 0, 0, 0, 0},
        {h, big.data(), 5122, 0, 1402, 1402}, {nullptr, big.data(), 1, 0, 1402, 1402},
        {h, nullptr, 1, 0, 1402, 1402},       {h, big.data(), 1, EREMOTEIO, 1405, 1406},
    };
    for (const auto &c : cases) {
        nkw_pal_sandbox_i2c_fail_next(kFailTransfer, c.fail);
        EXPECT_EQ(c.read_status, nkw_pal_i2c_readBuff(c.handle, c.buf, c.len)) << c.len;
        nkw_pal_sandbox_i2c_fail_next(kFailTransfer, c.fail);
        EXPECT_EQ(c.write_status, nkw_pal_i2c_writeBuff(c.handle, c.buf, c.len)) << c.len;
    }
    EXPECT_TRUE(syslog_contains("i2c buf len is too long! \n"));
    EXPECT_TRUE(syslog_contains("ioctl returned -1 \n"));
    EXPECT_EQ(0, nkw_pal_i2c_close(h));

    // Nobody answers at another address.
    const nkw_pal_i2c_cfg absent{0, 0, 0x51, 0};
    h = nkw_pal_i2c_open(&absent, nullptr);
    ASSERT_NE(nullptr, h);
    EXPECT_EQ(1405, nkw_pal_i2c_readBuff(h, read, 1));
    EXPECT_EQ(0, nkw_pal_i2c_close(h));
}

TEST_F(I2c, InterruptThreadCallsBackForEveryMessageAlongsideTransfers) {
    ASSERT_EQ(0, nkw_pal_sandbox_i2c_add_slave(0x22, 0));
    const nkw_pal_i2c_cfg cfg{1, 2, 0x22, 0};
    const int before = threads();
    nkw_pal_i2c_handle *h = nkw_pal_i2c_open(&cfg, count_irq);
    ASSERT_NE(nullptr, h);
    EXPECT_EQ(before + 1, threads());

    std::thread transfers([h] {
        uint8_t buf[8] = {0, 1, 2, 3, 4, 5, 6, 7};
        for (int i = 0; i < 50; ++i) {
            EXPECT_EQ(0, nkw_pal_i2c_writeBuff(h, buf, sizeof buf));
            EXPECT_EQ(0, nkw_pal_i2c_readBuff(h, buf, sizeof buf));
        }
    });
    for (int i = 0; i < 5; ++i) post_irq("gpio " + std::to_string(i));
    transfers.join();
    ASSERT_TRUE(irqs_reach(5));
    EXPECT_TRUE(syslog_contains("i2c irq receive kernel message: gpio 4 \n"));
    EXPECT_EQ(100, nkw_pal_sandbox_i2c_transfers());

    EXPECT_EQ(0, nkw_pal_i2c_close(h));  // cancels the thread blocked in its receive
    EXPECT_EQ(before, threads());
    const int after_close = g_irqs.load();
    EXPECT_EQ(5, after_close);
    EXPECT_TRUE(syslog_contains("i2c_close success \n"));
}

TEST_F(I2c, CloseFailsWith1404WhenTheDeviceWasClosedBehindItsBack) {
    const nkw_pal_i2c_cfg cfg{1, 0, 0x50, 0};
    nkw_pal_i2c_handle *h = nkw_pal_i2c_open(&cfg, count_irq);
    ASSERT_NE(nullptr, h);
    nkw_pal_sandbox_i2c_yank(0);
    EXPECT_EQ(1404, nkw_pal_i2c_close(h));
    EXPECT_TRUE(syslog_contains("i2c close failed \n"));
    // The handle stays usable for another close once the device is back.
    nkw_pal_sandbox_i2c_yank(1);
    EXPECT_EQ(0, nkw_pal_i2c_close(h));
    EXPECT_EQ(1402, nkw_pal_i2c_close(nullptr));
}

}  // namespace
