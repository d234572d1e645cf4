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
    /// The name of its member in the body's outermost object; empty elsewhere.
    [[nodiscard]] const std::string& Key() const { return key; }
    /// Bytes that are not yet read.
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

/// Receives the byte strings of a body. The part of one that it does not read is skipped.
/// @return what the value holds instead of the byte string
using ByteStringSink = std::function<VeJson::Bytes(ByteString& bytes)>;

/// A sink that keeps byte strings in memory. A body then takes no more memory than its size, and a declared
/// length takes none before its bytes arrive.
VeJson::Bytes KeepBytes(ByteString& bytes);

/// Reads a CBOR body while it arrives.
///
/// Maps with text keys, arrays, numbers, text strings, byte strings, true, false and null are supported;
/// lengths are definite. Anything else, a repeated key in a map, and a body that exceeds a limit, throw
/// Ve::Exception (bERROR_FORMAT or bERROR_LIMIT).
class CborReader final {
  public:
    /// The limits of a body, checked before any memory is allocated.
    struct Bounds {
        std::uint64_t body; ///< its size, or its maximum size: no length in it may exceed the rest
        std::size_t beside; ///< limit on the bytes outside byte strings
    };

    CborReader(ByteSource& body, const Bounds& bounds) : body(body), bounds(bounds) {}

    /// Reads the complete body, whose value is a map or an array; an empty body is an empty value.
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
    std::uint64_t beside = 0;   ///< those of them outside byte strings
    int byteStrings = 0;
    std::array<char, 4096> window{}; ///< bytes of the body that were read ahead
    std::size_t windowAt = 0;
    std::size_t windowSize = 0;
};

} // namespace OstraSdk
