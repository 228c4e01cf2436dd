// Synchronous NV item reads and writes: the table decides modem or AP file.
#include "diag/log.h"
#include "storage/nv/nv.h"

using nkw::nv::kTag;

extern "C" int nkw_pal_nvm_read(unsigned int id, unsigned char *buf, unsigned int len) {
    if (buf == nullptr || len == 0) {
        NKW_LOGE(kTag, "Invalid nvm sync read parameter \n");
        return NKW_PAL_INVALID_ARG;
    }
    int index = nkw::nv::index_of(id);
    if (index == NKW_PAL_NVM_END_MARKER) return NKW_PAL_NVM_INVALID_ID;
    NKW_LOGI(kTag, "nv_index is:%d. \n", index);
    const nkw_nvm_item &item = nkw::nv::row(index);
    switch (item.position) {
        case NKW_PAL_NVM_POSITION_MODEM:
            return nkw::nv::nkw_pal_read_nv_md_sync(item.plat_nvm_id, buf, len);
        case NKW_PAL_NVM_POSITION_AP:
            return nkw::nv::nkw_pal_read_nv_ap_sync(item.file_name, buf, len);
        default:
            NKW_LOGE(kTag, "Invaild nv position. \n");
            return NKW_PAL_NVM_INVALID_POSITION;
    }
}

extern "C" int nkw_pal_nvm_write(unsigned int id, unsigned char *data, unsigned int len) {
    if (data == nullptr || len == 0) {
        NKW_LOGE(kTag, "Invalid nvm sync write parameter. \n");
        return NKW_PAL_INVALID_ARG;
    }
    int index = nkw::nv::index_of(id);
    if (index == NKW_PAL_NVM_END_MARKER) return NKW_PAL_NVM_INVALID_ID;
    const nkw_nvm_item &item = nkw::nv::row(index);
    if (item.position == NKW_PAL_NVM_POSITION_MODEM) {
        // Both inner failures (send, result code) reach the caller as 708.
        int ret = nkw::nv::nkw_pal_write_nv_md_sync(item.plat_nvm_id, data, len);
        if (ret != 0) {
            NKW_LOGE(kTag, "nkw_pal_write_nv_md_sync write MD nvm failed，ret is:%d. \n", ret);
            return NKW_PAL_NVM_MD_WRITE_FAILED;
        }
        NKW_LOGI(kTag, "nkw_pal_write_nv_md_sync write MD nvm success. \n");
        return 0;
    }
    if (item.position == NKW_PAL_NVM_POSITION_AP) {
        int ret = nkw::nv::nkw_pal_write_nv_ap_sync(item.file_name, data, len);
        if (ret != 0) {
            NKW_LOGE(kTag, "nkw_pal_write_nv_md_sync write AP nvm file failed, ret is %d. \n", ret);
            return NKW_PAL_NVM_AP_WRITE_FAILED;
        }
        NKW_LOGI(kTag, "nkw_pal_write_nv_md_sync write AP nvm file success. \n");
        return 0;
    }
    NKW_LOGE(kTag, "Invaild nv position. \n");
    return NKW_PAL_NVM_INVALID_POSITION;
}
