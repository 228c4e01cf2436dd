// Single-message transfers to the handle's slave.
#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include "device/i2c/i2c_handle.h"
#include "diag/log.h"
#include "host/i2c.h"

using nkw::i2c::kTag;

namespace {

bool valid(const nkw_pal_i2c_handle *handle, const void *buf, uint32_t len) {
    if (handle == nullptr) {
        NKW_LOGE(kTag, "i2c handle is NULL \n");
        return false;
    }
    if (buf == nullptr) {
        NKW_LOGE(kTag, "i2c buf is NULL \n");
        return false;
    }
    if (len > NKW_PAL_I2C_MAX_LEN) {
        NKW_LOGE(kTag, "i2c buf len is too long! \n");
        return false;
    }
    return true;
}

// The ioctl's result: negative on failure.
int transfer(const nkw_pal_i2c_handle *handle, uint8_t *buf, uint32_t len, uint16_t flags) {
    i2c_msg message{};
    message.addr = static_cast<uint16_t>(handle->i2c_slave_addr);
    message.flags = flags;
    message.len = static_cast<uint16_t>(len);
    message.buf = buf;
    i2c_rdwr_ioctl_data data{&message, 1};
    return nkw::host::i2c::ioctl(handle->i2c_fd, I2C_RDWR, reinterpret_cast<unsigned long>(&data));
}

}  // namespace

extern "C" {

int32_t nkw_pal_i2c_readBuff(nkw_pal_i2c_handle *handle, uint8_t *buf, uint32_t len) {
    if (!valid(handle, buf, len)) return NKW_PAL_I2C_BAD_ARG;
    const int ret = transfer(handle, buf, len, I2C_M_RD);
    if (ret < 0) {
        NKW_LOGE(kTag, "ioctl returned %d \n", ret);
        return NKW_PAL_I2C_READ_FAILED;
    }
    NKW_LOGI(kTag, "read success! \n");
    return 0;
}

int32_t nkw_pal_i2c_writeBuff(nkw_pal_i2c_handle *handle, const uint8_t *data, uint32_t len) {
    if (!valid(handle, data, len)) return NKW_PAL_I2C_BAD_ARG;
    // The kernel only reads a write message's buffer.
    const int ret = transfer(handle, const_cast<uint8_t *>(data), len, 0);
    if (ret < 0) {
        NKW_LOGE(kTag, "ioctl returned %d \n", ret);
        return NKW_PAL_I2C_WRITE_FAILED;
    }
    NKW_LOGI(kTag, "write success! \n");
    return 0;
}

}  // extern "C"
