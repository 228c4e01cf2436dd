// Arbitrary record files through the offline log's restore. The timer is
// refused here, so every run stops right after the restore (or the fresh
// start that a broken record causes) and nothing outlives the input.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "mipc_sim_nvram.h"
#include "nkw_pal.h"

namespace {
std::string g_record;
}  // namespace

extern "C" int timer_create(clockid_t, sigevent *, timer_t *) {
    errno = EPERM;
    return -1;
}

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    nkw_pal_log_set_level(0);
    const std::string root = std::getenv("NKW_PAL_SANDBOX_ROOT");
    mkdir((root + "/data").c_str(), 0755);
    // Clearing must not cost a real removal per run.
    symlink("/bin/true", (root + "/bin/rm").c_str());
    symlink("/bin/true", (root + "/bin/touch").c_str());
    for (int n = 1; n <= 8; ++n) {
        std::fclose(std::fopen(
            (root + "/data/tolv_offline_log" + std::to_string(n) + ".log").c_str(), "w"));
    }
    g_record = root + "/data/tolv_offline_log_record.log";
    mipc_sim::set_nvram_item(0xE11D, {1, 1});  // NV item 34: on, every minute
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 64) return 0;
    FILE *out = std::fopen(g_record.c_str(), "wb");
    if (out == nullptr) std::abort();
    std::fwrite(data, 1, size, out);
    std::fclose(out);
    // The timer is refused, so init ends in -1 whatever the record held.
    if (nkw_pal_offline_log_init() != -1) std::abort();
    return 0;
}
