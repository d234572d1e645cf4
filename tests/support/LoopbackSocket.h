#pragma once

#include <netinet/in.h>

/// A TCP socket at a port of 127.0.0.1 that the system picks. Connections to it are refused until Listen is
/// called; after that they wait in the queue, and nobody accepts them.
class LoopbackSocket {
  public:
    /// @throws std::runtime_error when no socket can be made
    LoopbackSocket();
    LoopbackSocket(const LoopbackSocket&) = delete;
    LoopbackSocket& operator=(const LoopbackSocket&) = delete;
    ~LoopbackSocket();

    /// @param waiting connections that may wait to be accepted
    /// @throws std::runtime_error
    void Listen(int waiting) const;

    [[nodiscard]] const sockaddr_in& Address() const { return address; }
    [[nodiscard]] unsigned int Port() const { return ntohs(address.sin_port); }
    [[nodiscard]] int Descriptor() const { return descriptor; }

  private:
    int descriptor;
    sockaddr_in address{};
};
