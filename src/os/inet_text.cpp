// Address text conversions of the socket wrappers.
#include <arpa/inet.h>

#include <cerrno>
#include <cstring>

#include "diag/log.h"
#include "nkw_pal/os.h"
#include "os/ip_family.h"

namespace {
constexpr const char *kTag = "SOCKET";
}

extern "C" {

int32_t nkw_pal_inet_pton(uint32_t ip_type, const char *text, ip_addr *out) {
    if (!nkw::os::valid_ip_type(ip_type)) {
        NKW_LOGE(kTag, "ip_type is invalid \n");
        return NKW_PAL_INVALID_ARG;
    }
    if (text == nullptr || out == nullptr) {
        NKW_LOGE(kTag, "src or dst is NULL \n");
        return NKW_PAL_INVALID_ARG;
    }
    // IP_TYPE_UNSPEC reaches inet_pton, which refuses the family.
    if (inet_pton(nkw::os::family_of(ip_type), text, out->addr) == 1) {
        NKW_LOGI(kTag, "pton switch success \n");
        return 0;
    }
    NKW_LOGE(kTag, "pton switch failed %s \n", strerror(errno));
    return -1;
}

const char *nkw_pal_inet_ntop(uint32_t ip_type, const ip_addr *addr, char *buf, int32_t size) {
    if (!nkw::os::valid_ip_type(ip_type)) {
        NKW_LOGE(kTag, "ip_type is invalid \n");
        return nullptr;
    }
    if (addr == nullptr || buf == nullptr) {
        NKW_LOGE(kTag, "src or dst is NULL \n");
        return nullptr;
    }
    if (size < 0) {
        NKW_LOGE(kTag, "size num is invalid \n");
        return nullptr;
    }
    if (inet_ntop(nkw::os::family_of(ip_type), addr->addr, buf, static_cast<socklen_t>(size)) ==
        nullptr) {
        NKW_LOGE(kTag, "ntop switch failed %s \n", strerror(errno));
        return nullptr;
    }
    NKW_LOGI(kTag, "ntop switch success \n");
    return buf;
}

}  // extern "C"
