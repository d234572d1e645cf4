#pragma once

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
    /// Gives the number to the caller, who closes it.
    [[nodiscard]] int Release() { return std::exchange(number, -1); }
    /// Closes now. @return false when the system reports that what was written may be lost
    [[nodiscard]] bool Close();

  private:
    int number = -1;
};
