#pragma once

#include "BodySpool.h"

#include <array>
#include <cstdint>
#include <string>

/// Walks the values of a CBOR body one after the other without loading it: a few bytes of a value are looked
/// at, and what is not wanted is stepped over. Lengths are checked against what the body holds, nesting is
/// bounded, and every step consumes bytes, so that the walk costs no more than the body's size.
/// Every operation throws RequestError with status 400 on bytes that are no well-formed definite CBOR.
class CborCursor final {
  public:
    enum class Kind { Unsigned, Negative, Bytes, Text, Array, Map, Tag, Simple };

    /// The first bytes of a value.
    struct Head {
        Kind kind = Kind::Simple;
        unsigned detail = 0;        ///< the five low bits of the first byte
        std::uint64_t argument = 0; ///< the number itself, a length in bytes, a count of elements, or a tag
    };

    explicit CborCursor(const BodySpool& body) : body(body) {}

    [[nodiscard]] std::uint64_t Offset() const { return offset; }
    [[nodiscard]] bool AtEnd() const { return offset == body.Size(); }

    /// Steps over a head and gives it. The length of bytes and text is known to fit the body.
    Head Next();
    /// Steps over the bytes of a byte or text string whose head was just read.
    void SkipString(const Head& head) { offset += head.argument; }
    /// Reads the text whose head was just read; a text longer than `longest` bytes is stepped over and gives
    /// "".
    std::string Text(const Head& head, std::size_t longest);
    /// Steps over what belongs to a head that was just read, nested values included.
    /// @param depth how many levels of nesting are left
    void SkipValue(const Head& head, unsigned depth);

  private:
    std::uint8_t Byte();
    void SkipElements(std::uint64_t count, unsigned depth);

    const BodySpool& body;
    std::uint64_t offset = 0;
    std::array<char, 4096> window{};
    std::uint64_t windowStart = 0;
    std::size_t windowSize = 0;
};
