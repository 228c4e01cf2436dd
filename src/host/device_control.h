// Nodes, files and commands of module control. The test build relocates the
// files under the sandbox root, routes "/dev/pcie_dipc" to a model and can
// make the next read or write of a node fail.
#pragma once

#include <sys/types.h>

#include <cstdio>

namespace nkw::host::device_control {

inline constexpr const char kPcieDipc[] = "/dev/pcie_dipc";
inline constexpr const char kConnectMode[] = "/tmp/tolv_connect_mode";
inline constexpr const char kDipcConfig[] = "/mnt/vendor/nvdata/md_cmn/dipc_config";
inline constexpr const char kWDisableFlag[] =
    "/sys/bus/platform/devices/tolvaro_wdisable_ext_eint_pin/gtfmodeflag";
inline constexpr const char kGnssIrqFlag[] =
    "/sys/bus/platform/devices/tolvaro_gnss_irq_ext_eint_pin/gtfmodeflag";
inline constexpr const char kClockDebug[] = "/proc/clkdbg";
inline constexpr const char kRandom[] = "/dev/random";
inline constexpr const char kUrandom[] = "/dev/urandom";

inline constexpr const char kRebootCommand[] = "reboot";
inline constexpr const char kStop4dipcdCommand[] = "/etc/init.d/4dipcd stop";

int open(const char *path, int flags);
int ioctl(int fd, unsigned long request, int *arg);
ssize_t read(int fd, void *buf, size_t count);
ssize_t write(int fd, const void *buf, size_t count);
int close(int fd);
FILE *fopen(const char *path, const char *mode);

// Runs a command line through the shell; a command given by absolute path
// is the sandbox's own in the test build.
int run_command(const char *command_line);

}  // namespace nkw::host::device_control
