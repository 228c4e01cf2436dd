// Direct block reads and writes, and in-place writes and erases of byte
// ranges compared over the whole device image.
#include <string>

#include "storage/mtd_device.h"

namespace nkw::test {
namespace {

constexpr int kDevice = 6;
constexpr uint32_t kBlock = 0x1000;
constexpr uint32_t kSize = 8 * kBlock;

class BlockTest : public FlashTest {
   protected:
    void SetUp() override {
        FlashTest::SetUp();
        install({{kDevice, kSize, kBlock, "blocks"}});
        partition_ = nkw_mtd_find_partition_by_name("blocks");
        ASSERT_NE(partition_, nullptr);
        stored_ = pattern(kSize, 21);
        preload(kDevice, stored_);
    }

    const nkw_mtd_partition *partition_ = nullptr;
    Bytes stored_;
};

// The device after a successful in-place write of `data` (or erase, with
// 0xFF data): everything from the first touched block up to the rounded end
// offset is erased, then the touched blocks are written back.
Bytes rewritten(const Bytes &before, uint32_t offset, const Bytes &data) {
    const uint32_t start = offset / kBlock * kBlock;
    const uint32_t end = offset + static_cast<uint32_t>(data.size());
    const uint32_t erase_length = (end + kBlock - 1) / kBlock * kBlock;
    const uint32_t tail = kBlock - end % kBlock;
    Bytes after = before;
    std::fill(after.begin() + start, after.begin() + start + erase_length, 0xFF);
    std::copy(before.begin() + start, before.begin() + end + tail, after.begin() + start);
    std::copy(data.begin(), data.end(), after.begin() + offset);
    return after;
}

struct RangeCase {
    uint32_t offset;
    uint32_t len;
    int erase_failures;  // of the first touched block
    int result;          // of both nkw_mtd_write_block and nkw_mtd_erase_block
};

TEST_F(BlockTest, RangesKeepTheOtherBytesOfTheirBlocks) {
    // clang-format off
    const RangeCase cases[] = {
        {0x10, 0x20, 0, 0},
        {0x20, 0, 0, 0},
        {0, kBlock, 0, 0},             // tail: the whole next block, read and rewritten
        {0xFF0, 0x20, 0, 0},           // across two blocks
        {0x1010, 0x20, 0, 0},          // erases blocks 1 and 2, rewrites block 1 only
        {0x3000, 0x100, 0, 0},         // erases blocks 3 to 6
        {0, kSize - 0x10, 0, 0},
        {0x1100, 0x10, 1, 0},          // the erase is retried once
        {0x1100, 0x10, 2, -4},
        {0x4010, 0x10, 0, -4},         // the erase would run past the end
        {kSize - kBlock, kBlock, 0, -2},  // the tail block lies past the end
        {kSize - 0x100, 0x200, 0, -2},
        {0, kSize, 0, -2},
    };
    // clang-format on
    // Byte-writable (NOR-like) and page-programmed (NAND-like) devices: on
    // the latter no write may begin inside a page.
    for (const RangeCase &c : cases) {
        for (int variant = 0; variant < 4; ++variant) {
            const bool erase = variant & 1;
            const uint32_t write_size = variant & 2 ? 0x200 : 1;
            const std::string what = (erase ? "erase " : "write ") + std::to_string(c.offset) +
                                     "+" + std::to_string(c.len) + " page " +
                                     std::to_string(write_size);
            nkw_pal_sim_flash_create(kDevice, kSize, kBlock, write_size);
            preload(kDevice, stored_);
            nkw_pal_sim_flash_inject(kDevice, c.offset / kBlock, NKW_SIM_FLASH_ERASE_FAILURE,
                                     c.erase_failures);
            const Bytes data = erase ? Bytes(c.len, 0xFF) : pattern(c.len, c.offset + 1);
            testing::internal::CaptureStderr();
            const char *bytes = c.len == 0 ? "" : reinterpret_cast<const char *>(data.data());
            int result = erase ? nkw_mtd_erase_block(partition_, c.len, c.offset)
                               : nkw_mtd_write_block(partition_, bytes, c.len, c.offset);
            const std::string log = testing::internal::GetCapturedStderr();
            EXPECT_EQ(result, c.result) << what;
            if (c.erase_failures > 0) {
                EXPECT_EQ(log.rfind(erase ? "mtd: tolv_mtd_erase_block erase failure at 0x00001000 "
                                          : "mtd: erase failure at 0x00001000 ",
                                    0),
                          0u)
                    << what << log;
            }
            const Bytes expected = c.result == 0 ? rewritten(stored_, c.offset, data) : stored_;
            EXPECT_TRUE(image(kDevice, kSize) == expected) << what;
        }
    }
}

struct ReadCase {
    const char *what;
    int index;  // whole-block read when len < 0
    int len;
    int offset;
    int fault;  // on block 1, or -1
    int result;
};

TEST_F(BlockTest, DirectReadsReturnTheirCodes) {
    // clang-format off
    const ReadCase cases[] = {
        {"block 1", 1, -1, 0, -1, 0},
        {"last block", 7, -1, 0, -1, 0},
        {"block at the end", 8, -1, 0, -1, -5},
        {"block past the end", 9, -1, 0, -1, -3},
        {"negative block", -1, -1, 0, -1, -3},
        {"counters unreadable", 1, -1, 0, NKW_SIM_FLASH_ECC_STATS_FAILURE, -2},
        {"short read", 1, -1, 0, NKW_SIM_FLASH_SHORT_READ, -4},
        {"range", 0, 0x20, 0x1010, -1, 0},
        {"range to the end", 0, 0x100, kSize - 0x100, -1, 0},
        {"range past the end", 0, 0x101, kSize - 0x100, -1, -5},
        {"negative length", 0, -1, 0x10, -1, -5},
        {"negative offset", 0, 0x10, -1, -1, -3},
        {"short range read", 0, 0x20, 0x1010, NKW_SIM_FLASH_SHORT_READ, -4},
    };
    // clang-format on
    for (const ReadCase &c : cases) {
        nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1);
        preload(kDevice, stored_);
        if (c.fault >= 0) nkw_pal_sim_flash_inject(kDevice, 1, c.fault, 1);
        Bytes out(kBlock);
        char *buf = reinterpret_cast<char *>(out.data());
        testing::internal::CaptureStderr();
        int result = c.len < 0 && c.offset == 0 && c.index != 0
                         ? nkw_tolv_mtd_read_one_block(partition_, c.index, buf)
                         : nkw_mtd_read_block(partition_, buf, c.len, c.offset);
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(result, c.result) << c.what;
        if (result == 0 && c.len < 0) {
            EXPECT_EQ(out, slice(stored_, c.index * kBlock, kBlock)) << c.what;
        } else if (result == 0) {
            EXPECT_EQ(slice(out, 0, c.len), slice(stored_, c.offset, c.len)) << c.what;
        }
    }
}

struct WriteCase {
    const char *what;
    int index;
    int fault;  // on block 2, or -1
    int count;
    int result;
};

TEST_F(BlockTest, WholeBlockWritesEraseFirstAndReturnTheirCodes) {
    // clang-format off
    const WriteCase cases[] = {
        {"block 2", 2, -1, 0, 0},
        {"block at the end", 8, -1, 0, -4},
        {"block past the end", 9, -1, 0, -2},
        {"erase retried", 2, NKW_SIM_FLASH_ERASE_FAILURE, 1, 0},
        {"erase failing twice", 2, NKW_SIM_FLASH_ERASE_FAILURE, 2, -4},
        {"bad block", 2, NKW_SIM_FLASH_BAD_BLOCK, 0, -4},
    };
    // clang-format on
    const Bytes data = pattern(kBlock, 3);
    for (const WriteCase &c : cases) {
        nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1);
        preload(kDevice, stored_);
        if (c.fault >= 0) nkw_pal_sim_flash_inject(kDevice, 2, c.fault, c.count);
        testing::internal::CaptureStderr();
        EXPECT_EQ(nkw_mtd_write_one_block(partition_, c.index,
                                          reinterpret_cast<const char *>(data.data())),
                  c.result)
            << c.what;
        testing::internal::GetCapturedStderr();
        Bytes expected = stored_;
        if (c.result == 0) std::copy(data.begin(), data.end(), expected.begin() + 2 * kBlock);
        EXPECT_TRUE(image(kDevice, kSize) == expected) << c.what;
    }
}

