#pragma once

#include "server/RequestError.h"
#include "server/TimedStream.h"
#include "wire/Crc32c.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>

/// Reads one request from a connection: first its head, then, once its limit is known, its body, which is not
/// stored here. Once reading the body has failed, every later step fails in the same way.
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

    /// Lets the body come.
    /// @throws RequestError with status 413 when its length is known and larger than `limit`
    void BeginBody(std::uint64_t limit);
    /// The size of the body, or the most that it can have where it does not tell.
    [[nodiscard]] std::uint64_t MostBytes() const { return mostBytes; }
    /// Reads the next bytes of the body. @return how many; fewer than `count` only at its end
    /// @throws RequestError with status 413 when the body gets larger than its limit, 400 when it is
    ///         malformed or ends early, 408 when it does not arrive in time
    std::size_t Read(char* bytes, std::size_t count);
    /// Passes over what is left of the body and checks the whole of it.
    /// @throws RequestError as Read, and with status 400 when the body has another digest than it tells
    void EndBody();
    /// Bytes of the body that were read so far.
    [[nodiscard]] std::uint64_t BytesRead() const { return bytesRead; }

    /// Whether the client asks for the digest of the reply, and can take it behind a reply in chunks.
    [[nodiscard]] bool WantsDigest() const;

    /// Whether the request was read to its end, so that another one may follow.
    [[nodiscard]] bool Complete() const { return parser.is_done(); }
    [[nodiscard]] bool KeepAlive() const { return Complete() && parser.keep_alive(); }

  private:
    void Continue();
    void ReadOn(char* bytes, std::size_t count);
    void CheckDigest() const;
    [[noreturn]] void Fail(const boost::beast::error_code& error);

    TimedStream& stream;
    boost::beast::flat_buffer& buffer;
    Patience patience;
    Crc32c checksum; ///< of the body
    std::uint64_t mostBytes = 0;
    std::uint64_t bytesRead = 0;
    std::optional<RequestError> failure; ///< of reading
    boost::beast::http::request_parser<boost::beast::http::buffer_body> parser;
};
