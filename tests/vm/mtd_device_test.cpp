// The raw-flash calls against the kernel's own MTD devices, run as root in
// the storage test VM (tools/vm-storage.sh, device layout in init.sh). The
// production library reaches the real "/proc/mtd" and "/dev/mtd<N>".
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "nkw_pal.h"

namespace {

constexpr uint32_t kBlock = 128u << 10;
constexpr char kRam[] = "mtdram test device";
constexpr char kNandBad[] = "NAND simulator partition 0";    // blocks 3 and 5 bad
constexpr char kNandGrave[] = "NAND simulator partition 1";  // block 8 unreadable once read
constexpr char kNand[] = "NAND simulator partition 2";
constexpr char kRegion[] = "mddata_bak";

const nkw_mtd_partition *partition(const char *name) {
    nkw_mtd_scan_partitions();
    const nkw_mtd_partition *p = nkw_mtd_find_partition_by_name(name);
    if (p == nullptr) ADD_FAILURE() << "no partition " << name;
    return p;
}

std::vector<char> pattern(size_t size, uint32_t seed) {
    std::vector<char> data(size);
    for (char &c : data) c = static_cast<char>((seed = seed * 1103515245u + 12345u) >> 16);
    return data;
}

// The partition's bytes as the kernel returns them, past the library.
std::vector<char> raw(const nkw_mtd_partition *p, size_t offset, size_t size) {
    std::vector<char> bytes(size);
    int fd = open(("/dev/mtd" + std::to_string(p->device_index)).c_str(), O_RDONLY);
    EXPECT_EQ(pread(fd, bytes.data(), size, static_cast<off_t>(offset)),
              static_cast<ssize_t>(size));
    close(fd);
    return bytes;
}

// Streams `data` onto the partition in uneven pieces and closes.
void stream_write(const nkw_mtd_partition *p, const std::vector<char> &data) {
    nkw_mtd_write_context *w = nkw_mtd_write_partition(p);
    ASSERT_NE(w, nullptr);
    for (size_t done = 0; done < data.size(); done += 7001) {
        size_t piece = std::min<size_t>(7001, data.size() - done);
        ASSERT_EQ(nkw_mtd_write_data(w, data.data() + done, piece), static_cast<ssize_t>(piece));
    }
    ASSERT_EQ(nkw_mtd_write_close(w), 0);
}

std::vector<char> stream_read(const nkw_mtd_partition *p, size_t size) {
    std::vector<char> data(size);
    nkw_mtd_read_context *r = nkw_mtd_read_partition(p);
    EXPECT_NE(r, nullptr);
    for (size_t done = 0; r != nullptr && done < size; done += 5003) {
        size_t piece = std::min<size_t>(5003, size - done);
        EXPECT_EQ(nkw_mtd_read_data(r, data.data() + done, piece), static_cast<ssize_t>(piece));
    }
    nkw_mtd_read_close(r);
    return data;
}

TEST(VmMtd, ScanListsTheKernelsDevicesWithTheirGeometry) {
    ASSERT_GE(nkw_mtd_scan_partitions(), 5);
    struct Case {
        const char *name;
        size_t size;
        size_t write_size;
    } cases[] = {
        {kRam, 16u << 20, 1},    {kNandBad, 4u << 20, 2048}, {kNandGrave, 4u << 20, 2048},
        {kNand, 8u << 20, 2048}, {kRegion, 4u << 20, 1},
    };
    for (const Case &c : cases) {
        const nkw_mtd_partition *p = partition(c.name);
        ASSERT_NE(p, nullptr);
        size_t size = 0, erase = 0, write = 0;
        EXPECT_EQ(nkw_mtd_partition_info(p, &size, &erase, &write), 0) << c.name;
        EXPECT_EQ(size, c.size) << c.name;
        EXPECT_EQ(p->size, c.size) << c.name;
        EXPECT_EQ(erase, kBlock) << c.name;
        EXPECT_EQ(write, c.write_size) << c.name;
        std::string block_device = "/dev/mtdblock" + std::to_string(p->device_index);
        EXPECT_EQ(nkw_mtd_find_partition_by_device_name(block_device.c_str()), p);
    }
}

// Streams 10 blocks and a bit, reads them back, and finds the last block
// padded with zero bytes; on NAND the bad blocks are passed over both ways.
TEST(VmMtd, StreamRoundTripSkipsBadBlocks) {
    struct Case {
        const char *name;
        std::vector<std::string> write_messages;
        std::vector<std::string> read_messages;
    } cases[] = {
        {kRam, {}, {}},
        {kNand, {}, {}},
        {kNandBad,
         {"mtd: not writing bad block at 0x00060000", "mtd: not writing bad block at 0x000a0000"},
         {"mtd: MEMGETBADBLOCK returned 1 at 0x00060000",
          "mtd: MEMGETBADBLOCK returned 1 at 0x000a0000"}},
    };
    const std::vector<char> data = pattern(10 * kBlock + 1000, 7);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const nkw_mtd_partition *p = partition(c.name);
        ASSERT_NE(p, nullptr);
        testing::internal::CaptureStderr();
        stream_write(p, data);
        std::string written = testing::internal::GetCapturedStderr();
        testing::internal::CaptureStderr();
        std::vector<char> back = stream_read(p, 11 * kBlock);
        std::string read = testing::internal::GetCapturedStderr();
        for (const std::string &m : c.write_messages)
            EXPECT_NE(written.find(m), std::string::npos) << written;
        for (const std::string &m : c.read_messages)
            EXPECT_NE(read.find(m), std::string::npos) << read;
        EXPECT_TRUE(std::equal(data.begin(), data.end(), back.begin()));
        EXPECT_EQ(std::vector<char>(back.begin() + data.size(), back.end()),
                  std::vector<char>(back.size() - data.size(), 0));
    }
}

