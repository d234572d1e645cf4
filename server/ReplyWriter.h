#pragma once

#include "server/FaultPlan.h"
#include "server/TimedStream.h"
#include "wire/Crc32c.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Writes one reply, with the fault that was asked for.
class ReplyWriter final {
  public:
    /// @param keepAlive whether the connection is to serve further requests
    /// @param digest whether the reply goes in chunks with its digest behind them; otherwise it has a length
    ReplyWriter(TimedStream& stream, const Fault& fault, bool keepAlive, bool digest);

    /// Names the verbs that the path takes in the head to come; an empty text names none.
    void Allow(const std::string& verbs) { allowedVerbs = verbs; }
    /// Writes no more than the head, whatever Body and End are given: what answers HEAD has no body.
    void LeaveBodyOut() { bodyLeftOut = true; }
    /// Writes the head. @param bodySize bytes that Body will be given in all
    void Head(unsigned status, std::string_view contentType, std::uint64_t bodySize);
    /// Writes bytes of the body. @return false when the connection is no longer of use
    bool Body(const char* bytes, std::size_t size);
    /// Ends the body once Body was given all of it.
    void End();

    /// A reply with an error text for people, made fit for them.
    void Error(unsigned status, std::string_view text);
    /// A reply with a JSON body.
    void Json(unsigned status, std::string_view body);

    /// The body did not become what the head promised: the connection cannot go on.
    void Fail() { failed = true; }
    /// Whether every byte went out.
    [[nodiscard]] bool Complete() const { return !failed; }
    [[nodiscard]] bool KeepsAlive() const { return keepAlive && !failed; }

  private:
    void Write(const char* bytes, std::size_t size);
    void WriteChunk(const char* bytes, std::size_t size);
    /// Writes buffers that belong together at once.
    template<typename Buffers>
    void WriteAll(const Buffers& buffers);

    TimedStream& stream;
    Fault fault;
    bool keepAlive;
    bool digest;
    std::string allowedVerbs;
    bool bodyLeftOut = false;
    Crc32c checksum; ///< of the body as it should be
    bool failed = false;
    std::uint64_t written = 0;
    std::uint64_t bodyWritten = 0;
    std::string damaged;
};
