/* A throwaway daemon built against an installed nkw_pal: one logging call,
 * one codec call and the modem session, so a broken link or run path shows. */
#include <nkw_pal.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    if (nkw_pal_log_init() != 0) {
        fprintf(stderr, "consumer: log init failed\n");
        return 1;
    }
    nkw_pal_log_set_level(NKW_PAL_LOG_INFO);
    nkw_pal_logi("TEST", "[%s:%d]-installed consumer running \n", __func__, __LINE__);

    char hex[16] = {0};
    if (nkw_pal_str2hex("OK", 2, hex, sizeof hex) != 4 || strcmp(hex, "4f4b") != 0) {
        fprintf(stderr, "consumer: str2hex gave \"%s\"\n", hex);
        return 1;
    }
    int32_t opened = nkw_pal_modem_msg_init("consumer");
    int32_t closed = nkw_pal_modem_msg_deinit();
    nkw_pal_log_close();
    if (opened != 0 || closed != 0) {
        fprintf(stderr, "consumer: modem session %d/%d\n", (int)opened, (int)closed);
        return 1;
    }
    printf("consumer: ok\n");
    return 0;
}
