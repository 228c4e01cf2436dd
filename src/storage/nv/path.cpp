#include <cstring>

#include "host/nv.h"
#include "storage/nv/nv.h"

namespace nkw::nv {

void nv_file_path(const char *file_name, char (&path)[kNvPathSize]) {
    // The table's names are short and fixed; the bound only guards the copy.
    std::memset(path, 0, sizeof path);
    std::strncpy(path, host::paths::kNvDir, sizeof path - 1);
    std::strncat(path, file_name, sizeof path - 1 - std::strlen(path));
}

}  // namespace nkw::nv
