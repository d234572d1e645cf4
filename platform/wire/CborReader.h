#pragma once

#include "wire/ByteSource.h"
#include "wire/VeJson.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace OstraSdk {

class CborReader;

/// A byte string while it arrives.
class ByteString final : public ByteSource {
  public:
    /// The name of the member that it is, in an object that is the body's outermost value; empty elsewhere.
    [[nodiscard]] const std::string& Key() const { return key; }
    /// Bytes that are still to be read.
    [[nodiscard]] std::uint64_t Left() const { return left; }
    std::size_t Read(char* bytes, std::size_t capacity) override;

  private:
    friend class CborReader;
    ByteString(CborReader& reader, const std::string& key, std::uint64_t size)
        : reader(reader), key(key), left(size) {}

    CborReader& reader;
    const std::string& key;
    std::uint64_t left;
};

/// Takes the byte strings of a body. What it leaves of one is passed over.
/// @return what the value holds in the byte string's place
using ByteStringSink = std::function<VeJson::Bytes(ByteString& bytes)>;

/// A sink that keeps byte strings in memory. A body takes its own size in memory then and no more, and a
/// declared length takes none before its bytes arrive.
VeJson::Bytes KeepBytes(ByteString& bytes);

/// Reads a CBOR body while it arrives.
///
/// Maps with text keys, arrays, numbers, texts, byte strings, true, false and null are understood; lengths
/// are definite. Anything else, a key that is repeated in its map, and a body that breaks a bound, throw
/// Ve::Exception (bERROR_FORMAT or bERROR_LIMIT).
class CborReader final {
  public:
    /// What a body can hold, for a check before any memory is asked for.
    struct Bounds {
        std::uint64_t body; ///< its size, or the most that it can have: no length in it reaches beyond
        std::size_t beside; ///< the most bytes that are not those of byte strings
    };

    CborReader(ByteSource& body, const Bounds& bounds) : body(body), bounds(bounds) {}

    /// Reads the whole body, whose value is a map or an array; an empty body is an empty value.
    VeJson Read(const ByteStringSink& takeBytes = KeepBytes);

  private:
    friend class ByteString;

    enum class Kind { Unsigned, Negative, Bytes, Text, Array, Map, Tag, Simple };

    /// The first bytes of a value.
    struct Head {
        Kind kind = Kind::Simple;
        unsigned detail = 0;        ///< the five low bits of the first byte
        std::uint64_t argument = 0; ///< the number itself, a length in bytes or a count of elements
    };

    [[nodiscard]] Head NextHead();
    [[nodiscard]] VeJson ReadValue(const Head& head, int depth, const std::string& key);
    [[nodiscard]] VeJson ReadMap(std::uint64_t count, int depth);
    [[nodiscard]] VeJson ReadArray(std::uint64_t count, int depth);
    [[nodiscard]] VeJson::Bytes ReadBytes(std::uint64_t size, const std::string& key);
    [[nodiscard]] std::string ReadText(std::uint64_t size);

    [[nodiscard]] std::uint8_t NextByte();
    std::size_t Take(char* bytes, std::size_t capacity);
    [[nodiscard]] bool Fill();
    void CountBeside(std::uint64_t size);

    ByteSource& body;
    Bounds bounds;
    ByteStringSink takeBytes;
    std::uint64_t position = 0; ///< bytes of the body read so far
    std::uint64_t beside = 0;   ///< those of them that are not a byte string's
    int byteStrings = 0;
    std::array<char, 4096> window{}; ///< bytes of the body that were read ahead
    std::size_t windowAt = 0;
    std::size_t windowSize = 0;
};

} // namespace OstraSdk
