// PDP type of the last activated data call.
#include "connect/tag.h"
#include "diag/log.h"
#include "nkw_pal/connect.h"

extern "C" {

// IPv4 until a data call says otherwise.
uint8_t pdp_ip_type = 1;

uint8_t nkw_pal_get_pdp_ip_type(void) {
    NKW_LOGD(nkw::connect::kTag, "[connection_manage]: nkw_pal_get_pdp_ip_type \n");
    return pdp_ip_type;
}

}  // extern "C"
