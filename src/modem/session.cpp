// The process's session with the modem IPC library.
#include "modem/mipc.h"
#include "nkw_pal/modem.h"

extern "C" {

int32_t nkw_pal_modem_msg_init(const char *client_name) {
    return mipc_init(client_name);
}

int32_t nkw_pal_modem_msg_deinit(void) {
    return mipc_deinit();
}

}  // extern "C"
