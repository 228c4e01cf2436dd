// Host side of the data connection: the resolver file, the traffic counter
// nodes and the command lines that configure the modem's network interface.
#pragma once

#include <cstdio>

namespace nkw::host {

namespace paths {
inline constexpr const char kResolvConf[] = "/etc/resolv.conf";
// printf patterns taking the interface name.
inline constexpr const char kRxBytesPattern[] = "/sys/devices/virtual/net/%s/statistics/rx_bytes";
inline constexpr const char kTxBytesPattern[] = "/sys/devices/virtual/net/%s/statistics/tx_bytes";
}  // namespace paths

namespace commands {
// Server text, then the resolver file's path.
inline constexpr const char kDnsReplace[] = "echo 'nameserver %s' > %s";
inline constexpr const char kDnsAppend[] = "echo 'nameserver %s' >> %s";
// Interface id N of ccmni<N>.
inline constexpr const char kDefaultRoute[] = "route add default dev ccmni%d";
inline constexpr const char kMtu[] = "ip link set ccmni%d mtu 1340";
// Interface name.
inline constexpr const char kLinkRunning[] = "ip link show %s | grep 'state UP.*RUNNING'";
inline constexpr const char kHasIpv4[] = "ip addr show %s | grep 'inet ' | grep -v '0.0.0.0'";
}  // namespace commands

// popen(command_line, "r") and pclose, for pipelines whose output is read.
FILE *open_pipe(const char *command_line);
int close_pipe(FILE *pipe);

}  // namespace nkw::host
