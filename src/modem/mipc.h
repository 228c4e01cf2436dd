// The modem IPC client interface: the vendor SDK's header in production
// builds, the repository's declaration of the same subset otherwise.
#pragma once

#include <mipc_msg.h>
