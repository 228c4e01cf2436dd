// The fixed NV item table and its lookups.
#include "diag/log.h"
#include "nkw_pal/storage.h"
#include "storage/nv/nv.h"

namespace {

constexpr uint32_t kAp = NKW_PAL_NVM_POSITION_AP;
constexpr uint32_t kModem = NKW_PAL_NVM_POSITION_MODEM;
constexpr uint32_t kNone = NKW_PAL_NVM_POSITION_NONE;

constexpr nkw_nvm_item marker(uint32_t id) {
    return {id, 0, nullptr, 0, kNone, {}};
}
constexpr nkw_nvm_item modem(uint32_t id, uint32_t lid) {
    return {id, lid, nullptr, 0, kModem, {}};
}
constexpr nkw_nvm_item ap(uint32_t id, const char *file_name) {
    return {id, 0, file_name, 0, kAp, {}};
}

}  // namespace

extern "C" const nkw_nvm_item nkw_nvm_tab[NKW_PAL_NVM_TAB_COUNT] = {
    marker(0),  // unknown ids land here
    modem(1, 0xE1FD),
    ap(2, "test.txt"),
    ap(3, "quarn_bootstrap_info_list_nv.txt"),
    ap(4, "quarn_bootstrap_info_fw_version_nv.txt"),
    ap(5, "quarn_bootstrap_last_retry_time_and_bs_server_nv.txt"),
    modem(6, 0xE1FC),
    modem(7, 0xE1FA),
    modem(8, 0xE1F7),
    modem(9, 0xE109),
    modem(10, 0xE1F8),
    ap(11, "quarn_work_mode_nv.txt"),
    ap(12, "quarn_tmx_cfg_nv.txt"),
    ap(13, "quarn_poc_mode_nv.txt"),
    ap(14, "quarn_tls_cfg_nv.txt"),
    ap(15, "quarn_location_cellidlist_nv.txt"),
    ap(16, "quarn_location_agps_cfg_nv.txt"),
    ap(17, "quarn_ecmgr_hb.txt"),
    ap(18, "quarn_ecmgr_retry.txt"),
    ap(19, "quarn_ecmgr_i2c.txt"),
    ap(20, "quarn_logging_config.txt"),
    ap(21, "quarn_logging_message.txt"),
    ap(22, "quarn_recovery_interval.txt"),
    ap(23, "quarn_recovery_table.txt"),
    ap(24, "quarn_recovery_level.txt"),
    ap(25, "quarn_esimsrv_query_nvram.txt"),
    ap(26, "quarn_esimsrv_last_query_msg_nvram.txt"),
    ap(27, "quarn_esimsrv_save_switch_iccid.txt"),
    modem(28, 0x08C3),
    modem(29, 0xE1FB),
    modem(30, 0xE1FD),  // the item of id 1 under a second name
    ap(31, "quarn_cntmgr_traffic_info.txt"),
    modem(32, 0xE111),
    ap(33, "quarn_devmgr_mbb_apn_info.txt"),
    modem(34, 0xE11D),  // offline log switch and interval
    ap(35, "quarn_flag_nv.txt"),
    modem(36, 0x08D1),
    modem(37, 0x08D2),
    marker(NKW_PAL_NVM_END_MARKER),
};

static_assert(sizeof nkw_nvm_tab == NKW_PAL_NVM_TAB_COUNT * sizeof(nkw_nvm_item));

NKW_PAL_API int nkw_pal_nvm_tab_index_get(unsigned int id) {
    for (int index = 0; index < NKW_PAL_NVM_TAB_COUNT; ++index) {
        if (id == NKW_PAL_NVM_END_MARKER) {
            NKW_LOGE(nkw::nv::kTag, "Invalid logic nvm id \n");
            return NKW_PAL_NVM_END_MARKER;
        }
        if (nkw_nvm_tab[index].logic_id == id) return index;
    }
    return 0;
}

extern "C" int nkw_pal_nvm_tab_count(void) {
    int count = NKW_PAL_NVM_TAB_COUNT;
    NKW_LOGI(nkw::nv::kTag, "The counts of nvm_tab element is:%d. \n", count);
    return count;
}

extern "C" int nkw_pal_nvm_tab_backup_count(void) {
    int count = 0;
    for (const nkw_nvm_item &item : nkw_nvm_tab) {
        if (item.backup == 1) ++count;
    }
    NKW_LOGI(nkw::nv::kTag, "The counts of nvm_tab element which need backup is:%d. \n", count);
    return count;
}

namespace nkw::nv {

int index_of(unsigned int id, const char *function, int line) {
    int index = nkw_pal_nvm_tab_index_get(id);
    if (index == NKW_PAL_NVM_END_MARKER && diag::enabled(NKW_PAL_LOG_ERROR))
        nkw_pal_loge(kTag, "[%s:%d]-Invalid logic nvm id \n", function, line);
    return index;
}

}  // namespace nkw::nv
