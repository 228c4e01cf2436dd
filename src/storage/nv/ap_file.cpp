// NV items kept as files under "/data/quarn/" on the application processor.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "diag/log.h"
#include "host/host.h"
#include "host/nv.h"
#include "storage/nv/nv.h"

namespace nkw::nv {

namespace {

constexpr mode_t kDirMode = 0700;
// The open supplies no mode of its own; the settings are the owner's.
constexpr mode_t kFileMode = 0600;
constexpr int kWriteFlags = O_WRONLY | O_CREAT | O_TRUNC | O_SYNC;

int ap_read_failed() {
    NKW_LOGE(kTag, "Read nvm from AP failed. \n");
    return NKW_PAL_NVM_AP_READ_FAILED;
}

// "/data/quarn/" is made on the first write.
bool nv_dir_ready() {
    host::Path dir(host::paths::kNvDir);
    if (DIR *probe = opendir(dir.c_str())) {
        closedir(probe);
        return true;
    }
    return mkdir(dir.c_str(), kDirMode) == 0;
}

enum class WriteEnd { kFailed, kWholeAtOnce, kInPieces };

// Writes until `len` bytes are out. Only a single write of the whole length
// counts as "finished"; pieces that add up end the loop quietly.
WriteEnd write_all(int fd, const unsigned char *data, unsigned int len) {
    unsigned int offset = 0;
    while (offset < len) {
        ssize_t written = write(fd, data + offset, len - offset);
        // A write that makes no progress would loop for ever: a failure too.
        if (written <= 0) return WriteEnd::kFailed;
        if (static_cast<size_t>(written) == len) return WriteEnd::kWholeAtOnce;
        offset += static_cast<unsigned int>(written);
    }
    return WriteEnd::kInPieces;
}

}  // namespace

int nkw_pal_read_nv_ap_sync(const char *file_name, unsigned char *buf, unsigned int len) {
    if (file_name == nullptr) {
        NKW_LOGE(kTag, "Invalid file path. \n");
        return ap_read_failed();
    }
    char path[kNvPathSize];
    nv_file_path(file_name, path);
    int fd = open(host::Path(path).c_str(), O_RDONLY);
    if (fd < 0) {
        NKW_LOGE(kTag, "Open nvm file failed. \n");
        return ap_read_failed();
    }
    NKW_LOGI(kTag, "Open nvm file success.  \n");
    // One read: a short or empty file is a success that leaves the rest of
    // the buffer alone.
    ssize_t got = read(fd, buf, len);
    close(fd);
    if (got == -1) {
        NKW_LOGE(kTag, "Failed to read nvm file. \n");
        return ap_read_failed();
    }
    NKW_LOGI(kTag, "Read nv file success. \n");
    NKW_LOGI(kTag, "Read nvm from AP success. \n");
    return 0;
}

// 0, or the inner status: 714 no file name, 702 directory or file not
// opened, 704 write failed (the file is then left truncated or partial).
int nkw_pal_write_nv_ap_sync(const char *file_name, const unsigned char *data, unsigned int len) {
    if (file_name == nullptr) {
        NKW_LOGE(kTag, "Invalid file path. \n");
        return NKW_PAL_NVM_NO_FILE;
    }
    if (!nv_dir_ready()) {
        NKW_LOGE(kTag, "Open and mkdir %s failed. \n", host::paths::kNvDir);
        return NKW_PAL_NVM_OPEN_FAILED;
    }
    char path[kNvPathSize];
    nv_file_path(file_name, path);
    int fd = open(host::Path(path).c_str(), kWriteFlags, kFileMode);
    if (fd < 0) {
        NKW_LOGE(kTag, "Open %s failed. file handle value: %d\n \n", path, fd);
        return NKW_PAL_NVM_OPEN_FAILED;
    }
    int status = 0;
    switch (write_all(fd, data, len)) {
        case WriteEnd::kFailed:
            NKW_LOGE(kTag, "Write %s failed \n", path);
            status = kApWriteFailed;
            break;
        case WriteEnd::kWholeAtOnce:
            NKW_LOGD(kTag, "Write NV file finished \n");
            break;
        case WriteEnd::kInPieces:
            break;
    }
    close(fd);
    return status;
}

}  // namespace nkw::nv
