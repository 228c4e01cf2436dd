// The flash region on the "mddata_bak" partition: statuses, log lines and
// the bytes it leaves on the device.
#include <string>

#include "storage/mtd_device.h"
#include "support/syslog_capture.h"

namespace nkw::test {
namespace {

constexpr int kDevice = 9;
constexpr uint32_t kBlock = 0x1000;
constexpr uint32_t kSize = 8 * kBlock;

using FlashRegionTest = FlashTest;

bool logged(const std::string &function, const std::string &text) {
    for (const SyslogRecord &r : syslog_records()) {
        if (r.text.find("[   FLASH] [" + function + ":") != std::string::npos &&
            r.text.find("]-" + text) != std::string::npos) {
            return true;
        }
    }
    return false;
}

TEST_F(FlashRegionTest, InitScansThePartitionList) {
    EXPECT_EQ(nkw_pal_flash_init(), NKW_PAL_FLASH_SCAN_ERROR) << "no /proc/mtd";
    EXPECT_TRUE(logged("nkw_pal_flash_init", "scan partitions error. \n"));
    write_proc_mtd("");
    EXPECT_EQ(nkw_pal_flash_init(), NKW_PAL_OK) << "no partitions is no error";
    write_proc_mtd(proc_mtd_line(kDevice, kSize, kBlock, "mddata_bak"));
    EXPECT_EQ(nkw_pal_flash_init(), NKW_PAL_OK);
    EXPECT_NE(nkw_mtd_find_partition_by_name("mddata_bak"), nullptr);
}

TEST_F(FlashRegionTest, CallsBeforeInitFindNoPartition) {
    ASSERT_EQ(nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1), 0);
    write_proc_mtd(proc_mtd_line(kDevice, kSize, kBlock, "mddata_bak"));
    char buf[16] = {};
    EXPECT_EQ(nkw_pal_flash_read(0, buf, sizeof buf), NKW_PAL_FLASH_NO_PARTITION);
    EXPECT_TRUE(logged("nkw_pal_flash_read", "Can't find part \n"));
    EXPECT_EQ(nkw_pal_flash_write(0, buf, sizeof buf), NKW_PAL_FLASH_NO_PARTITION);
    EXPECT_TRUE(logged("nkw_pal_flash_write", "Can't find part \n"));
    EXPECT_EQ(nkw_pal_flash_erase(0, sizeof buf), NKW_PAL_FLASH_NO_PARTITION);
    EXPECT_TRUE(logged("nkw_pal_flash_erase", "Can't find part. \n"));
}

enum Op { kRead, kWrite, kErase };

struct RegionCase {
    const char *what;
    Op op;
    uint32_t offset;
    uint32_t len;
    bool null_data;
    int fault;  // on block 0, or -1
    int32_t status;
    const char *log;  // after "]-"; empty: nothing logged
};

TEST_F(FlashRegionTest, RangesGiveTheirStatusesAndMessages) {
    const uint32_t wrapping = 0xFFFFFFF0;  // with offset 0x100 the sum is 0xF0
    // clang-format off
    const RegionCase cases[] = {
        {"read", kRead, 0x10, 0x20, false, -1, NKW_PAL_OK, ""},
        {"read without data", kRead, 0x10, 0x20, true, -1, NKW_PAL_FLASH_PARAM_ERROR,
         "parameter error \n"},
        {"read past the end", kRead, 0x10, kSize, false, -1, NKW_PAL_FLASH_RANGE_ERROR,
         "parameter data or size error \n"},
        {"read from past the end", kRead, kSize + 1, 0, false, -1, NKW_PAL_FLASH_RANGE_ERROR,
         "parameter data or size error \n"},
        {"read nothing at the end", kRead, kSize, 0, false, -1, NKW_PAL_OK, ""},
        {"read a wrapping range", kRead, 0x100, wrapping, false, -1, NKW_PAL_FLASH_READ_ERROR,
         "form mddata_bak addr:100 read data error \n"},
        {"read failing", kRead, 0x10, 0x20, false, NKW_SIM_FLASH_ECC_STATS_FAILURE,
         NKW_PAL_FLASH_READ_ERROR, "form mddata_bak addr:10 read data error \n"},
        {"write", kWrite, 0x1010, 0x20, false, -1, NKW_PAL_OK, ""},
        {"write without data", kWrite, 0x10, 0x20, true, -1, NKW_PAL_FLASH_PARAM_ERROR,
         "parameter error \n"},
        {"write past the end", kWrite, kSize - 1, 2, false, -1, NKW_PAL_FLASH_RANGE_ERROR,
         "parameter data or size error \n"},
        {"write a wrapping range", kWrite, 0x100, wrapping, false, -1, NKW_PAL_FLASH_WRITE_ERROR,
         "write data err.("},
        {"write near the end", kWrite, 0x4010, 0x10, false, -1, NKW_PAL_FLASH_WRITE_ERROR,
         "write data err.(Invalid argument) to mddata_bak addr:4010 \n"},
        {"write with the erase failing", kWrite, 0x10, 0x10, false, NKW_SIM_FLASH_ERASE_FAILURE,
         NKW_PAL_FLASH_WRITE_ERROR, "write data err.(Input/output error) to mddata_bak addr:10 \n"},
        {"erase", kErase, 0x10, 0x20, false, -1, NKW_PAL_OK, ""},
        {"erase past the end", kErase, 0x10, kSize, false, -1, NKW_PAL_FLASH_RANGE_ERROR,
         "parameter data or size error \n"},
        {"erase a wrapping range", kErase, 0x100, wrapping, false, -1, NKW_PAL_FLASH_ERASE_ERROR,
         "erase block error. \n"},
    };
    // clang-format on
    ASSERT_NO_FATAL_FAILURE(install({{kDevice, kSize, kBlock, "mddata_bak"}}));
    ASSERT_EQ(nkw_pal_flash_init(), NKW_PAL_OK);
    const Bytes stored = pattern(kSize, 17);
    for (const RegionCase &c : cases) {
        nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1);
        preload(kDevice, stored);
        if (c.fault >= 0) nkw_pal_sim_flash_inject(kDevice, 0, c.fault, -1);
        syslog_clear();
        Bytes buf = c.op == kWrite ? pattern(0x40, c.offset) : Bytes(0x40, 0);
        void *data = c.null_data ? nullptr : buf.data();
        testing::internal::CaptureStderr();
        int32_t status = c.op == kRead    ? nkw_pal_flash_read(c.offset, data, c.len)
                         : c.op == kWrite ? nkw_pal_flash_write(c.offset, data, c.len)
                                          : nkw_pal_flash_erase(c.offset, c.len);
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(status, c.status) << c.what;
        static const char *const kFunctions[] = {"nkw_pal_flash_read", "nkw_pal_flash_write",
                                                 "nkw_pal_flash_erase"};
        if (c.log[0] != '\0') {
            EXPECT_TRUE(logged(kFunctions[c.op], c.log)) << c.what;
        } else {
            EXPECT_TRUE(syslog_records().empty()) << c.what;
        }

        Bytes expected = stored;
        if (c.op == kRead && status == NKW_PAL_OK) {
            EXPECT_EQ(slice(buf, 0, c.len), slice(stored, c.offset, c.len)) << c.what;
        } else if (c.op == kWrite && status == NKW_PAL_OK) {
            std::copy(buf.begin(), buf.begin() + c.len, expected.begin() + c.offset);
            // The erase ran to the rounded end offset from the first block.
            std::fill(expected.begin() + 2 * kBlock, expected.begin() + 3 * kBlock, 0xFF);
        } else if (c.op == kErase && status == NKW_PAL_OK) {
            std::fill(expected.begin() + c.offset, expected.begin() + c.offset + c.len, 0xFF);
        }
        EXPECT_TRUE(image(kDevice, kSize) == expected) << c.what;
    }
}

}  // namespace
}  // namespace nkw::test
