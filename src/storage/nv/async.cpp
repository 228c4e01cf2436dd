// Asynchronous reads and writes of modem NVRAM items. The request record
// travels to the modem IPC library with the request and comes back with the
// completion, which frees it whatever happened.
#include "diag/log.h"
#include "modem/mipc.h"
#include "os/heap_record.h"
#include "storage/nv/nv.h"

using nkw::nv::kTag;

namespace {

constexpr auto kPs = static_cast<mipc_sim_ps_id_enum>(nkw::nv::kPsId);
constexpr uint16_t kRecord = NKW_PAL_NVM_MODEM_RECORD;

struct AsyncRead {
    uint32_t data_len;  // requested, then what the modem reported
    uint32_t reserved;
    nkw_pal_nvm_read_cb cb;
};

struct AsyncWrite {
    const unsigned char *data;
    uint32_t data_len;
    uint32_t reserved;
    nkw_pal_nvm_write_cb cb;
};

static_assert(sizeof(void *) != 8 || sizeof(AsyncRead) == 16, "read request record is 16 bytes");
static_assert(sizeof(void *) != 8 || sizeof(AsyncWrite) == 24, "write request record is 24 bytes");

void nkw_pal_nvm_async_read_cb(mipc_sim_ps_id_enum, mipc_sys_nvram_read_struct *result,
                               void *priv) {
    auto request = nkw::HeapRecord<AsyncRead>::adopt(static_cast<AsyncRead *>(priv));
    if (!request || result == nullptr) {
        NKW_LOGE(kTag, "nvm_async_read or result_ptr is NULL \n");
        return;
    }
    NKW_LOGI(kTag, "Async read result_code: %d \n", result->result_code);
    if (result->result_code != 0) {
        // A failed read is not reported to the caller at all.
        NKW_LOGE(kTag, "Async read failed, result_code: %d \n", result->result_code);
        return;
    }
    request->data_len = result->data_len;
    NKW_LOGI(kTag, "Async read nvm data_len is: %d \n", request->data_len);
    if (request->cb == nullptr) {
        NKW_LOGE(kTag, "Async read callback is NULL \n");
        return;
    }
    request->cb(result->data, request->data_len);
}

void nkw_pal_nvm_async_write_cb(mipc_sim_ps_id_enum, mipc_sys_nvram_write_struct *result,
                                void *priv) {
    auto request = nkw::HeapRecord<AsyncWrite>::adopt(static_cast<AsyncWrite *>(priv));
    if (!request || result == nullptr) {
        NKW_LOGE(kTag, "nvm_async_write or result_ptr is NULL \n");
        return;
    }
    NKW_LOGI(kTag, "Async write result_code: %d \n", result->result_code);
    if (request->cb != nullptr) request->cb(result->result_code == 0 ? 1 : 0);
}

// The modem row of `id` for a request of `len` bytes, or the status that
// refuses it. Lines are logged under the caller's name, after its own
// check of the callback or data.
int modem_row(unsigned int id, unsigned int len, const nkw_nvm_item **item, const char *function,
              int line) {
    if (len == 0) {
        if (nkw::diag::enabled(NKW_PAL_LOG_ERROR))
            nkw_pal_loge(kTag, "[%s:%d]-Invalid datalen. \n", function, line);
        return NKW_PAL_INVALID_ARG;
    }
    int index = nkw_pal_nvm_tab_index_get(id);
    if (index == NKW_PAL_NVM_END_MARKER) {
        if (nkw::diag::enabled(NKW_PAL_LOG_ERROR))
            nkw_pal_loge(kTag, "[%s:%d]-Invalid logic nvm id. \n", function, line);
        return NKW_PAL_NVM_INVALID_ID;
    }
    *item = &nkw::nv::row(index);
    if ((*item)->position == NKW_PAL_NVM_POSITION_AP) {
        // The write says "read" as well: one message for both.
        if (nkw::diag::enabled(NKW_PAL_LOG_ERROR))
            nkw_pal_loge(kTag, "[%s:%d]-Did not support AP async NVM read. \n", function, line);
        return NKW_PAL_FAIL;
    }
    if ((*item)->position != NKW_PAL_NVM_POSITION_MODEM) {
        if (nkw::diag::enabled(NKW_PAL_LOG_ERROR))
            nkw_pal_loge(kTag, "[%s:%d]-Invaild nv position. \n", function, line);
        return NKW_PAL_NVM_INVALID_POSITION;
    }
    return 0;
}

}  // namespace

extern "C" int nkw_pal_nvm_read_async(unsigned int id, nkw_pal_nvm_read_cb read_cb,
                                      unsigned int len) {
    if (read_cb == nullptr) {
        NKW_LOGE(kTag, "Invalid read_cb. \n");
        return NKW_PAL_INVALID_ARG;
    }
    const nkw_nvm_item *item = nullptr;
    int refused = modem_row(id, len, &item, __func__, __LINE__);
    if (refused != 0) return refused;

    auto request = nkw::HeapRecord<AsyncRead>::allocate();
    if (!request) {
        NKW_LOGE(kTag, "nvm_async_read malloc failed. \n");
        return NKW_PAL_NO_MEMORY;
    }
    request->data_len = len;
    request->cb = read_cb;
    NKW_LOGD(kTag, "nvm_async_read->cb: %p \n", reinterpret_cast<void *>(request->cb));
    NKW_LOGD(kTag, "nvm_async_read->data_len is: %d \n", request->data_len);
    mipc_result_enum ret =
        mipc_sys_nvram_read_async(kPs, nkw_pal_nvm_async_read_cb, request.get(), item->plat_nvm_id,
                                  kRecord, static_cast<uint16_t>(len));
    if (ret != MIPC_RESULT_SUCCESS) {
        request.reset();
        NKW_LOGE(kTag, "mipc_sys_nvram_read_async fail, ret is:%d. \n", ret);
        return NKW_PAL_FAIL;
    }
    (void)request.release();  // the completion frees it
    NKW_LOGI(kTag, "mipc_sys_nvram_read_async success. \n");
    return 0;
}

extern "C" int nkw_pal_nvm_write_async(unsigned int id, nkw_pal_nvm_write_cb write_cb,
                                       unsigned char *data, unsigned int len) {
    if (data == nullptr) {
        NKW_LOGE(kTag, "Invalid data. \n");
        return NKW_PAL_INVALID_ARG;
    }
    const nkw_nvm_item *item = nullptr;
    int refused = modem_row(id, len, &item, __func__, __LINE__);
    if (refused != 0) return refused;

    auto request = nkw::HeapRecord<AsyncWrite>::allocate();
    if (!request) {
        NKW_LOGE(kTag, "nvm_async_write malloc failed. \n");
        return NKW_PAL_NO_MEMORY;
    }
    request->data = data;
    request->data_len = len;
    request->cb = write_cb;
    mipc_result_enum ret =
        mipc_sys_nvram_write_async(kPs, nkw_pal_nvm_async_write_cb, request.get(),
                                   item->plat_nvm_id, kRecord, static_cast<uint16_t>(len), data);
    if (ret != MIPC_RESULT_SUCCESS) {
        request.reset();
        NKW_LOGE(kTag, "MD nvm async write failed,ret is:%d. \n", ret);
        return NKW_PAL_FAIL;
    }
    (void)request.release();  // the completion frees it
    NKW_LOGI(kTag, "MD nvm async write success. \n");
    return 0;
}
