// Streaming reads and writes over a simulated device with faults on chosen
// blocks.
#include <errno.h>

#include <string>

#include "storage/mtd_device.h"

namespace nkw::test {
namespace {

constexpr int kDevice = 5;
constexpr uint32_t kBlock = 0x1000;
constexpr uint32_t kBlocks = 8;
constexpr uint32_t kSize = kBlock * kBlocks;

class StreamTest : public FlashTest {
   protected:
    void SetUp() override {
        FlashTest::SetUp();
        install({{kDevice, kSize, kBlock, "stream"}});
        partition_ = nkw_mtd_find_partition_by_name("stream");
        ASSERT_NE(partition_, nullptr);
    }

    // Writes `data` in pieces of the given sizes (cycled) and closes.
    int write_stream(const Bytes &data, const std::vector<size_t> &pieces) {
        nkw_mtd_write_context *w = nkw_mtd_write_partition(partition_);
        if (w == nullptr) return -2;
        size_t at = 0;
        for (size_t i = 0; at < data.size(); ++i) {
            size_t n = std::min(pieces[i % pieces.size()], data.size() - at);
            if (nkw_mtd_write_data(w, reinterpret_cast<const char *>(data.data() + at), n) !=
                static_cast<ssize_t>(n)) {
                nkw_mtd_write_close(w);
                return -1;
            }
            at += n;
        }
        return nkw_mtd_write_close(w);
    }

    // Reads `total` bytes in pieces of the given sizes (cycled); empty on failure.
    Bytes read_stream(size_t total, const std::vector<size_t> &pieces) {
        nkw_mtd_read_context *r = nkw_mtd_read_partition(partition_);
        if (r == nullptr) return {};
        Bytes out(total);
        size_t at = 0;
        for (size_t i = 0; at < total; ++i) {
            size_t n = std::min(pieces[i % pieces.size()], total - at);
            if (nkw_mtd_read_data(r, reinterpret_cast<char *>(out.data() + at), n) !=
                static_cast<ssize_t>(n)) {
                out.clear();
                break;
            }
            at += n;
        }
        nkw_mtd_read_close(r);
        return out;
    }

    Bytes block_of_device(uint32_t block) {
        return slice(image(kDevice, kSize), block * kBlock, kBlock);
    }

