// The exported result-code helpers.
#include "nkw_pal/diag.h"

extern "C" {

// Two (code, folded value) pairs: 0 -> 0, -1 -> -1.
const int32_t err_code_table[4] = {0, 0, -1, -1};

int32_t nkw_pal_err_code_convert(int32_t code) {
    return code == 0 ? 0 : 1;
}

}  // extern "C"