// Block 8 of the partition reads back once (the write's verification) and
// then loses its data: the stream read reports the uncorrectable errors and
// delivers the next block in its place. Random single bit flips elsewhere
// are corrected and must not cost a block.
TEST(VmMtd, StreamReadSkipsBlocksWithUncorrectableErrors) {
    const nkw_mtd_partition *p = partition(kNandGrave);
    ASSERT_NE(p, nullptr);
    const std::vector<char> data = pattern(12 * kBlock, 11);
    stream_write(p, data);
    testing::internal::CaptureStderr();
    std::vector<char> back = stream_read(p, 11 * kBlock);
    std::string read = testing::internal::GetCapturedStderr();
    EXPECT_NE(read.find("hard) at 0x00100000"), std::string::npos) << read;
    std::vector<char> expected(data.begin(), data.begin() + 8 * kBlock);
    expected.insert(expected.end(), data.begin() + 9 * kBlock, data.end());
    EXPECT_TRUE(back == expected);
}

// Writes and erases byte ranges in place and compares the whole area with
// the kernel's bytes: the touched blocks keep their other bytes, and the
// erase runs from the first touched block for the rounded end offset.
TEST(VmMtd, DirectWriteAndErasePreserveNeighbouringBytes) {
    struct Case {
        uint32_t offset, len;
    } ranges[] = {
        {0x1003, 5000},                // inside block 0
        {kBlock - 0x100, 0x300},       // across the first boundary
        {kBlock + 0x800, 0x1000},      // inside block 1: blocks 1 and 2 are erased
        {kBlock, kBlock},              // one whole block, end on a boundary
        {2 * kBlock + 3, 2 * kBlock},  // three blocks, unaligned at both ends
    };
    const uint32_t area = 8 * kBlock;
    for (const char *name : {kRam, kRegion, kNand}) {
        const nkw_mtd_partition *p = partition(name);
        ASSERT_NE(p, nullptr);
        for (const Case &c : ranges) {
            for (bool erase : {false, true}) {
                SCOPED_TRACE(std::string(name) + " offset " + std::to_string(c.offset) + " len " +
                             std::to_string(c.len) + (erase ? " erase" : " write"));
                std::vector<char> before = pattern(area, c.offset);
                stream_write(p, before);
                std::vector<char> data = pattern(c.len, c.len);
                std::vector<char> expected = before;
                uint32_t start = c.offset / kBlock * kBlock;
                uint32_t erased = nkw_mtd_malloc_all_size(p, c.offset, c.len);
                std::fill(expected.begin() + start, expected.begin() + start + erased, '\xff');
                uint32_t end = c.offset + c.len;
                uint32_t kept_to = end + (kBlock - end % kBlock);
                std::copy(before.begin() + start, before.begin() + kept_to,
                          expected.begin() + start);
                if (erase) {
                    std::fill(expected.begin() + c.offset, expected.begin() + end, '\xff');
                    EXPECT_EQ(nkw_mtd_erase_block(p, c.len, c.offset), 0);
                } else {
                    std::copy(data.begin(), data.end(), expected.begin() + c.offset);
                    EXPECT_EQ(nkw_mtd_write_block(p, data.data(), c.len, c.offset), 0);
                }
                EXPECT_TRUE(raw(p, 0, area) == expected);
            }
        }
    }
}

TEST(VmMtd, FlashRegionOnMddataBak) {
    ASSERT_EQ(nkw_pal_flash_init(), 0);
    const nkw_mtd_partition *p = partition(kRegion);
    ASSERT_NE(p, nullptr);
    std::vector<char> before = pattern(4 * kBlock, 3);
    stream_write(p, before);
    std::vector<char> record = pattern(300, 5);
    ASSERT_EQ(nkw_pal_flash_write(kBlock - 100, record.data(), 300), 0);
    std::vector<char> back(300);
    ASSERT_EQ(nkw_pal_flash_read(kBlock - 100, back.data(), 300), 0);
    EXPECT_EQ(back, record);
    ASSERT_EQ(nkw_pal_flash_erase(kBlock - 100, 300), 0);
    ASSERT_EQ(nkw_pal_flash_read(kBlock - 100, back.data(), 300), 0);
    EXPECT_EQ(back, std::vector<char>(300, '\xff'));
    ASSERT_EQ(nkw_pal_flash_read(0, back.data(), 300), 0);
    EXPECT_TRUE(std::equal(back.begin(), back.end(), before.begin()));
    EXPECT_EQ(nkw_pal_flash_read(p->size - 10, back.data(), 300), 604);
}

}  // namespace
