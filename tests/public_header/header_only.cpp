// The public header compiles on its own as C++17 and declares C linkage.
#include <nkw_pal.h>

extern "C" int32_t (*const header_probe_cxx)(int32_t);
int32_t (*const header_probe_cxx)(int32_t) = nkw_pal_err_code_convert;
