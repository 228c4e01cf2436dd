// Opening and closing the system log, and the level guarded by its semaphore.
#include <syslog.h>

#include "diag/level.h"
#include "diag/process_name.h"
#include "nkw_pal/diag.h"
#include "nkw_pal/os.h"

namespace {

constexpr const char *kLogSemName = "nkw_pal_log_sem";
constexpr uint32_t kLogSemMax = 1;
constexpr uint32_t kLogSemInit = 1;
constexpr int32_t kIdentSize = 1024;

sem_info *g_log_sem = nullptr;
// syslog keeps the ident pointer, so it must outlive the session.
char g_ident[kIdentSize + 1];

}  // namespace

extern "C" {

int32_t nkw_pal_log_init(void) {
    if (nkw_pal_sem_init(&g_log_sem, kLogSemName, kLogSemMax, kLogSemInit) != 0) return -1;
    for (char &c : g_ident) c = '\0';
    GetSelfProcessName(g_ident, kIdentSize);
    openlog(g_ident, LOG_PID, LOG_DAEMON);
    return 0;
}

int32_t nkw_pal_log_close(void) {
    closelog();
    nkw_pal_sem_deinit(&g_log_sem);
    return 0;
}

int32_t nkw_pal_log_set_level(uint32_t level) {
    if (level > NKW_PAL_LOG_TRACE) return -1;
    // As with the level read, a lock failure does not stop the write: it is
    // logged by the semaphore call and the level is stored all the same.
    nkw_pal_sem_wait(g_log_sem, nullptr);
    nkw::diag::g_log_level.store(level, std::memory_order_relaxed);
    nkw_pal_sem_post(g_log_sem);
    return 0;
}

}  // extern "C"
