// Production GNSS adaptor access: the adaptor's own socket name.
#include "host/gnss.h"

namespace nkw::host::gnss {

const char *adaptor_socket_name() {
    return "mtk_gnssadp_at";
}

}  // namespace nkw::host::gnss
