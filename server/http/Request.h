#pragma once

#include "wire/CborReader.h"
#include "wire/MessageReader.h"
#include "wire/TimedStream.h"

#include <chrono>
#include <cstdint>
#include <string>

/// One request as it arrives: first its head, then its body. Every read throws HttpError with status 400 for
/// what is malformed, 408 for what does not arrive in time, 413 for what is too large.
class Request final {
  public:
    using Field = OstraSdk::RequestMessage::Field;

    Request(OstraSdk::TimedStream& stream, OstraSdk::ReadAhead& ahead)
        : stream(stream), message(stream, ahead) {}

    /// Reads the head. @return false when the connection ended before a request began
    [[nodiscard]] bool ReadHead();

    /// As the client sent it, or "-" when it never arrived.
    [[nodiscard]] std::string Verb() const;
    /// As the client sent it, or "-" when it never arrived.
    [[nodiscard]] std::string Path() const;
    [[nodiscard]] std::string Value(Field field) const { return message.Value(field); }
    [[nodiscard]] std::size_t Count(Field field) const { return message.Count(field); }
    [[nodiscard]] bool IsHttp10() const;
    /// Whether the body has a transfer coding that this server does not support.
    [[nodiscard]] bool HasForeignCoding() const { return message.HasForeignCoding(); }
    [[nodiscard]] bool HasCborBody() const;

    /// Prepares for the body. @param limit its maximum size in bytes @param time in which it must arrive
    void BeginBody(std::uint64_t limit, std::chrono::milliseconds time);
    /// Reads the body, an object, and compares its digest; an empty body gives an empty value. A wrong digest
    /// is reported in preference to any other error of the body.
    /// @param takeBytes receives the byte strings; by default they are skipped
    [[nodiscard]] OstraSdk::VeJson ReadBody(const OstraSdk::ByteStringSink& takeBytes = Skip);
    /// Reads the body and ignores it.
    void SkipBody();
    /// The bytes of the body that have been read so far.
    [[nodiscard]] std::uint64_t BytesRead() const { return message.BytesRead(); }

    /// This server's address, as used by the client.
    [[nodiscard]] std::string LocalAddress() const { return stream.LocalAddress(); }

    /// Whether the client asks for a digest of the reply, and supports it as a trailer of a chunked reply.
    [[nodiscard]] bool WantsDigest() const;
    /// Whether another request may follow on the connection.
    [[nodiscard]] bool KeepsAlive() const;

  private:
    static OstraSdk::VeJson::Bytes Skip(OstraSdk::ByteString& bytes);
    void CheckContentType() const;
    void Continue();

    OstraSdk::TimedStream& stream;
    OstraSdk::RequestMessage message;
};
