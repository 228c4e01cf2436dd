// Arbitrary configuration files through the dual-IPC mode reader: whatever
// the file holds, the answer is a mode from 1 to 5.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "nkw_pal.h"

namespace {
std::string g_config;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    const std::string root = std::getenv("NKW_PAL_SANDBOX_ROOT");
    std::string dir = root;
    for (const char *part : {"/mnt", "/vendor", "/nvdata", "/md_cmn"}) {
        dir += part;
        std::system(("mkdir -p '" + dir + "'").c_str());
    }
    g_config = dir + "/dipc_config";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 4096) return 0;
    FILE *out = std::fopen(g_config.c_str(), "wb");
    if (out == nullptr) std::abort();
    std::fwrite(data, 1, size, out);
    std::fclose(out);
    const int32_t mode = nkw_pal_get_dual_ipc_mode();
    if (mode < 1 || mode > 5) std::abort();
    return 0;
}
