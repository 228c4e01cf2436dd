/* The public header compiles on its own as C11. */
#include <nkw_pal.h>

int32_t (*const header_probe)(int32_t) = nkw_pal_err_code_convert;
