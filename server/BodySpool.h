#pragma once

#include "FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// The body of one request, kept in a file without a name, so that its size costs no memory and nothing of it
/// is left behind however the server ends.
class BodySpool final {
  public:
    /// @param folder where the file system shall hold the bytes
    /// @param size counts the bytes kept; the caller's, who sees how many there were whatever happens
    BodySpool(std::string folder, std::uint64_t& size);

    /// @throws RequestError with status 500 when the disk does not take the bytes
    void Append(const char* bytes, std::size_t size);

    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// Reads up to `count` bytes from `offset`. @return fewer only at the end of the body
    /// @throws RequestError with status 500 when the disk fails
    std::size_t Read(std::uint64_t offset, char* bytes, std::size_t count) const;
    /// The whole body, for small ones.
    [[nodiscard]] std::string Content() const;
    /// The open file; stays this object's. Only valid once something was appended.
    [[nodiscard]] int File() const { return file.Number(); }

  private:
    void Open();

    std::string folder;
    FileDescriptor file;
    std::uint64_t& size;
};
