// The netlink socket on which the kernel driver posts interrupt messages.
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include "device/i2c/i2c_handle.h"
#include "diag/log.h"
#include "host/i2c.h"

using nkw::i2c::kTag;

extern "C" int32_t nkw_pal_i2c_mail_create(int32_t *out) {
    if (out == nullptr) {
        NKW_LOGE(kTag, "i2c mail is NULL \n");
        return -1;
    }
    const int fd = socket(AF_NETLINK, SOCK_RAW, NETLINK_USERSOCK);
    if (fd < 0) {
        NKW_LOGE(kTag, "i2c socket create failed \n");
        return -1;
    }
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_pid = nkw::host::i2c::mail_port_id();
    address.nl_groups = 0;
    if (bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
        NKW_LOGE(kTag, "i2c socket bind failed \n");
        close(fd);
        return -1;
    }
    NKW_LOGI(kTag, "i2c socket create success \n");
    *out = fd;
    return 0;
}
