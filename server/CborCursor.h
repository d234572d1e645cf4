#pragma once

#include "server/RequestReader.h"

#include <array>
#include <cstdint>
#include <string>

/// Walks the values of a CBOR body one after the other while it arrives: a few bytes of a value are looked
/// at, and what is not wanted is passed over. Lengths are checked against what the body can hold, nesting is
/// bounded, and every step consumes bytes, so that the walk costs no more than the body's size.
/// Every operation throws RequestError with status 400 on bytes that are no well-formed definite CBOR, and
/// what RequestReader::Read throws.
class CborCursor final {
  public:
    enum class Kind { Unsigned, Negative, Bytes, Text, Array, Map, Tag, Simple };

    /// The first bytes of a value.
    struct Head {
        Kind kind = Kind::Simple;
        unsigned detail = 0;        ///< the five low bits of the first byte
        std::uint64_t argument = 0; ///< the number itself, a length in bytes, a count of elements, or a tag
    };

    /// @param body begun, and read by nobody else
    explicit CborCursor(RequestReader& body) : body(body) {}

    /// How many bytes of the body were stepped over.
    [[nodiscard]] std::uint64_t Offset() const { return offset; }
    [[nodiscard]] bool AtEnd() { return !Fill(); }

    /// Steps over a head and gives it. The length of bytes and text is no more than the body can hold.
    Head Next();
    /// Steps over bytes and gives some of them: at least one, at most `most`.
    std::size_t Take(char* bytes, std::size_t most);
    /// Steps over bytes up to an offset.
    void SkipTo(std::uint64_t end);
    /// Steps over the bytes of a byte or text string whose head was just read.
    void SkipString(const Head& head) { SkipTo(offset + head.argument); }
    /// Reads the text whose head was just read; a text longer than `longest` bytes is stepped over and gives
    /// "".
    std::string Text(const Head& head, std::size_t longest);
    /// Steps over what belongs to a head that was just read, nested values included.
    /// @param depth how many levels of nesting are left
    void SkipValue(const Head& head, unsigned depth);

  private:
    bool Fill();
    std::uint8_t Byte();
    std::size_t TakeFromWindow(char* bytes, std::size_t most);
    void SkipElements(std::uint64_t count, unsigned depth);

    RequestReader& body;
    std::uint64_t offset = 0;
    std::array<char, 4096> window{}; ///< bytes of the body that were read ahead
    std::size_t windowAt = 0;
    std::size_t windowSize = 0;
};
