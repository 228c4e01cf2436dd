// The exported NV item table as other programs see it, and its lookups.
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>

#include <climits>
#include <cstring>
#include <string>

#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

constexpr uint32_t kAp = NKW_PAL_NVM_POSITION_AP;
constexpr uint32_t kMd = NKW_PAL_NVM_POSITION_MODEM;
constexpr uint32_t kNone = NKW_PAL_NVM_POSITION_NONE;

struct Row {
    uint32_t position;
    uint32_t lid;
    const char *file;
};

// Rows by logical id, as the daemons and the modem's NVRAM layout fix them.
const Row kRows[NKW_PAL_NVM_TAB_COUNT] = {
    {kNone, 0, nullptr},
    {kMd, 57853, nullptr},
    {kAp, 0, "test.txt"},
    {kAp, 0, "quarn_bootstrap_info_list_nv.txt"},
    {kAp, 0, "quarn_bootstrap_info_fw_version_nv.txt"},
    {kAp, 0, "quarn_bootstrap_last_retry_time_and_bs_server_nv.txt"},
    {kMd, 57852, nullptr},
    {kMd, 57850, nullptr},
    {kMd, 57847, nullptr},
    {kMd, 57609, nullptr},
    {kMd, 57848, nullptr},
    {kAp, 0, "quarn_work_mode_nv.txt"},
    {kAp, 0, "quarn_tmx_cfg_nv.txt"},
    {kAp, 0, "quarn_poc_mode_nv.txt"},
    {kAp, 0, "quarn_tls_cfg_nv.txt"},
    {kAp, 0, "quarn_location_cellidlist_nv.txt"},
    {kAp, 0, "quarn_location_agps_cfg_nv.txt"},
    {kAp, 0, "quarn_ecmgr_hb.txt"},
    {kAp, 0, "quarn_ecmgr_retry.txt"},
    {kAp, 0, "quarn_ecmgr_i2c.txt"},
    {kAp, 0, "quarn_logging_config.txt"},
    {kAp, 0, "quarn_logging_message.txt"},
    {kAp, 0, "quarn_recovery_interval.txt"},
    {kAp, 0, "quarn_recovery_table.txt"},
    {kAp, 0, "quarn_recovery_level.txt"},
    {kAp, 0, "quarn_esimsrv_query_nvram.txt"},
    {kAp, 0, "quarn_esimsrv_last_query_msg_nvram.txt"},
    {kAp, 0, "quarn_esimsrv_save_switch_iccid.txt"},
    {kMd, 2243, nullptr},
    {kMd, 57851, nullptr},
    {kMd, 57853, nullptr},
    {kAp, 0, "quarn_cntmgr_traffic_info.txt"},
    {kMd, 57617, nullptr},
    {kAp, 0, "quarn_devmgr_mbb_apn_info.txt"},
    {kMd, 57629, nullptr},
    {kAp, 0, "quarn_flag_nv.txt"},
    {kMd, 2257, nullptr},
    {kMd, 2258, nullptr},
    {kNone, 0, nullptr},
};

TEST(NvTable, EveryRowHoldsItsIdHomeAndZeroedTail) {
    for (uint32_t id = 0; id < NKW_PAL_NVM_TAB_COUNT; ++id) {
        const nkw_nvm_item &item = nkw_nvm_tab[id];
        const Row &want = kRows[id];
        EXPECT_EQ(id, item.logic_id);
        EXPECT_EQ(want.position, item.position) << id;
        EXPECT_EQ(want.lid, item.plat_nvm_id) << id;
        if (want.file == nullptr) {
            EXPECT_EQ(nullptr, item.file_name) << id;
        } else {
            ASSERT_NE(nullptr, item.file_name) << id;
            EXPECT_STREQ(want.file, item.file_name) << id;
        }
        EXPECT_EQ(0, item.backup) << id;
        const uint8_t zeros[sizeof item.reserved] = {};
        EXPECT_EQ(0, std::memcmp(zeros, item.reserved, sizeof zeros)) << id;
    }
}

TEST(NvTable, ExportedObjectIs1560BytesOfFortyByteRows) {
    void *self = dlopen(nullptr, RTLD_NOW);
    void *table = dlsym(self, "nkw_nvm_tab");
    ASSERT_EQ(static_cast<const void *>(nkw_nvm_tab), table);
    Dl_info info{};
    void *entry = nullptr;
    ASSERT_NE(0, dladdr1(table, &info, &entry, RTLD_DL_SYMENT));
    const auto *symbol = static_cast<const ElfW(Sym) *>(entry);
    ASSERT_NE(nullptr, symbol);
    EXPECT_EQ(1560u, symbol->st_size);
    // Another program indexing the raw bytes: row 29's LID at 29 * 40 + 4.
    uint32_t lid = 0;
    std::memcpy(&lid, static_cast<const char *>(table) + 29 * 40 + 4, sizeof lid);
    EXPECT_EQ(0xE1FBu, lid);
    dlclose(self);
}

TEST(NvTable, IndexLookupFlagsTheMarkerAndSendsUnknownIdsToRowZero) {
    const struct {
        unsigned int id;
        int index;
    } cases[] = {{0, 0}, {1, 1}, {30, 30}, {37, 37}, {38, 38}, {39, 0}, {1000, 0}, {UINT_MAX, 0}};
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        EXPECT_EQ(c.index, nkw_pal_nvm_tab_index_get(c.id)) << c.id;
        EXPECT_EQ(c.id == 38, syslog_contains("Invalid logic nvm id \n")) << c.id;
    }
}

TEST(NvTable, CountsAreLogged) {
    EXPECT_EQ(39, nkw_pal_nvm_tab_count());
    EXPECT_TRUE(syslog_contains("The counts of nvm_tab element is:39. \n"));
    EXPECT_EQ(0, nkw_pal_nvm_tab_backup_count());
    EXPECT_TRUE(syslog_contains("The counts of nvm_tab element which need backup is:0. \n"));
}

}  // namespace
