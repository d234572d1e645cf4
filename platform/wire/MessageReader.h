#pragma once

#include "basalt/Exception.h"
#include "wire/ByteSource.h"
#include "wire/ContentDigest.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace OstraSdk {

/// The bytes of a connection that were read ahead, shared by its messages. It never holds more than the limit
/// of a head.
class ReadAhead final {
  public:
    ReadAhead();

    [[nodiscard]] bool IsEmpty() const { return buffer.size() == 0; }

  private:
    template<bool isRequest>
    friend class MessageReader;

    boost::beast::flat_buffer buffer;
};

/// Reads one HTTP message from a connection: first its head, then, once its limit is known, its body, which
/// is not stored here. Every byte counts against a limit: the head may have 64 KiB, the body what BeginBody
/// says, and everything in a chunked body besides its data, the trailers included, 64 KiB together.
///
/// Every operation throws Ve::Exception for a message that cannot be read: bERROR_TIMEOUT, bERROR_LIMIT, or
/// bERROR_CONNECTION when it is malformed or ends early. Once reading has failed, every later step fails in
/// the same way.
template<bool isRequest>
class MessageReader final : public ByteSource {
  public:
    using Parser = boost::beast::http::parser<isRequest, boost::beast::http::buffer_body>;
    using Field = boost::beast::http::field;

    MessageReader(InputStream& stream, ReadAhead& ahead);

    /// Reads the head. @return false when the connection ended before a message began
    [[nodiscard]] bool ReadHead();
    /// The head's first line and its fields, and the trailers once the body has ended.
    [[nodiscard]] const typename Parser::value_type& Head() const { return parser.get(); }
    /// The value of a field; empty when the head has none.
    [[nodiscard]] std::string Value(Field field) const;
    /// Whether the head has a field once, several times or never.
    [[nodiscard]] std::size_t Count(Field field) const { return parser.get().count(field); }
    /// Whether the body has a coding other than chunks, which cannot be read.
    [[nodiscard]] bool HasForeignCoding() const;

    /// Starts reading the body; throws bERROR_LIMIT when its length is known and larger than `limit`.
    void BeginBody(std::uint64_t limit);
    /// The size of the body, or the limit if its size is not known.
    [[nodiscard]] std::uint64_t MaxBytes() const { return maxBytes; }
    std::size_t Read(char* bytes, std::size_t capacity) override;
    /// Reads the rest of the body without keeping it.
    void PassOverRest();
    /// Compares the digests that the message has with the body, which was read to its end.
    /// @param isDue whether a message without one counts as damaged
    /// @throws Ve::Exception also with bERROR_FORMAT: the body is not the one that was sent
    void CheckDigest(bool isDue);

    /// Bytes of the body that were read so far.
    [[nodiscard]] std::uint64_t BytesRead() const { return bytesRead; }
    /// Whether the message was read to its end, so that another one may follow.
    [[nodiscard]] bool IsComplete() const { return parser.is_done(); }
    /// Whether the connection stays open after this message.
    [[nodiscard]] bool KeepsAlive() const { return parser.keep_alive(); }
    /// Why the message cannot be read.
    [[nodiscard]] const std::optional<Ve::Exception>& Failure() const { return failure; }

  private:
    [[nodiscard]] std::size_t ReadOn(char* bytes, std::size_t capacity);
    void CountFraming(std::size_t size);
    [[noreturn]] void Fail(const boost::system::error_code& error);
    [[noreturn]] void Fail(int line, int status, const std::string& reason);

    InputStream& stream;
    boost::beast::flat_buffer& buffer;
    Parser parser;
    Crc32c checksum;
    std::uint64_t maxBytes = 0;
    std::uint64_t bytesRead = 0;
    std::size_t framing = 0; ///< bytes since the head that are not the body's
    std::optional<Ve::Exception> failure;
};

extern template class MessageReader<true>;
extern template class MessageReader<false>;

using RequestMessage = MessageReader<true>;
using ReplyMessage = MessageReader<false>;

} // namespace OstraSdk
