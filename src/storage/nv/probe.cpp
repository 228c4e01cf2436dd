// Size and existence of NV items kept as AP files.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "diag/log.h"
#include "host/host.h"
#include "storage/nv/nv.h"

using nkw::nv::kTag;

namespace {

// Opens AP item `id`'s file read-write, creating neither the file nor its
// directory: 0 with *fd set, or the status that refuses the item. Lines are
// logged under the caller's name.
int open_item(unsigned int id, int *fd, const char *function = __builtin_FUNCTION(),
              int line = __builtin_LINE()) {
    int index = nkw::nv::index_of(id, function, line);
    if (index == NKW_PAL_NVM_END_MARKER) return NKW_PAL_NVM_INVALID_ID;
    const char *file_name = nkw::nv::row(index).file_name;
    if (file_name == nullptr) return NKW_PAL_NVM_NO_FILE;
    char path[nkw::nv::kNvPathSize];
    nkw::nv::nv_file_path(file_name, path);
    *fd = open(nkw::host::Path(path).c_str(), O_RDWR);
    if (*fd < 0) {
        if (nkw::diag::enabled(NKW_PAL_LOG_ERROR))
            nkw_pal_loge(kTag, "[%s:%d]-Open file failed, fp:%d\n \n", function, line, *fd);
        return NKW_PAL_NVM_OPEN_FAILED;
    }
    return 0;
}

}  // namespace

extern "C" int nkw_pal_nvm_get_nv_size(unsigned int id, unsigned int *size) {
    if (size == nullptr) {
        NKW_LOGE(kTag, "Invalid nvm parameter \n");
        return NKW_PAL_NVM_INVALID_ID;
    }
    int fd = -1;
    int refused = open_item(id, &fd);
    if (refused != 0) return refused;
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
    int fd = -1;
    int refused = open_item(id, &fd);
    if (refused != 0) return refused;
    close(fd);
    NKW_LOGI(kTag, "The nv_index: %d is exist \n", id);  // the row index, for an item with a file
    return 0;
}
