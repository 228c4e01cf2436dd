// Test-build GNSS adaptor access: the abstract socket name carries the test's
// sandbox root, so a simulated adaptor of one test is never reached by
// another running in parallel.
#include <cstdio>
#include <cstdlib>

#include "host/gnss.h"
#include "nkw_pal/common.h"

namespace nkw::host::gnss {

const char *adaptor_socket_name() {
    // An abstract address holds at most 107 name bytes.
    static char name[108];
    const char *root = std::getenv("NKW_PAL_SANDBOX_ROOT");
    int n = std::snprintf(name, sizeof name, "%s/mtk_gnssadp_at", root != nullptr ? root : "");
    if (root == nullptr || root[0] != '/' || n < 0 || static_cast<size_t>(n) >= sizeof name) {
        std::fprintf(stderr, "nkw_pal sandbox build: no usable sandbox root for the GNSS socket\n");
        std::abort();
    }
    return name;
}

}  // namespace nkw::host::gnss

// Where a test's simulated adaptor must listen.
extern "C" NKW_PAL_API const char *nkw_pal_sandbox_gnss_socket_name(void) {
    return nkw::host::gnss::adaptor_socket_name();
}
