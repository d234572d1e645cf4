#pragma once

#include <cstddef>

namespace OstraSdk {

/// Bytes that are read once, in their order.
class ByteSource {
  public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    /// Reads the next bytes: at least one, and none only at the end (or into no room).
    /// @throws Ve::Exception when they cannot be had
    virtual std::size_t Read(char* bytes, std::size_t capacity) = 0;
};

} // namespace OstraSdk
