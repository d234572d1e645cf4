#pragma once

#include "wire/CborReader.h"
#include "wire/VeJson.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace OstraSdk {

constexpr std::string_view kJsonType = "application/json";
constexpr std::string_view kCborType = "application/cbor";

/// A value as it is sent: JSON text, or CBOR if it contains bytes.
class WireBody {
  public:
    /// No body for the empty value.
    explicit WireBody(const VeJson& json);

    /// Empty when there is no body.
    [[nodiscard]] std::string_view ContentType() const { return contentType; }
    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// Views of the body's parts in their order; byte strings are the value's own, not copies. They are valid
    /// as long as this object.
    [[nodiscard]] std::vector<std::string_view> Parts() const;

  private:
    using Part = std::variant<std::string, VeJson::Binary>;

    std::string_view contentType;
    std::vector<Part> parts;
    std::uint64_t size = 0;
};

// Whether a Content-Type names CBOR, or JSON; letters' case and parameters after a semicolon do not matter.
bool IsCborType(std::string_view contentType);
bool IsJsonType(std::string_view contentType);

/// Reads a body as its content type says: CBOR, or JSON text under any other type. An empty body is an empty
/// value.
/// @param bounds a JSON text is limited by `beside`
/// @throws Ve::Exception as CborReader and FromJsonText do, and what reading the body throws
VeJson ReadBody(ByteSource& body, std::string_view contentType, const CborReader::Bounds& bounds,
                const ByteStringSink& takeBytes = KeepBytes);

} // namespace OstraSdk
