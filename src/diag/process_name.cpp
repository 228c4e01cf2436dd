#include "diag/process_name.h"

#include <unistd.h>

#include <cstring>

#include "host/host.h"

namespace {
constexpr size_t kLinkBufferSize = 1024;
constexpr size_t kShortestName = 2;  // one-letter program names are refused
}  // namespace

int32_t GetSelfProcessName(char *name, int32_t size) {
    char link[kLinkBufferSize] = {};
    nkw::host::Path exe(nkw::host::paths::kProcSelfExe);
    ssize_t length = readlink(exe.c_str(), link, sizeof link - 1);
    if (length <= 0) return 0;

    const char *slash = std::strrchr(link, '/');
    if (slash == nullptr) return 0;
    const char *base = slash + 1;
    size_t base_len = std::strlen(base);
    if (base_len < kShortestName) return 0;
    if (size < 0 || base_len > static_cast<size_t>(size)) return 0;

    if (name != nullptr) std::memcpy(name, base, base_len + 1);
    return static_cast<int32_t>(base_len);
}
