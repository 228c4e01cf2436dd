// Connecting to the GNSS adaptor's local stream socket. GNSS and AGPS each
// log their own texts, so this only reports which step failed.
#pragma once

namespace nkw::location {

struct LocalConnect {
    enum Step { kConnected, kSocketFailed, kConnectFailed };
    Step step;
    int fd;   // the connected descriptor when step is kConnected, else -1
    int err;  // errno of the failed step
};

// An AF_UNIX stream socket connected to `name`: in the abstract namespace a
// zero byte then the name, else the name itself (at most 108 bytes). The
// address length is strlen(name) + 3 either way. A socket whose connect
// fails is closed.
LocalConnect connect_local(bool abstract, const char *name);

// write() that reports a peer's hang-up as EPIPE instead of raising SIGPIPE,
// which would end the calling daemon. Descriptors that are not sockets are
// written as usual.
long write_to_peer(int fd, const void *data, unsigned long size);

}  // namespace nkw::location
