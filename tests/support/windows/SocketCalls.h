#pragma once

// The other system's socket calls, for tests, over Windows' own. A socket is a descriptor here too: close()
// closes it.

// The system's headers are in this order only.
#include <winsock2.h>

#include <ws2tcpip.h>

#include <cstddef>

#include <sys/types.h>
#include <unistd.h>

constexpr int SOCK_CLOEXEC = 0;
constexpr int SOCK_NONBLOCK = 0x100000;
constexpr int MSG_NOSIGNAL = 0;
constexpr int MSG_DONTWAIT = 0x100000;
constexpr int SHUT_WR = SD_SEND;

/// As pollfd is there: Windows' own has no descriptor in it.
struct PolledDescriptor {
    int fd;
    short events;
    short revents;
};

[[nodiscard]] int OpenSocket(int family, int type, int protocol);
/// The descriptor of a socket; closes the socket when there is none to be had.
[[nodiscard]] int DescriptorOf(SOCKET socket);
[[nodiscard]] SOCKET SocketOf(int descriptor);

int accept4(int listener, sockaddr* from, socklen_t* length, int flags);
int bind(int descriptor, const sockaddr* address, socklen_t length);
int connect(int descriptor, const sockaddr* address, socklen_t length);
int getsockname(int descriptor, sockaddr* address, socklen_t* length);
int listen(int descriptor, int waiting);
int poll(PolledDescriptor* descriptors, unsigned long count, int milliseconds);
ssize_t recv(int descriptor, char* data, std::size_t size, int flags);
ssize_t recvfrom(int descriptor, char* data, std::size_t size, int flags, sockaddr* from, socklen_t* length);
ssize_t send(int descriptor, const char* data, std::size_t size, int flags);
ssize_t sendto(int descriptor, const char* data, std::size_t size, int flags, const sockaddr* target,
               socklen_t length);
int setsockopt(int descriptor, int level, int option, const timeval* value, socklen_t size);
int setsockopt(int descriptor, int level, int option, const int* value, socklen_t size);
int shutdown(int descriptor, int how);
/// Two connected sockets in place of the ends of a pipe: only those can be waited for.
int pipe2(int* ends, int flags);

#define socket(family, type, protocol) OpenSocket(family, type, protocol)
#define pollfd PolledDescriptor
