#pragma once

#include "server/FaultPlan.h"
#include "server/http/HttpError.h"
#include "wire/ContentDigest.h"
#include "wire/TimedStream.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// Writes one reply, with the fault that was asked for. A reply goes in chunks with its digest after them, or
/// with a length.
class ReplyWriter final {
  public:
    /// How the connection goes on, and what the client can take.
    struct Manner {
        bool keepAlive = false; ///< the connection is to serve further requests
        bool digest = false;    ///< in chunks, with the digest
        bool headAlone =
            false; ///< what answers HEAD has no body: a client would mistake it for the next reply
    };

    /// @param beforeLastBytes called when all but the last bytes are written: once the client has those, it
    /// may
    ///        open its next connection
    ReplyWriter(OstraSdk::TimedStream& stream, const Fault& fault, const Manner& manner,
                std::function<void()> beforeLastBytes);

    /// Writes the head. @param bodySize bytes that Body will be given in all
    void Head(unsigned status, std::string_view contentType, std::uint64_t bodySize,
              const HttpError* error = nullptr);
    /// Writes bytes of the body. @return false when the connection is no longer of use
    bool Body(std::string_view bytes);
    /// Ends the reply: a body that is not complete makes the connection useless.
    void End();

    /// A whole reply with an error text for people, made fit for them.
    void Error(const HttpError& error);

    /// Whether every byte went out.
    [[nodiscard]] bool IsComplete() const { return !failed; }
    [[nodiscard]] bool KeepsAlive() const { return manner.keepAlive && !failed; }

  private:
    void Frame(std::string_view bytes);
    void Write(std::string_view bytes);
    void Flush();
    void WriteNow(std::string_view bytes);
    [[nodiscard]] std::string_view Damaged(std::string_view bytes);

    OstraSdk::TimedStream& stream;
    Fault fault;
    Manner manner;
    std::function<void()> beforeLastBytes;
    OstraSdk::TimedStream::Error error;
    Crc32c checksum;       ///< of the body as it should be
    std::string collected; ///< small pieces that go out together
    std::string damaged;
    std::uint64_t bodySize = 0;
    std::uint64_t bodyWritten = 0;
    std::uint64_t chunkLeft = 0; ///< bytes of the current chunk that are still to come
    std::uint64_t written = 0;
    bool failed = false;
};
