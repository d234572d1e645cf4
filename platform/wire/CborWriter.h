#pragma once

#include "wire/VeJson.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace OstraSdk {

/// Writes a value as CBOR in parts: its byte strings are shared, not copied, and the rest is encoded between
/// them.
class CborWriter final {
  public:
    using Part = std::variant<std::string, VeJson::Binary>;

    /// The parts in their order.
    static std::vector<Part> PartsOf(const VeJson& json);

    /// What comes before the bytes of `{key: <size bytes>}`.
    static std::string BeforeBytes(std::string_view key, std::uint64_t size);

  private:
    enum class Kind : std::uint8_t { Unsigned, Negative, Bytes, Text, Array, Map, Tag, Simple };
    /// The code in a head's first byte for how many bytes follow it.
    enum Width : std::uint8_t { One = 24, Two, Four, Eight };

    CborWriter() = default;

    void Write(const VeJson& json);
    void WriteContent(std::monostate);
    void WriteContent(bool flag);
    void WriteContent(std::int64_t number);
    void WriteContent(double number);
    void WriteContent(std::string_view text);
    void WriteContent(const std::string& text) { WriteContent(std::string_view(text)); }
    void WriteContent(const VeJson::Binary& bytes);
    void WriteContent(const VeJson::Array& values);
    void WriteContent(const VeJson::Object& members);
    void Head(Kind kind, std::uint64_t argument);
    void Head(Kind kind, Width width, std::uint64_t argument);

    std::string text; ///< since the last byte string
    std::vector<Part> parts;
};

} // namespace OstraSdk
