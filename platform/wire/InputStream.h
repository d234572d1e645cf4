#pragma once

#include <boost/system/error_code.hpp>

#include <cstddef>

namespace OstraSdk {

/// A connection whose bytes are read as they come.
class InputStream {
  public:
    InputStream() = default;
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    virtual ~InputStream() = default;

    /// Waits for bytes and reads some: at least one, or none with the reason in `error`, which is
    /// boost::asio::error::eof at the end and boost::asio::error::timed_out when they do not come in time.
    virtual std::size_t ReadSome(void* bytes, std::size_t capacity, boost::system::error_code& error) = 0;
};

} // namespace OstraSdk
