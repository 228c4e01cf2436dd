// The GNSS adaptor as the library reaches it: its local socket in the
// abstract namespace and the GNSS service's configuration files.
#pragma once

namespace nkw::host::gnss {

// The adaptor's abstract socket name ("mtk_gnssadp_at"; the test build gives
// each test a name of its own so parallel tests never meet).
const char *adaptor_socket_name();

namespace paths {
inline constexpr const char kMnlProp[] = "/etc/gnss/mnl.prop";
inline constexpr const char kGpsConf[] = "/etc/gnss/gps.conf";
}  // namespace paths

}  // namespace nkw::host::gnss
