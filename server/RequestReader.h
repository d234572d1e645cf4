#pragma once

#include "BodySpool.h"
#include "Crc32c.h"
#include "TimedStream.h"

#include <chrono>
#include <cstdint>
#include <string>

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>

/// Reads one request from a connection: first its head, then, once its limit is known, its body.
class RequestReader final {
  public:
    /// How long the parts of a request may take to arrive.
    struct Patience {
        std::chrono::milliseconds head;
        std::chrono::milliseconds body;
    };

    /// @param buffer bytes that were read ahead; shared by the requests of a connection
    RequestReader(TimedStream& stream, boost::beast::flat_buffer& buffer, const Patience& patience);

    /// Reads the head. @return false when the connection ended, or stayed silent, before a request began
    /// @throws RequestError with status 400, or 408 when it does not arrive in time
    [[nodiscard]] bool ReadHead();

    [[nodiscard]] std::string Verb() const;
    [[nodiscard]] std::string Path() const;
    [[nodiscard]] std::string ContentType() const;

    /// Reads the body into `spool`.
    /// @throws RequestError with status 413 when it is larger than `limit`, before any of a body of known
    /// length
    ///         is read; 400 when it is malformed, ends early or has another digest than it tells, 408 when
    ///         it does not arrive in time
    void ReadBody(BodySpool& spool, std::uint64_t limit);

    /// Whether the client asks for the digest of the reply, and can take it behind a reply in chunks.
    [[nodiscard]] bool WantsDigest() const;

    /// Whether the request was read to its end, so that another one may follow.
    [[nodiscard]] bool Complete() const { return parser.is_done(); }
    [[nodiscard]] bool KeepAlive() const { return Complete() && parser.keep_alive(); }

  private:
    void ReadChunks(BodySpool& spool);
    void Continue();
    void CheckDigest(const BodySpool& spool) const;
    [[noreturn]] void Fail(const boost::beast::error_code& error) const;

    TimedStream& stream;
    boost::beast::flat_buffer& buffer;
    Patience patience;
    Crc32c checksum; ///< of the body
    boost::beast::http::request_parser<boost::beast::http::buffer_body> parser;
};
