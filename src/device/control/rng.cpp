// Random bytes from the kernel's pool, in one read.
#include <fcntl.h>

#include "device/control/control.h"
#include "diag/log.h"
#include "host/device_control.h"

namespace host = nkw::host::device_control;
using nkw::device::kTag;

extern "C" int32_t nkw_pal_rng_generate(unsigned char *buf, unsigned int len) {
    if (buf == nullptr) {
        NKW_LOGE(kTag, "Parameter is NULL \n");
        return NKW_PAL_INVALID_ARG;
    }
    if (len == 0) {
        NKW_LOGE(kTag, "Invalid size \n");
        return NKW_PAL_INVALID_ARG;
    }
    int fd = host::open(host::kRandom, O_RDONLY);
    if (fd < 0) fd = host::open(host::kUrandom, O_RDONLY);
    if (fd < 0) {
        NKW_LOGE(kTag, "Failed to open file \n");
        return NKW_PAL_RANDOM_FAILED;
    }
    // One read, no retry: a pool that cannot deliver at once is a failure.
    if (host::read(fd, buf, len) != static_cast<ssize_t>(len)) {
        NKW_LOGE(kTag, "Failed to read file \n");
        host::close(fd);
        return NKW_PAL_RANDOM_FAILED;
    }
    for (unsigned int i = 0; i < len; ++i) NKW_LOGI(kTag, "Random bytes: %02x \n", buf[i]);
    host::close(fd);
    return 0;
}
