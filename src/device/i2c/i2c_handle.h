// The I2C handle record and the routines its files share.
#pragma once

#include <semaphore.h>

#include <cstdint>

#include "nkw_pal/device.h"
#include "nkw_pal/os.h"

struct nkw_pal_i2c_handle {
    int32_t i2c_fd;
    thread_info *irq_thread;
    int32_t mail_fd;
    uint32_t i2c_controller_mode;
    uint32_t i2c_bit_rate;
    uint32_t i2c_slave_addr;
    uint32_t i2c_address_width;
    nkw_pal_i2c_irq_cb callback;
    // Posted by the interrupt thread once it takes cancellation only in its
    // receive, and as it ends, so that close frees the record only once
    // nothing runs on it.
    sem_t irq_running;
    sem_t irq_stopped;
};

namespace nkw::i2c {
inline constexpr const char *kTag = "I2C";
}  // namespace nkw::i2c

// Start routine of the interrupt thread; runs until cancelled.
void *nkw_pal_i2c_irq_thread_cb(void *handle);
