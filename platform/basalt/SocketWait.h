#pragma once

#include <chrono>
#include <cstdint>

/// What a socket is waited for.
struct SocketWait {
    bool input = false;  ///< bytes to read, or the end of them
    bool output = false; ///< room for bytes to write
};

/// Waits until a socket is ready, has failed or was shut down.
/// @param socket the system's own number or handle
/// @return false when the time is over first
[[nodiscard]] bool WaitForSocket(std::uintptr_t socket, SocketWait wait,
                                 std::chrono::steady_clock::time_point end);
