// The offline log's files: the record, first-start preparation, clearing.
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

namespace nkw::offline_log {

std::atomic<uint8_t> g_current{0};

size_t path_growth() {
    host::Path root("");
    return std::strlen(root.c_str());
}

void clear() {
    nkw_pal_offline_log_clear();
}

}  // namespace nkw::offline_log

namespace {
constexpr size_t kCommandMax = 40;
constexpr mode_t kFileMode = 0644;
}  // namespace

int32_t nkw_pal_offline_log_record(uint8_t n) {
    if (n > nkw::offline_log::kFiles) {
        NKW_LOGE(kTag, "offline_log record param failed, input log number is %d  \n", n);
        return -1;
    }
    nkw::host::Path record(paths::kRecord);
    // Not truncated: the record is always rewritten whole.
    const int fd = open(record.c_str(), O_WRONLY | O_CREAT, kFileMode);
    if (fd < 0) {
        NKW_LOGE(kTag, "offline_log open %s failed! \n", record.c_str());
        return -1;
    }
    char text[nkw::offline_log::kRecordSize] = {};
    std::snprintf(text, sizeof text, "%s%d", nkw::offline_log::kRecordKey, n);
    if (write(fd, text, sizeof text) != static_cast<ssize_t>(sizeof text)) {
        NKW_LOGE(kTag, "offline_log write %s failed! \n", record.c_str());
        close(fd);
        return -1;
    }
    close(fd);
    return 0;
}

int32_t nkw_pal_offline_log_startup() {
    nkw::host::Path base(paths::kBase);
    for (int n = nkw::offline_log::kFiles; n >= 1; --n) {
        char path[nkw::host::kPathMax + 8];
        std::snprintf(path, sizeof path, "%s%d.log", base.c_str(), n);
        const int fd = open(path, O_RDWR | O_CREAT | O_TRUNC, kFileMode);
        if (fd < 0) {
            NKW_LOGE(kTag, "offline_log open %s failed! \n", path);
            return -1;
        }
        close(fd);
    }
    if (nkw_pal_offline_log_record(1) != 0) {
        NKW_LOGE(kTag, "offline_log record failed! \n");
        return -1;
    }
    return 0;
}

void nkw_pal_offline_log_clear() {
    const size_t room = kCommandMax + nkw::offline_log::path_growth();
    nkw::host::Path base(paths::kBase);
    nkw::host::Path record(paths::kRecord);
    char command[kCommandMax + nkw::host::kPathMax] = {};
    for (int n = nkw::offline_log::kFiles; n >= 1; --n) {
        std::memset(command, 0, sizeof command);
        std::snprintf(command, room, "rm -f %s%d.log", base.c_str(), n);
        nkw::host::run_shell(command);
    }
    std::memset(command, 0, sizeof command);
    // 39 characters in production: it just fits the 40-byte buffer.
    std::snprintf(command, room, "rm -f %s", record.c_str());
    nkw::host::run_shell(command);
}
