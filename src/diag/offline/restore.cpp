// Restoring the rotation after a restart: missing snapshots are recreated
// empty and the number written last is read back from the record.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "diag/log.h"
#include "diag/offline/offline_log.h"
#include "host/host.h"
#include "host/offline_log.h"

namespace paths = nkw::host::offline_log;
using nkw::offline_log::kTag;

namespace {

constexpr size_t kCommandMax = 80;
constexpr size_t kPathBuffer = 40;
// The number is read at this fixed position, right behind the key when the
// key opens the file; a record with the key elsewhere yields whatever sits there.
constexpr size_t kNumberAt = 17;
static_assert(sizeof nkw::offline_log::kRecordKey - 1 == kNumberAt, "key length");

void recreate_missing_snapshots() {
    const size_t growth = nkw::offline_log::path_growth();
    nkw::host::Path base(paths::kBase);
    for (int n = nkw::offline_log::kFiles; n >= 1; --n) {
        char path[kPathBuffer + nkw::host::kPathMax] = {};
        std::snprintf(path, kPathBuffer + growth, "%s%d.log", base.c_str(), n);
        const int fd = open(path, O_RDONLY);
        if (fd < 0) {
            NKW_LOGE(kTag, "offline_log open %s failed, recreat it \n", path);
            char command[kCommandMax + 2 * nkw::host::kPathMax] = {};
            std::snprintf(command, kCommandMax + 2 * growth, "rm -f %s && touch %s", path, path);
            nkw::host::run_shell(command);
            continue;
        }
        close(fd);
    }
}

}  // namespace

int32_t nkw_pal_offline_log_reboot() {
    recreate_missing_snapshots();
    nkw::host::Path record(paths::kRecord);
    const int fd = open(record.c_str(), O_RDWR);
    if (fd < 0) {
        NKW_LOGE(kTag, "offline_log open %s failed! \n", record.c_str());
        return -1;
    }
    // One byte more than is read keeps the text terminated for the search.
    char text[nkw::offline_log::kRecordSize + 1] = {};
    if (read(fd, text, nkw::offline_log::kRecordSize) < 0) {
        NKW_LOGE(kTag, "offline_log read %s failed! \n", record.c_str());
        close(fd);
        return -1;
    }
    if (std::strstr(text, nkw::offline_log::kRecordKey) == nullptr) {
        NKW_LOGE(kTag, "offline_log strstr failed! \n");
        close(fd);
        return -1;
    }
    nkw::offline_log::g_current.store(static_cast<uint8_t>(text[kNumberAt] - '0'));
    close(fd);
    return 0;
}

namespace nkw::offline_log {

int32_t restore() {
    return nkw_pal_offline_log_reboot();
}

}  // namespace nkw::offline_log
