#pragma once

#include <chrono>
#include <cstdint>
#include <utility>

/// Owns an open file, folder or socket of the system; closed with the object.
class FileDescriptor final {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number(other.Release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { static_cast<void>(Close()); }

    [[nodiscard]] bool IsOpen() const { return number >= 0; }
    [[nodiscard]] int Number() const { return number; }
    /// Passes the number to the caller, who closes it.
    [[nodiscard]] int Release() { return std::exchange(number, -1); }
    /// Closes now. @return false when the system reports that what was written may be lost
    [[nodiscard]] bool Close();

  private:
    int number = -1;
};

/// The events to wait for on a socket.
struct SocketWait {
    bool input = false;  ///< bytes to read, or the end of them
    bool output = false; ///< space for bytes to write
};

/// Waits until a socket is ready, has failed or was shut down.
/// @param socket the system's own number or handle
/// @return false when the time ends first
[[nodiscard]] bool WaitForSocket(std::uintptr_t socket, SocketWait wait,
                                 std::chrono::steady_clock::time_point end);
