#include "wire/CborWriter.h"

#include <bit>
#include <limits>
#include <utility>

namespace OstraSdk {

namespace {

constexpr unsigned kFalse = 20;
constexpr unsigned kTrue = 21;
constexpr unsigned kNull = 22;
constexpr unsigned kMaxDirect = 23; // an argument up to this is part of the first byte
constexpr unsigned kKindShift = 5;

} // namespace

std::vector<CborWriter::Part> CborWriter::PartsOf(const VeJson& json) {
    CborWriter writer;
    writer.Write(json);
    if (!writer.text.empty())
        writer.parts.emplace_back(std::move(writer.text));
    return std::move(writer.parts);
}

std::string CborWriter::BeforeBytes(std::string_view key, std::uint64_t size) {
    CborWriter writer;
    writer.Head(Kind::Map, 1);
    writer.WriteContent(key);
    writer.Head(Kind::Bytes, Eight, size);
    return std::move(writer.text);
}

void CborWriter::Write(const VeJson& json) {
    std::visit([this](const auto& content) { WriteContent(content); }, json.Content());
}

void CborWriter::WriteContent(std::monostate) {
    Head(Kind::Simple, kNull);
}

void CborWriter::WriteContent(bool flag) {
    Head(Kind::Simple, flag ? kTrue : kFalse);
}

void CborWriter::WriteContent(std::int64_t number) {
    const bool negative = number < 0;
    Head(negative ? Kind::Negative : Kind::Unsigned,
         static_cast<std::uint64_t>(negative ? -1 - number : number));
}

void CborWriter::WriteContent(double number) {
    Head(Kind::Simple, Eight, std::bit_cast<std::uint64_t>(number));
}

void CborWriter::WriteContent(std::string_view string) {
    Head(Kind::Text, string.size());
    text += string;
}

void CborWriter::WriteContent(const VeJson::Binary& bytes) {
    Head(Kind::Bytes, bytes->size());
    parts.emplace_back(std::exchange(text, {}));
    parts.emplace_back(bytes);
}

void CborWriter::WriteContent(const VeJson::Array& values) {
    Head(Kind::Array, values.size());
    for (const VeJson& value : values)
        Write(value);
}

void CborWriter::WriteContent(const VeJson::Object& members) {
    Head(Kind::Map, members.size());
    for (const auto& [key, member] : members) {
        WriteContent(key);
        Write(member);
    }
}

/// In the shortest form.
void CborWriter::Head(Kind kind, std::uint64_t argument) {
    if (argument <= kMaxDirect)
        text +=
            static_cast<char>(static_cast<unsigned>(kind) << kKindShift | static_cast<unsigned>(argument));
    else if (argument <= std::numeric_limits<std::uint8_t>::max())
        Head(kind, One, argument);
    else if (argument <= std::numeric_limits<std::uint16_t>::max())
        Head(kind, Two, argument);
    else if (argument <= std::numeric_limits<std::uint32_t>::max())
        Head(kind, Four, argument);
    else
        Head(kind, Eight, argument);
}

void CborWriter::Head(Kind kind, Width width, std::uint64_t argument) {
    constexpr unsigned kByteBits = 8;
    text += static_cast<char>(static_cast<unsigned>(kind) << kKindShift | width);
    for (unsigned shift = kByteBits << (width - One); shift > 0; shift -= kByteBits)
        text += static_cast<char>(argument >> (shift - kByteBits) & 0xffU);
}

} // namespace OstraSdk
