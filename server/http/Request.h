#pragma once

#include "wire/CborReader.h"
#include "wire/MessageReader.h"
#include "wire/TimedStream.h"

#include <chrono>
#include <cstdint>
#include <string>

/// One request as it arrives: first its head, then its body. What cannot be read throws HttpError with the
/// status that fits: 400, 408 when it does not arrive in time, 413 when it is too large.
class Request final {
  public:
    using Field = OstraSdk::RequestMessage::Field;

    Request(OstraSdk::TimedStream& stream, OstraSdk::ReadAhead& ahead)
        : stream(stream), message(stream, ahead) {}

    /// Reads the head. @return false when the connection ended before a request began
    [[nodiscard]] bool ReadHead();

    /// As the client sent it, or "-" where it never came.
    [[nodiscard]] std::string Verb() const;
    /// As the client sent it, or "-" where it never came.
    [[nodiscard]] std::string Path() const;
    [[nodiscard]] std::string Value(Field field) const { return message.Value(field); }
    [[nodiscard]] std::size_t Count(Field field) const { return message.Count(field); }
    [[nodiscard]] bool IsHttp10() const;
    /// Whether the body comes in a coding that this server does not have.
    [[nodiscard]] bool HasForeignCoding() const { return message.HasForeignCoding(); }
    [[nodiscard]] bool HasCborBody() const;

    /// Lets the body come, which may have so many bytes, within a time.
    void BeginBody(std::uint64_t limit, std::chrono::milliseconds time);
    /// Reads the body, an object, and compares its digest; an empty body is an empty value. That its bytes
    /// are not those that were sent is reported before what is wrong with them.
    /// @param takeBytes gets the byte strings; without it they are passed over
    [[nodiscard]] OstraSdk::VeJson ReadBody(const OstraSdk::ByteStringSink& takeBytes = PassOver);
    /// Reads the body without looking at it.
    void PassOverBody();
    /// Bytes of the body that were read so far.
    [[nodiscard]] std::uint64_t BytesRead() const { return message.BytesRead(); }

    /// Under which address the client has reached this server.
    [[nodiscard]] std::string LocalAddress() const { return stream.LocalAddress(); }

    /// Whether the client asks for the digest of the reply, and can take it after a reply in chunks.
    [[nodiscard]] bool WantsDigest() const;
    /// Whether another request may follow.
    [[nodiscard]] bool KeepsAlive() const;

  private:
    static OstraSdk::VeJson::Bytes PassOver(OstraSdk::ByteString& bytes);
    void CheckContentType() const;
    void Continue();

    OstraSdk::TimedStream& stream;
    OstraSdk::RequestMessage message;
};