    const nkw_mtd_partition *partition_ = nullptr;
};

struct RoundTrip {
    size_t bytes;
    std::vector<size_t> write_pieces;
    std::vector<size_t> read_pieces;
};

TEST_F(StreamTest, WrittenDataReadsBackWithTheLastBlockZeroPadded) {
    // clang-format off
    const RoundTrip cases[] = {
        {kBlock * 3 / 2, {kBlock * 3 / 2}, {kBlock * 2}},
        {kBlock * 3 / 2, {1000}, {1, 4095, 4097}},
        {kBlock * 5 + 7, {kBlock, 7, kBlock * 2}, {kBlock - 1, kBlock + 1, 3}},
        {kSize, {kSize}, {kSize}},
        {1, {1}, {kBlock}},
    };
    // clang-format on
    for (const RoundTrip &c : cases) {
        nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1);  // stale bits would show
        preload(kDevice, Bytes(kSize, 0x5A));
        const Bytes data = pattern(c.bytes, static_cast<uint32_t>(c.bytes));
        ASSERT_EQ(write_stream(data, c.write_pieces), 0) << c.bytes;
        const size_t used = (c.bytes + kBlock - 1) / kBlock * kBlock;
        Bytes expected = data;
        expected.resize(used, 0);
        EXPECT_EQ(read_stream(used, c.read_pieces), expected) << c.bytes;
        EXPECT_EQ(slice(image(kDevice, kSize), 0, used), expected) << c.bytes;
        if (used < kSize) {
            EXPECT_EQ(block_of_device(used / kBlock), Bytes(kBlock, 0x5A)) << "untouched";
        }
    }
}

constexpr int kNoBadBlockSupport = -1;

void place(int fault, int count) {
    if (fault == kNoBadBlockSupport) {
        nkw_pal_sim_flash_set_bad_block_support(kDevice, 0);
    } else {
        nkw_pal_sim_flash_inject(kDevice, 1, fault, count);
    }
}

struct WriteFault {
    const char *what;
    int fault;  // on block 1
    int count;
    std::vector<uint32_t> blocks_used;  // where the three data blocks land
    const char *message;
    uint32_t erases_of_block_1;
};

TEST_F(StreamTest, FailingBlocksAreSkippedAndListed) {
    // clang-format off
    const WriteFault cases[] = {
        {"factory bad", NKW_SIM_FLASH_BAD_BLOCK, 0, {0, 2, 3},
         "mtd: not writing bad block at 0x00001000 (ret 1 errno", 0},
        {"verify mismatch twice", NKW_SIM_FLASH_VERIFY_MISMATCH, 2, {0, 2, 3},
         "mtd: verification error at 0x00001000", 3},
        {"verify mismatch once", NKW_SIM_FLASH_VERIFY_MISMATCH, 1, {0, 1, 2},
         "mtd: wrote block after 1 retries\n", 2},
        {"erase failure once", NKW_SIM_FLASH_ERASE_FAILURE, 1, {0, 1, 2},
         "mtd: erase failure at 0x00001000 (Input/output error)\n", 1},
        {"erase failure twice", NKW_SIM_FLASH_ERASE_FAILURE, 2, {0, 2, 3},
         "mtd: skipping write block at 0x00001000\n", 1},
        {"read-back short twice", NKW_SIM_FLASH_SHORT_READ, 2, {0, 2, 3},
         "mtd: re-read error at 0x00001000", 3},
        {"grows bad on erase", NKW_SIM_FLASH_WEARS_OUT, 0, {0, 2, 3},
         "mtd: skipping write block at 0x00001000\n", 0},
        {"no bad-block support", kNoBadBlockSupport, 0, {0, 1, 2}, "", 1},
    };
    // clang-format on
    for (const WriteFault &c : cases) {
        nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1);
        place(c.fault, c.count);
        const Bytes data = pattern(3 * kBlock, 7);

        testing::internal::CaptureStderr();
        nkw_mtd_write_context *w = nkw_mtd_write_partition(partition_);
        ASSERT_NE(w, nullptr);
        ASSERT_EQ(nkw_mtd_write_data(w, reinterpret_cast<const char *>(data.data()), data.size()),
                  static_cast<ssize_t>(data.size()))
            << c.what;
        bool skipped = c.blocks_used[1] != 1;
        EXPECT_EQ(mtd_find_write_start(w, kBlock), skipped ? 2 * kBlock : kBlock) << c.what;
        EXPECT_EQ(mtd_find_write_start(w, 0), 0) << c.what;
        EXPECT_EQ(nkw_mtd_write_close(w), 0) << c.what;
        const std::string log = testing::internal::GetCapturedStderr();

        EXPECT_NE(log.find(c.message), std::string::npos) << c.what << "\n" << log;
        for (uint32_t i = 0; i < 3; ++i) {
            EXPECT_EQ(block_of_device(c.blocks_used[i]), slice(data, i * kBlock, kBlock))
                << c.what << ": data block " << i;
        }
        if (skipped) {
            EXPECT_EQ(block_of_device(1), Bytes(kBlock, 0xFF)) << c.what;
        }
        EXPECT_EQ(nkw_pal_sim_flash_erase_count(kDevice, 1), c.erases_of_block_1) << c.what;
    }
}

