// Host location of the NV items kept on the application processor.
#pragma once

namespace nkw::host::paths {
// AP items are files directly below this directory; the trailing slash is
// part of it, names are appended as they are.
inline constexpr const char kNvDir[] = "/data/quarn/";
}  // namespace nkw::host::paths
