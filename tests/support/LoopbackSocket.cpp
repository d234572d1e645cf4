#include "LoopbackSocket.h"

#include <stdexcept>

#include <sys/socket.h>
#include <unistd.h>

LoopbackSocket::LoopbackSocket() : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(descriptor, generic, length) != 0 || getsockname(descriptor, generic, &length) != 0) {
        close(descriptor);
        throw std::runtime_error("There is no socket on loopback.");
    }
}

LoopbackSocket::~LoopbackSocket() {
    close(descriptor);
}

void LoopbackSocket::Listen(int waiting) const {
    if (listen(descriptor, waiting) != 0)
        throw std::runtime_error("The socket on loopback cannot listen.");
}
