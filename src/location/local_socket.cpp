#include "location/local_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace nkw::location {

LocalConnect connect_local(bool abstract, const char *name) {
    sockaddr_un address;
    std::memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    size_t length = std::strlen(name);
    // Longer names are cut to what the address holds.
    const size_t room = sizeof address.sun_path - (abstract ? 1 : 0);
    if (length > room) length = room;
    std::memcpy(address.sun_path + (abstract ? 1 : 0), name, length);
    socklen_t address_length = static_cast<socklen_t>(length + 3);
    if (address_length > sizeof address) address_length = sizeof address;

    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    if (fd < 0) return {LocalConnect::kSocketFailed, -1, errno};
    if (connect(fd, reinterpret_cast<const sockaddr *>(&address), address_length) < 0) {
        const int err = errno;
        close(fd);
        return {LocalConnect::kConnectFailed, -1, err};
    }
    return {LocalConnect::kConnected, fd, 0};
}

long write_to_peer(int fd, const void *data, unsigned long size) {
    const ssize_t sent = send(fd, data, size, MSG_NOSIGNAL);
    if (sent == -1 && errno == ENOTSOCK) return write(fd, data, size);
    return sent;
}

}  // namespace nkw::location
