// The initial-attach APN: the first entry of the modem's list, and setting it.
#include <cstring>

#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"
#include "os/heap_record.h"

using nkw::info::kTag;

static_assert(sizeof(attach_apn_info) == 236, "attach APN record is 236 bytes");
static_assert(sizeof(attach_apn_info::apn) == MIPC_APN_IA_APN_LEN, "APN field");
static_assert(sizeof(attach_apn_info::username) == MIPC_APN_IA_USERNAME_LEN, "user name field");
static_assert(sizeof(attach_apn_info::password) == MIPC_APN_IA_PASSWORD_LEN, "password field");

extern "C" {

int32_t nkw_pal_get_attach_apn(attach_apn_info *info) {
    if (!nkw::info::argument_given(info, __func__, "attach_apn_info")) return NKW_PAL_INVALID_ARG;
    auto record = nkw::HeapRecord<mipc_apn_ia_struct_v>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "malloc result_ptr failed, not enough memory \n");
        return NKW_PAL_FAIL;
    }
    mipc_result_enum result = mipc_apn_ia_get_sync(MIPC_PS_ALL, record.get());
    if (!nkw::info::call_ok(__func__, "mipc_apn_ia_get_sync", result, record->result_code,
                            nkw::info::CodeLabel::kResultCode)) {
        return NKW_PAL_FAIL;
    }
    if (record->apn_list_count == 0) {
        std::memset(info, 0, sizeof *info);
        NKW_LOGI(kTag, "mipc_apn_ia_get_sync attach_apn_list is 0. \n");
        return NKW_PAL_OK;
    }
    NKW_LOGI(kTag, "mipc_apn_ia_get_sync attach_apn_list is %d. \n", record->apn_list_count);
    const mipc_apn_ia_entry_struct &first = record->apn_list[0];
    std::memcpy(info->apn, first.apn, sizeof info->apn);
    std::memcpy(info->username, first.username, sizeof info->username);
    std::memcpy(info->password, first.password, sizeof info->password);
    info->option = first.option;
    info->pdp_type = first.pdp_type;
    info->roaming_pdp_type = first.roaming_pdp_type;
    info->auth_type = first.auth_type;
    info->compression = first.compression;
    return NKW_PAL_OK;
}

int32_t nkw_pal_set_attach_apn(const attach_apn_info *info) {
    // Refused before the modem is asked: there is nothing to send.
    if (info == nullptr) {
        NKW_LOGE(kTag, "set attach_apn_info failed for param \n");
        return NKW_PAL_FAIL;
    }
    mipc_apn_ia_set_struct record;
    std::memset(&record, 0, sizeof record);
    mipc_result_enum result = mipc_apn_ia_set_sync(
        MIPC_PS_ALL, &record, info->apn, info->pdp_type, info->roaming_pdp_type, info->auth_type,
        info->username, info->password, info->option, info->compression);
    if (!nkw::info::call_ok(__func__, "mipc_apn_ia_set_sync", result, record.result_code,
                            nkw::info::CodeLabel::kResultCode)) {
        return NKW_PAL_FAIL;
    }
    return NKW_PAL_OK;
}

}  // extern "C"
