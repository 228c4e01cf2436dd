// Size and existence of NV items kept as AP files.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "diag/log.h"
#include "host/host.h"
#include "storage/nv/nv.h"

using nkw::nv::kTag;

namespace {

// The item's file opened read-write, or -1 after the open's log line. Neither
// the file nor its directory is created.
int open_item_file(const char *file_name, const char *function = __builtin_FUNCTION(),
                   int line = __builtin_LINE()) {
    char path[nkw::nv::kNvPathSize];
    nkw::nv::nv_file_path(file_name, path);
    int fd = open(nkw::host::Path(path).c_str(), O_RDWR);
    if (fd < 0 && nkw::diag::enabled(NKW_PAL_LOG_ERROR)) {
        nkw_pal_loge(kTag, "[%s:%d]-Open file failed, fp:%d\n \n", function, line, fd);
    }
    return fd;
}

}  // namespace

extern "C" int nkw_pal_nvm_get_nv_size(unsigned int id, unsigned int *size) {
    if (size == nullptr) {
        NKW_LOGE(kTag, "Invalid nvm parameter \n");
        return NKW_PAL_NVM_INVALID_ID;
    }
    int index = nkw_pal_nvm_tab_index_get(id);
    if (index == NKW_PAL_NVM_END_MARKER) {
        NKW_LOGE(kTag, "Invalid logic nvm id \n");
        return NKW_PAL_NVM_INVALID_ID;
    }
    const char *file_name = nkw::nv::row(index).file_name;
    if (file_name == nullptr) return NKW_PAL_NVM_NO_FILE;
    int fd = open_item_file(file_name);
    if (fd < 0) return NKW_PAL_NVM_OPEN_FAILED;
    struct stat info {};
    int status = NKW_PAL_NVM_EMPTY_FILE;
    if (fstat(fd, &info) == 0 && info.st_size > 0) {
        *size = static_cast<unsigned int>(info.st_size);
        // A success, logged at error level all the same: callers know the line.
        NKW_LOGE(kTag, "Get nvm file size success, the nv size is:%d. \n", *size);
        status = 0;
    } else {
        NKW_LOGE(kTag, "Get nvm file size failed \n");
    }
    close(fd);
    return status;
}

extern "C" int nkw_pal_nvm_check_nv_exist(unsigned int id) {
    int index = nkw_pal_nvm_tab_index_get(id);
    if (index == NKW_PAL_NVM_END_MARKER) {
        NKW_LOGE(kTag, "Invalid logic nvm id \n");
        return NKW_PAL_NVM_INVALID_ID;
    }
    const char *file_name = nkw::nv::row(index).file_name;
    if (file_name == nullptr) return NKW_PAL_NVM_NO_FILE;
    int fd = open_item_file(file_name);
    if (fd < 0) return NKW_PAL_NVM_OPEN_FAILED;
    close(fd);
    NKW_LOGI(kTag, "The nv_index: %d is exist \n", index);
    return 0;
}
