#pragma once

#include "server/FaultPlan.h"
#include "server/http/HttpError.h"
#include "wire/ContentDigest.h"
#include "wire/TimedStream.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// Writes one reply, with an injected fault if any: in chunks followed by its digest, or with a length.
class ReplyWriter final {
  public:
    /// How the reply is sent.
    struct Mode {
        bool keepAlive = false; ///< the connection will serve further requests
        bool digest = false;    ///< in chunks, with the digest
        bool headOnly = false;  ///< the reply to HEAD has no body: the client would read it as the next reply
    };

    /// @param beforeLastBytes called before the last bytes are written: once the client has them, it may open
    ///        its next connection
    ReplyWriter(OstraSdk::TimedStream& stream, const Fault& fault, const Mode& mode,
                std::function<void()> beforeLastBytes);

    /// Writes the head. @param bodySize the bytes that Body will be given in total
    void Head(unsigned status, std::string_view contentType, std::uint64_t bodySize,
              const HttpError* error = nullptr);
    /// Writes bytes of the body. @return false when the connection is no longer usable
    bool Body(std::string_view bytes);
    /// Ends the reply. After an incomplete body the connection is unusable.
    void End();

    /// Writes a complete reply with an error text.
    void Error(const HttpError& error);

    /// Whether every byte was sent.
    [[nodiscard]] bool IsComplete() const { return !failed; }
    [[nodiscard]] bool KeepsAlive() const { return mode.keepAlive && !failed; }

  private:
    void Frame(std::string_view bytes);
    void Write(std::string_view bytes);
    void Flush();
    void WriteNow(std::string_view bytes);
    [[nodiscard]] std::string_view Damaged(std::string_view bytes);

    OstraSdk::TimedStream& stream;
    Fault fault;
    Mode mode;
    std::function<void()> beforeLastBytes;
    OstraSdk::TimedStream::Error error;
    Crc32c checksum;       ///< of the body, before a fault damages it
    std::string collected; ///< small pieces that are sent together
    std::string damaged;
    std::uint64_t bodySize = 0;
    std::uint64_t bodyWritten = 0;
    std::uint64_t chunkLeft = 0; ///< bytes of the current chunk that are not written yet
    std::uint64_t written = 0;
    bool failed = false;
};
