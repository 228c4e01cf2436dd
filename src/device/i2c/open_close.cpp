// Opening one slave on the bus with its interrupt thread, and closing it.
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <unistd.h>

#include <cstdint>

#include "device/i2c/i2c_handle.h"
#include "diag/log.h"
#include "host/i2c.h"
#include "os/heap_record.h"

namespace host = nkw::host::i2c;
using nkw::i2c::kTag;

namespace {

constexpr uint32_t kModes = 2;
constexpr uint32_t kMasterMode = 1;
constexpr uint32_t kBitRates = 3;
constexpr uint32_t kAddressWidths = 2;

bool valid(const nkw_pal_i2c_cfg *p_cfg, nkw_pal_i2c_irq_cb callback) {
    if (p_cfg == nullptr) {
        NKW_LOGE(kTag, "p_cfg is NULL \n");
        return false;
    }
    if (p_cfg->i2c_controller_mode >= kModes) {
        NKW_LOGE(kTag, "i2c_controller_mode is unsupport \n");
        return false;
    }
    if (p_cfg->i2c_bit_rate >= kBitRates) {
        NKW_LOGE(kTag, "i2c_bit_rate is unsupport \n");
        return false;
    }
    if (p_cfg->i2c_address_width >= kAddressWidths) {
        NKW_LOGE(kTag, "i2c_address_width is unsupport \n");
        return false;
    }
    if (p_cfg->i2c_controller_mode == kMasterMode && callback == nullptr) {
        NKW_LOGE(kTag, "i2c device mode is master,cb can not NULL \n");
        return false;
    }
    return true;
}

}  // namespace

extern "C" {

nkw_pal_i2c_handle *nkw_pal_i2c_open(const nkw_pal_i2c_cfg *p_cfg, nkw_pal_i2c_irq_cb callback) {
    if (!valid(p_cfg, callback)) return nullptr;
    auto handle = nkw::HeapRecord<nkw_pal_i2c_handle>::allocate();
    if (!handle) {
        NKW_LOGE(kTag, "i2c device malloc failed \n");
        return nullptr;
    }
    handle->i2c_fd = host::open(host::kDevice, O_RDWR);
    if (handle->i2c_fd < 0) {
        NKW_LOGE(kTag, "i2c open fail, i2c_fd = %d \n", handle->i2c_fd);
        return nullptr;
    }
    handle->i2c_controller_mode = p_cfg->i2c_controller_mode;
    handle->i2c_bit_rate = p_cfg->i2c_bit_rate;
    handle->i2c_slave_addr = p_cfg->i2c_slave_addr;
    handle->i2c_address_width = p_cfg->i2c_address_width;
    int ret = host::ioctl(handle->i2c_fd, I2C_SLAVE, handle->i2c_slave_addr);
    if (ret < 0) {
        NKW_LOGE(kTag, "i2c ioctl set slave addr fail %d \n", ret);
        host::close(handle->i2c_fd);
        return nullptr;
    }
    ret = host::ioctl(handle->i2c_fd, I2C_TENBIT, handle->i2c_address_width);
    if (ret < 0) {
        NKW_LOGE(kTag, "i2c ioctl set address_width fail %d \n", ret);
        host::close(handle->i2c_fd);
        return nullptr;
    }
    ret = nkw_pal_i2c_mail_create(&handle->mail_fd);
    if (ret != 0) {
        NKW_LOGE(kTag, "i2c mail create failed %d \n", ret);
        host::close(handle->i2c_fd);
        return nullptr;
    }
    handle->callback = callback;
    sem_init(&handle->irq_running, 0, 0);
    sem_init(&handle->irq_stopped, 0, 0);
    ret = nkw_pal_thread_create(&handle->irq_thread, "i2c_irq_th", nullptr,
                                nkw_pal_i2c_irq_thread_cb, handle.get());
    if (ret != 0) {
        NKW_LOGE(kTag, "i2c irq thread create failed %d \n", ret);
        sem_destroy(&handle->irq_running);
        sem_destroy(&handle->irq_stopped);
        close(handle->mail_fd);
        host::close(handle->i2c_fd);
        return nullptr;
    }
    // Until the thread runs, a close could cancel it before it can report
    // its end.
    while (sem_wait(&handle->irq_running) != 0) {
    }
    NKW_LOGI(kTag, "i2c open success \n");
    return handle.release();
}

int32_t nkw_pal_i2c_close(nkw_pal_i2c_handle *handle) {
    if (handle == nullptr) {
        NKW_LOGE(kTag, "i2c handle is NULL \n");
        return NKW_PAL_I2C_BAD_ARG;
    }
    if (host::close(handle->i2c_fd) != 0) {
        NKW_LOGE(kTag, "i2c close failed \n");
        return NKW_PAL_I2C_CLOSE_FAILED;
    }
    // The thread goes first: a receive on an already closed socket would
    // return at once and call back without a message.
    if (nkw_pal_thread_delete(&handle->irq_thread) != 0) {
        close(handle->mail_fd);
        NKW_LOGE(kTag, "i2c thread delete failed \n");
        return NKW_PAL_I2C_CLOSE_FAILED;
    }
    // The thread is cancelled only inside its receive; wait until it has
    // left, so that no callback runs once close has returned.
    while (sem_wait(&handle->irq_stopped) != 0) {
    }
    close(handle->mail_fd);
    sem_destroy(&handle->irq_running);
    sem_destroy(&handle->irq_stopped);
    nkw::HeapRecord<nkw_pal_i2c_handle>::adopt(handle).reset();
    NKW_LOGI(kTag, "i2c_close success \n");
    return 0;
}

}  // extern "C"
