#include "SocketCalls.h"

#undef socket
#undef pollfd

#include <cerrno>
#include <cstdint>
#include <vector>

#include <fcntl.h>
#include <io.h>

namespace {

/// Sockets are ready for use from the first one to the end of the process.
void Prepare() {
    static const int prepared = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    static_cast<void>(prepared);
}

/// Whether a call with MSG_DONTWAIT would have to wait.
bool WouldWait(SOCKET socket, short events, int flags) {
    WSAPOLLFD wait{socket, events, 0};
    return (flags & MSG_DONTWAIT) != 0 && WSAPoll(&wait, 1, 0) == 0;
}

ssize_t Fail(int reason) {
    errno = reason;
    return -1;
}

} // namespace

int DescriptorOf(SOCKET socket) {
    if (socket == INVALID_SOCKET)
        return -1;
    const int descriptor = _open_osfhandle(static_cast<std::intptr_t>(socket), _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0)
        closesocket(socket);
    return descriptor;
}

SOCKET SocketOf(int descriptor) {
    return static_cast<SOCKET>(_get_osfhandle(descriptor));
}

int OpenSocket(int family, int type, int protocol) {
    Prepare();
    const SOCKET opened = WSASocketW(family, type & ~SOCK_NONBLOCK, protocol, nullptr, 0,
                                     WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    u_long on = 1;
    if (opened != INVALID_SOCKET && (type & SOCK_NONBLOCK) != 0)
        ioctlsocket(opened, FIONBIO, &on);
    return DescriptorOf(opened);
}

int accept4(int listener, sockaddr* from, socklen_t* length, int /*flags*/) {
    return DescriptorOf(accept(SocketOf(listener), from, length));
}

int bind(int descriptor, const sockaddr* address, socklen_t length) {
    return bind(SocketOf(descriptor), address, length);
}

int connect(int descriptor, const sockaddr* address, socklen_t length) {
    return connect(SocketOf(descriptor), address, length);
}

int getsockname(int descriptor, sockaddr* address, socklen_t* length) {
    return getsockname(SocketOf(descriptor), address, length);
}

int listen(int descriptor, int waiting) {
    return listen(SocketOf(descriptor), waiting);
}

int poll(PolledDescriptor* descriptors, unsigned long count, int milliseconds) {
    std::vector<WSAPOLLFD> waits;
    for (unsigned long i = 0; i < count; ++i)
        waits.push_back({SocketOf(descriptors[i].fd), descriptors[i].events, 0});
    const int ready = WSAPoll(waits.data(), count, milliseconds);
    for (unsigned long i = 0; i < count; ++i)
        descriptors[i].revents = waits[i].revents;
    return ready;
}

ssize_t recv(int descriptor, char* data, std::size_t size, int flags) {
    return recvfrom(descriptor, data, size, flags, nullptr, nullptr);
}

ssize_t recvfrom(int descriptor, char* data, std::size_t size, int flags, sockaddr* from, socklen_t* length) {
    const SOCKET socket = SocketOf(descriptor);
    if (WouldWait(socket, POLLIN, flags))
        return Fail(EAGAIN);
    return recvfrom(socket, data, static_cast<int>(size), flags & ~MSG_DONTWAIT, from, length);
}

ssize_t send(int descriptor, const char* data, std::size_t size, int flags) {
    return sendto(descriptor, data, size, flags, nullptr, 0);
}

ssize_t sendto(int descriptor, const char* data, std::size_t size, int flags, const sockaddr* target,
               socklen_t length) {
    const SOCKET socket = SocketOf(descriptor);
    if (WouldWait(socket, POLLOUT, flags))
        return Fail(EAGAIN);
    return sendto(socket, data, static_cast<int>(size), flags & ~MSG_DONTWAIT, target, length);
}

/// A time is a number of milliseconds there.
int setsockopt(int descriptor, int level, int option, const timeval* value, socklen_t /*size*/) {
    const DWORD time = static_cast<DWORD>(value->tv_sec * 1000 + value->tv_usec / 1000);
    return setsockopt(SocketOf(descriptor), level, option, reinterpret_cast<const char*>(&time), sizeof time);
}

int setsockopt(int descriptor, int level, int option, const int* value, socklen_t size) {
    return setsockopt(SocketOf(descriptor), level, option, reinterpret_cast<const char*>(value), size);
}

int shutdown(int descriptor, int how) {
    return shutdown(SocketOf(descriptor), how);
}

int pipe2(int* ends, int flags) {
    const int listener = OpenSocket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    ends[1] = OpenSocket(AF_INET, SOCK_STREAM, 0);
    const bool connected = bind(listener, generic, length) == 0 && listen(listener, 1) == 0 &&
                           getsockname(listener, generic, &length) == 0 &&
                           connect(ends[1], generic, length) == 0;
    ends[0] = connected ? accept4(listener, nullptr, nullptr, flags) : -1;
    close(listener);
    return ends[0] < 0 ? -1 : 0;
}
