#pragma once

#include <boost/system/error_code.hpp>

#include <cstddef>

namespace OstraSdk {

/// Bytes that are read once, in order.
class ByteSource {
  public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    /// Reads the next bytes: at least one; none only at the end (or with capacity 0).
    /// @throws Ve::Exception when reading fails
    virtual std::size_t Read(char* bytes, std::size_t capacity) = 0;
};

/// A connection whose bytes are read as they arrive.
class InputStream {
  public:
    InputStream() = default;
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    virtual ~InputStream() = default;

    /// Waits for bytes and reads some: at least one, or none with the reason in `error`, which is
    /// boost::asio::error::eof at the end and boost::asio::error::timed_out when they do not arrive in time.
    virtual std::size_t ReadSome(void* bytes, std::size_t capacity, boost::system::error_code& error) = 0;
};

} // namespace OstraSdk
