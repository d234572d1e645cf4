#pragma once

#include <utility>

#include <unistd.h>

/// Owns an open file or folder of the system; closed with the object.
class FileDescriptor final {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (number >= 0)
            close(number);
    }

    [[nodiscard]] int Number() const { return number; }
    [[nodiscard]] bool IsOpen() const { return number >= 0; }
    /// Gives the number away; the caller closes it.
    [[nodiscard]] int Release() { return std::exchange(number, -1); }

  private:
    int number = -1;
};