TEST_F(BlockTest, RoundedSizesAndRefusedArguments) {
    // clang-format off
    const uint32_t sizes[][3] = {{0, 0, 0},
                                 {0, 1, kBlock},
                                 {kBlock - 1, 1, kBlock},
                                 {kBlock, 1, 2 * kBlock},
                                 {0x1010, 0x20, 2 * kBlock},
                                 {0xFFFFFFFF, 2, kBlock}};  // the sum wraps to 1
    // clang-format on
    for (const auto &s : sizes) {
        EXPECT_EQ(nkw_mtd_malloc_all_size(partition_, s[0], s[1]), s[2]) << s[0] << "+" << s[1];
    }
    nkw_mtd_partition absent{9, kSize, kBlock, nullptr};
    nkw_mtd_partition no_blocks{kDevice, kSize, 0, nullptr};
    char buf[kBlock];
    testing::internal::CaptureStderr();
    for (const nkw_mtd_partition *p : {&absent, &no_blocks}) {
        EXPECT_EQ(nkw_tolv_mtd_read_one_block(p, 0, buf), -1);
        EXPECT_EQ(nkw_mtd_read_block(p, buf, 1, 0), -1);
        EXPECT_EQ(nkw_mtd_write_one_block(p, 0, buf), -1);
        EXPECT_EQ(nkw_mtd_write_block(p, buf, 1, 0), -1);
        EXPECT_EQ(nkw_mtd_erase_block(p, 1, 0), -1);
        EXPECT_EQ(nkw_mtd_read_partition(p), nullptr);
        EXPECT_EQ(nkw_mtd_write_partition(p), nullptr);
    }
    EXPECT_EQ(nkw_mtd_read_block(partition_, nullptr, 1, 0), -1);
    EXPECT_EQ(nkw_mtd_write_block(partition_, nullptr, 1, 0), -1);
    EXPECT_EQ(nkw_mtd_malloc_all_size(nullptr, 0, 1), 0u);
    EXPECT_EQ(nkw_mtd_read_data(nullptr, buf, 1), -1);
    EXPECT_EQ(nkw_mtd_write_data(nullptr, buf, 1), -1);
    EXPECT_EQ(nkw_mtd_erase_blocks(nullptr, 1), -1);
    EXPECT_EQ(nkw_mtd_write_close(nullptr), -1);
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(image(kDevice, kSize) == stored_);
}

}  // namespace
}  // namespace nkw::test
