// The partition table read from "/proc/mtd", lookups, device geometry and
// mounting.
#include <sys/mount.h>
#include <sys/stat.h>

#include <string>

#include "storage/mtd_device.h"

namespace nkw::test {
namespace {

using ScanTest = FlashTest;

struct Slot {
    int device;
    uint32_t size;
    uint32_t erase_size;
    std::string name;
};

struct ScanCase {
    const char *what;
    std::string proc_mtd;
    int count;
    std::vector<Slot> slots;
};

TEST_F(ScanTest, ListedLinesFillTheirSlots) {
    const std::string long_name(70, 'n');
    // clang-format off
    const ScanCase cases[] = {
        {"header and the boot renames",
         "dev:    size   erasesize  name\n"
         "mtd0: 00080000 00020000 \"preloader\"\n"
         "mtd3: 00200000 00020000 \"appsbl\"\n"
         "mtd4: 00a00000 00020000 \"apps\"\n"
         "mtd5: 00100000 00010000 \"mddata_bak\"\n",
         4,
         {{0, 0x80000, 0x20000, "preloader"},
          {3, 0x200000, 0x20000, "aboot"},
          {4, 0xa00000, 0x20000, "boot"},
          {5, 0x100000, 0x10000, "mddata_bak"}}},
        {"only exact names are renamed",
         "mtd1: 1000 1000 \"apps2\"\nmtd2: 1000 1000 \"xappsbl\"\n",
         2,
         {{1, 0x1000, 0x1000, "apps2"}, {2, 0x1000, 0x1000, "xappsbl"}}},
        {"garbage, half lines and numbers outside the table",
         "garbage\nmtd1 00001000 00001000 \"colon\"\nmtd2: 1000\nmtd64: 1000 1000 \"high\"\n"
         "mtd-1: 1000 1000 \"negative\"\nmtd63: 2000 1000 \"last\"\n\n\n",
         1,
         {{63, 0x2000, 0x1000, "last"}}},
        {"names are cut at 63 characters",
         proc_mtd_line(7, 0x1000, 0x1000, long_name),
         1,
         {{7, 0x1000, 0x1000, std::string(63, 'n')}}},
        {"a device listed twice keeps its last line once",
         "mtd2: 1000 1000 \"first\"\nmtd2: 4000 2000 \"second\"\n",
         1,
         {{2, 0x4000, 0x2000, "second"}}},
        {"an empty list", "", 0, {}},
    };
    // clang-format on
    for (const ScanCase &c : cases) {
        nkw_pal_sim_flash_forget_partitions();
        write_proc_mtd(c.proc_mtd);
        EXPECT_EQ(nkw_mtd_scan_partitions(), c.count) << c.what;
        for (const Slot &slot : c.slots) {
            const nkw_mtd_partition *p = nkw_mtd_find_partition_by_name(slot.name.c_str());
            ASSERT_NE(p, nullptr) << c.what << ": " << slot.name;
            EXPECT_EQ(p->device_index, slot.device) << c.what;
            EXPECT_EQ(p->size, slot.size) << c.what;
            EXPECT_EQ(p->erase_size, slot.erase_size) << c.what;
            const std::string block = "/dev/mtdblock" + std::to_string(slot.device);
            EXPECT_EQ(nkw_mtd_find_partition_by_device_name(block.c_str()), p) << c.what;
        }
    }
    const char *misses[] = {"first", "las", "last ", "LAST", "", nullptr};
    for (const char *name : misses) EXPECT_EQ(nkw_mtd_find_partition_by_name(name), nullptr);
    const char *devices[] = {"/dev/mtdblock", "/dev/mtdblock630", "/dev/mtd63", nullptr};
    for (const char *device : devices) {
        EXPECT_EQ(nkw_mtd_find_partition_by_device_name(device), nullptr);
    }
}

TEST_F(ScanTest, TableIsReadOnceWhileItHoldsPartitions) {
    EXPECT_EQ(nkw_mtd_find_partition_by_name("misc"), nullptr) << "before any scan";
    write_proc_mtd("mtd1: 1000 1000 \"misc\"\n");
    ASSERT_EQ(nkw_mtd_scan_partitions(), 1);
    write_proc_mtd("mtd1: 1000 1000 \"misc\"\nmtd2: 1000 1000 \"cache\"\n");
    EXPECT_EQ(nkw_mtd_scan_partitions(), 1);
    EXPECT_EQ(nkw_mtd_find_partition_by_name("cache"), nullptr);
}

TEST_F(ScanTest, EmptyOrUnreadableListScansAgain) {
    EXPECT_EQ(nkw_mtd_scan_partitions(), -1) << "no /proc/mtd";
    write_proc_mtd("");
    EXPECT_EQ(nkw_mtd_scan_partitions(), 0);
    write_proc_mtd("mtd1: 1000 1000 \"misc\"\n");
    EXPECT_EQ(nkw_mtd_scan_partitions(), 1);
}

TEST_F(ScanTest, OnlyTheFirst2047BytesAreRead) {
    std::string text;
    for (int i = 0; i < 60; ++i) {
        text += proc_mtd_line(i, 0x1000, 0x1000, "partition_" + std::to_string(i));
    }
    // Lines 0-9 take 38 bytes, the others 40: line 51 starts at byte 2020
    // and is cut 27 bytes in, inside its name.
    ASSERT_EQ(text.size(), 10 * 38 + 50 * 40u);
    write_proc_mtd(text);
    EXPECT_EQ(nkw_mtd_scan_partitions(), 52);
    EXPECT_NE(nkw_mtd_find_partition_by_name("partition_50"), nullptr);
    EXPECT_NE(nkw_mtd_find_partition_by_name("p"), nullptr);
    EXPECT_EQ(nkw_mtd_find_partition_by_device_name("/dev/mtdblock51"),
              nkw_mtd_find_partition_by_name("p"));
    EXPECT_EQ(nkw_mtd_find_partition_by_device_name("/dev/mtdblock52"), nullptr);
}

TEST_F(ScanTest, PartitionInfoReportsTheDeviceGeometry) {
    install({{2, 0x8000, 0x2000, "misc"}});
    ASSERT_EQ(nkw_pal_sim_flash_create(2, 0x8000, 0x2000, 0x800), 0);
    const nkw_mtd_partition *p = nkw_mtd_find_partition_by_name("misc");
    size_t total = 0, erase = 0, write = 0;
    ASSERT_EQ(nkw_mtd_partition_info(p, &total, &erase, &write), 0);
    EXPECT_EQ(total, 0x8000u);
    EXPECT_EQ(erase, 0x2000u);
    EXPECT_EQ(write, 0x800u);
    EXPECT_EQ(nkw_mtd_partition_info(p, nullptr, nullptr, nullptr), 0);

    nkw_mtd_partition absent{9, 0x8000, 0x2000, nullptr};
    EXPECT_EQ(nkw_mtd_partition_info(&absent, &total, nullptr, nullptr), -1);
    EXPECT_EQ(nkw_mtd_partition_info(nullptr, &total, nullptr, nullptr), -1);
}

struct MountCase {
    const char *what;
    int read_only;
    int read_write_errno;
    int read_only_errno;
    mode_t mode;
    int result;
    std::vector<unsigned long> flags_tried;
    std::string stdout_text;
    mode_t final_mode;
};

TEST_F(ScanTest, MountFallsBackToReadOnlyAndFixesExecuteBits) {
    constexpr unsigned long kFlags = MS_NOATIME | MS_NODEV | MS_NODIRATIME;
    constexpr unsigned long kReadOnly = kFlags | MS_RDONLY;
    // clang-format off
    const MountCase cases[] = {
        {"no mount point", 0, 0, 0, 0, -1, {kFlags}, "", 0},  // first: none exists yet
        {"read-write", 0, 0, 0, 0755, 0, {kFlags}, "", 0755},
        {"read-only asked", 1, 0, 0, 0755, 0, {kReadOnly},
         "Mount /dev/mtdblock4 on /cache read-only\n", 0755},
        {"read-write refused", 0, EROFS, 0, 0755, 0, {kFlags, kReadOnly},
         "Mount /dev/mtdblock4 on /cache read-only\n", 0755},
        {"both refused", 0, EROFS, EINVAL, 0700, -1, {kFlags, kReadOnly},
         "Failed to mount /dev/mtdblock4 on /cache: Invalid argument\n", 0700},
        {"execute bits missing", 0, 0, 0, 0640, 0, {kFlags},
         "Fixing execute permissions for /cache\n", 0751},
    };
    // clang-format on
    install({{4, 0x4000, 0x1000, "cache"}});
    const nkw_mtd_partition *p = nkw_mtd_find_partition_by_name("cache");
    for (const MountCase &c : cases) {
        Sandbox &sandbox = Sandbox::current();
        sandbox.write_file("/mounts.log", "");
        if (c.mode != 0) {
            sandbox.write_file("/cache/.keep", "");
            chmod(sandbox.path("/cache").c_str(), c.mode);
        }
        nkw_pal_sim_flash_set_mount_errors(c.read_write_errno, c.read_only_errno);

        testing::internal::CaptureStdout();
        EXPECT_EQ(nkw_mtd_mount_partition(p, "/cache", "jffs2", c.read_only), c.result) << c.what;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.stdout_text) << c.what;
        std::string expected_log;
        for (unsigned long flags : c.flags_tried) {
            char line[96];
            std::snprintf(line, sizeof line, "/dev/mtdblock4 /cache jffs2 0x%lx\n", flags);
            expected_log += line;
        }
        EXPECT_EQ(sandbox.read_file("/mounts.log"), expected_log) << c.what;
        struct stat info {};
        stat(sandbox.path("/cache").c_str(), &info);
        EXPECT_EQ(info.st_mode & 07777, c.final_mode) << c.what;
    }
}

}  // namespace
}  // namespace nkw::test