TEST_F(StreamTest, StreamsStopAtTheEndOfThePartition) {
    nkw_pal_sim_flash_inject(kDevice, 6, NKW_SIM_FLASH_BAD_BLOCK, 0);
    const Bytes data = pattern(kSize, 9);
    nkw_mtd_write_context *w = nkw_mtd_write_partition(partition_);
    ASSERT_NE(w, nullptr);
    testing::internal::CaptureStderr();
    errno = 0;
    EXPECT_EQ(nkw_mtd_write_data(w, reinterpret_cast<const char *>(data.data()), kSize), -1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(nkw_mtd_erase_blocks(w, 1), -1) << "nothing left";
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(nkw_mtd_write_close(w), 0);
    testing::internal::GetCapturedStderr();
    Bytes expected = data;
    std::copy(data.begin() + 6 * kBlock, data.begin() + 7 * kBlock, expected.begin() + 7 * kBlock);
    std::fill(expected.begin() + 6 * kBlock, expected.begin() + 7 * kBlock, 0xFF);
    EXPECT_EQ(image(kDevice, kSize), expected);
}

struct ReadFault {
    const char *what;
    std::vector<std::pair<int, int>> faults;  // on block 1: kind, count
    std::vector<uint32_t> blocks_read;        // empty: the read fails
    const char *message;
};

TEST_F(StreamTest, ReadsSkipUnreadableBlocks) {
    // clang-format off
    const ReadFault cases[] = {
        {"uncorrectable ECC", {{NKW_SIM_FLASH_ECC_FAILED, 1}}, {0, 2, 3},
         "mtd: ECC errors (0 soft, 1 hard) at 0x00001000\n"},
        {"both ECC counters", {{NKW_SIM_FLASH_ECC_FAILED, 1}, {NKW_SIM_FLASH_ECC_CORRECTED, 1}},
         {0, 2, 3}, "mtd: ECC errors (1 soft, 1 hard) at 0x00001000\n"},
        {"corrected ECC is fine", {{NKW_SIM_FLASH_ECC_CORRECTED, 1}}, {0, 1, 2}, ""},
        {"short read", {{NKW_SIM_FLASH_SHORT_READ, 1}}, {0, 2, 3},
         "mtd: read error at 0x00001000"},
        {"bad block", {{NKW_SIM_FLASH_BAD_BLOCK, 0}}, {0, 2, 3},
         "mtd: MEMGETBADBLOCK returned 1 at 0x00001000 (errno="},
        {"ECC counters unreadable", {{NKW_SIM_FLASH_ECC_STATS_FAILURE, 1}}, {},
         "mtd: ECCGETSTATS error (Input/output error)\n"},
        // Any MEMGETBADBLOCK answer but 0 counts as a bad block here.
        {"no bad-block support", {{kNoBadBlockSupport, 0}}, {},
         "mtd: MEMGETBADBLOCK returned -1 at 0x00000000 (errno=95)\n"},
    };
    // clang-format on
    const Bytes stored = pattern(kSize, 11);
    for (const ReadFault &c : cases) {
        nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1);
        preload(kDevice, stored);
        for (auto [fault, count] : c.faults) place(fault, count);
        testing::internal::CaptureStderr();
        Bytes out = read_stream(3 * kBlock, {kBlock / 2, 3 * kBlock});
        const std::string log = testing::internal::GetCapturedStderr();
        Bytes expected;
        for (uint32_t b : c.blocks_read) {
            Bytes block = slice(stored, b * kBlock, kBlock);
            expected.insert(expected.end(), block.begin(), block.end());
        }
        EXPECT_EQ(out, expected) << c.what;
        EXPECT_NE(log.find(c.message), std::string::npos) << c.what << "\n" << log;
    }
}

struct EraseCase {
    const char *what;
    int blocks;
    int fault;  // on block 1, or -1
    off_t result;
    std::vector<bool> erased;  // per block
    const char *message;
};

TEST_F(StreamTest, EraseBlocksErasesFromThePositionSkippingBadOnes) {
    // clang-format off
    const EraseCase cases[] = {
        {"three", 3, -1, 3 * kBlock, {1, 1, 1, 0, 0, 0, 0, 0}, ""},
        {"none", 0, -1, 0, {0, 0, 0, 0, 0, 0, 0, 0}, ""},
        {"all that remain", -1, -1, kSize, {1, 1, 1, 1, 1, 1, 1, 1}, ""},
        {"more than remain", 9, -1, -1, {0, 0, 0, 0, 0, 0, 0, 0}, ""},
        {"bad block kept", 3, NKW_SIM_FLASH_BAD_BLOCK, 3 * kBlock, {1, 0, 1, 0, 0, 0, 0, 0},
         "mtd: not erasing bad block at 0x00001000\n"},
        {"erase failure goes on", 3, NKW_SIM_FLASH_ERASE_FAILURE, 3 * kBlock,
         {1, 0, 1, 0, 0, 0, 0, 0}, "mtd: erase failure at 0x00001000\n"},
    };
    // clang-format on
    for (const EraseCase &c : cases) {
        nkw_pal_sim_flash_create(kDevice, kSize, kBlock, 1);
        preload(kDevice, Bytes(kSize, 0));
        if (c.fault >= 0) nkw_pal_sim_flash_inject(kDevice, 1, c.fault, 1);
        nkw_mtd_write_context *w = nkw_mtd_write_partition(partition_);
        testing::internal::CaptureStderr();
        EXPECT_EQ(nkw_mtd_erase_blocks(w, c.blocks), c.result) << c.what;
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_NE(log.find(c.message), std::string::npos) << c.what << "\n" << log;
        nkw_mtd_write_close(w);
        for (uint32_t b = 0; b < kBlocks; ++b) {
            EXPECT_EQ(block_of_device(b), Bytes(kBlock, c.erased[b] ? 0xFF : 0))
                << c.what << ": block " << b;
        }
    }
}

}  // namespace
}  // namespace nkw::test
