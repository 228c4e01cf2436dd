// The exported NV item table as other programs see it, and its lookups.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "nkw_pal.h"
#include "support/syslog_capture.h"

using nkw::test::syslog_contains;

namespace {

// Modem rows and their LIDs, as the modem's NVRAM layout fixes them; every
// other row but the markers 0 and 38 is an AP file.
const std::map<uint32_t, uint32_t> kModemLids = {
    {1, 0xE1FD},  {6, 0xE1FC},  {7, 0xE1FA},  {8, 0xE1F7},  {9, 0xE109},
    {10, 0xE1F8}, {28, 0x08C3}, {29, 0xE1FB}, {30, 0xE1FD}, {32, 0xE111},
    {34, 0xE11D}, {36, 0x08D1}, {37, 0x08D2}};

TEST(NvTable, EveryRowHoldsItsIdHomeAndZeroedTail) {
    std::set<std::string> names;
    for (uint32_t id = 0; id < NKW_PAL_NVM_TAB_COUNT; ++id) {
        const nkw_nvm_item &item = nkw_nvm_tab[id];
        EXPECT_EQ(id, item.logic_id);
        auto modem = kModemLids.find(id);
        if (id == 0 || id == 38) {
            EXPECT_EQ(uint32_t{NKW_PAL_NVM_POSITION_NONE}, item.position) << id;
            EXPECT_EQ(nullptr, item.file_name) << id;
        } else if (modem != kModemLids.end()) {
            EXPECT_EQ(uint32_t{NKW_PAL_NVM_POSITION_MODEM}, item.position) << id;
            EXPECT_EQ(modem->second, item.plat_nvm_id) << id;
            EXPECT_EQ(nullptr, item.file_name) << id;
        } else {
            EXPECT_EQ(uint32_t{NKW_PAL_NVM_POSITION_AP}, item.position) << id;
            EXPECT_EQ(0u, item.plat_nvm_id) << id;
            ASSERT_NE(nullptr, item.file_name) << id;
            EXPECT_TRUE(names.insert(item.file_name).second) << "two rows share " << item.file_name;
        }
        EXPECT_EQ(0, item.backup) << id;
        const uint8_t zeros[sizeof item.reserved] = {};
        EXPECT_EQ(0, std::memcmp(zeros, item.reserved, sizeof zeros)) << id;
    }
    EXPECT_STREQ("test.txt", nkw_nvm_tab[2].file_name);
    EXPECT_STREQ("quarn_bootstrap_last_retry_time_and_bs_server_nv.txt", nkw_nvm_tab[5].file_name);
    EXPECT_STREQ("quarn_flag_nv.txt", nkw_nvm_tab[35].file_name);
}

TEST(NvTable, LookupFlagsTheMarkerSendsUnknownIdsToRowZeroAndCountsAreLogged) {
    const struct {
        unsigned int id;
        int index;
    } cases[] = {{0, 0}, {1, 1}, {30, 30}, {37, 37}, {38, 38}, {39, 0}, {1000, 0}, {UINT_MAX, 0}};
    for (const auto &c : cases) {
        nkw::test::syslog_clear();
        EXPECT_EQ(c.index, nkw_pal_nvm_tab_index_get(c.id)) << c.id;
        EXPECT_EQ(c.id == 38, syslog_contains("Invalid logic nvm id \n")) << c.id;
    }
    EXPECT_EQ(39, nkw_pal_nvm_tab_count());
    EXPECT_TRUE(syslog_contains("The counts of nvm_tab element is:39. \n"));
    EXPECT_EQ(0, nkw_pal_nvm_tab_backup_count());
    EXPECT_TRUE(syslog_contains("The counts of nvm_tab element which need backup is:0. \n"));
}

}  // namespace
