// The data class (radio access technology) of the current bearer.
#include "diag/log.h"
#include "modem/answer_check.h"
#include "modem/info_tag.h"
#include "modem/mipc.h"
#include "nkw_pal/info.h"
#include "os/heap_record.h"

using nkw::info::kTag;

namespace {

// Bits of the modem's data-class mask, tested in this order.
constexpr uint32_t kNrBits = 0xC0;
constexpr uint32_t kLteBits = 0x20;
constexpr uint32_t kUmtsBits = 0x407E001D;
constexpr uint32_t kGsmBits = 0x80010002;

}  // namespace

extern "C" int32_t nkw_pal_get_current_dataclass(uint16_t *dataclass) {
    if (!nkw::info::argument_given(dataclass, __func__, "current data")) return NKW_PAL_FAIL;
    auto record = nkw::HeapRecord<mipc_nw_attach_state_struct>::allocate();
    if (!record) {
        NKW_LOGE(kTag, "malloc failed!!! \n \n");
        return NKW_PAL_FAIL;
    }
    mipc_result_enum result = mipc_nw_ps_get_sync(MIPC_PS_ALL, record.get());
    if (!nkw::info::answer_ok(__func__, "nw_bearer", result, record->result_code,
                              nkw::info::Spacing::kTight)) {
        return NKW_PAL_FAIL;
    }
    const uint32_t mask = record->data_class;
    NKW_LOGI(kTag, "current_data_class: %d \n", mask);
    // The logs show the caller's old value, as they always have.
    const int previous = *dataclass;
    uint16_t code;
    if ((mask & kNrBits) != 0) {
        code = NKW_PAL_DATACLASS_NR;
        NKW_LOGI(kTag, "get dataclass, TYPE_NR, nw_bearer:%d \n", previous);
    } else if ((mask & kLteBits) != 0) {
        code = NKW_PAL_DATACLASS_LTE;
        NKW_LOGI(kTag, "get dataclass, TYPE_LTE, nw_bearer:%d \n", previous);
    } else if ((mask & kUmtsBits) != 0) {
        code = NKW_PAL_DATACLASS_UMTS;
        NKW_LOGI(kTag, "get dataclass, TYPE_UMT, nw_bearer:%d \n", previous);
    } else if ((mask & kGsmBits) != 0) {
        code = NKW_PAL_DATACLASS_GSM;
        NKW_LOGI(kTag, "get dataclass, TYPE_GSM, nw_bearer:%d \n", previous);
    } else {
        code = NKW_PAL_DATACLASS_UNKNOWN;
        NKW_LOGI(kTag, "get dataclass, unknow, nw_bearer:%d \n", previous);
    }
    *dataclass = code;
    return NKW_PAL_OK;
}
