#include "wire/CborReader.h"

#include "basalt/Exception.h"
#include "basalt/SystemCalls.h"
#include "basalt/bStatus.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include <QTextCodec>

namespace OstraSdk {

namespace {

constexpr int kMaxByteStrings = 1000;

[[noreturn]] void Throw(int line, bStatus status, const char* reason) {
    throw Ve::Exception(line, __FILE__, status, "CborReader", "%s", reason);
}

bool IsUtf8(const std::string& text) {
    constexpr int kUtf8 = 106;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QTextCodec::codecForMib(kUtf8)->toUnicode(text.data(), static_cast<int>(text.size()), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// @param argument the absolute value, less one for a negative number
std::int64_t Integer(bool negative, std::uint64_t argument) {
    constexpr std::uint64_t kMax = INT64_MAX;
    if (argument > kMax || (negative && argument == kMax))
        Throw(__LINE__, bERROR_LIMIT, "An integer is out of range.");
    const auto number = static_cast<std::int64_t>(argument);
    return negative ? -1 - number : number;
}

/// The number with these bits in half precision.
double Half(unsigned bits) {
    const unsigned exponent = bits >> 10U & 0x1FU;
    const unsigned mantissa = bits & 0x3FFU;
    double number = std::ldexp(mantissa, -24);
    if (exponent == 0x1F)
        number = mantissa == 0 ? std::numeric_limits<double>::infinity()
                               : std::numeric_limits<double>::quiet_NaN();
    else if (exponent != 0)
        number = std::ldexp(mantissa + 0x400U, static_cast<int>(exponent) - 25);
    return (bits & 0x8000U) != 0 ? -number : number;
}

VeJson::Value Simple(unsigned detail, std::uint64_t argument) {
    switch (detail) {
    case 20:
        return false;
    case 21:
        return true;
    case 22:
        return {};
    case 25:
        return Half(static_cast<unsigned>(argument));
    case 26:
        return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(argument)));
    case 27:
        return std::bit_cast<double>(argument);
    default:
        Throw(__LINE__, bERROR_FORMAT, "The body holds what a value cannot.");
    }
}

/// The capacity grows with the bytes that have arrived, never by the declared length alone; it grows in large
/// steps, so that the last reallocation copies little and the peak is the size of the complete string.
void ReserveFor(VeJson::Bytes& bytes, std::size_t size, std::uint64_t left) {
    constexpr std::uint64_t kFirstCapacity = std::uint64_t{1024} * 1024;
    constexpr std::uint64_t kGrowth = 16;
    if (bytes.capacity() - bytes.size() >= size)
        return;
    const std::uint64_t complete = bytes.size() + size + left;
    const std::uint64_t arrived = std::max<std::uint64_t>(bytes.size() + size, kFirstCapacity);
    const std::uint64_t capacity = complete / (2 * kGrowth) <= arrived ? complete : kGrowth * arrived;
    ReserveInLargePages(bytes, static_cast<std::size_t>(capacity));
}

} // namespace

std::size_t ByteString::Read(char* bytes, std::size_t capacity) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(capacity, left));
    if (wanted == 0)
        return 0;
    const std::size_t count = reader.Take(bytes, wanted);
    left -= count;
    return count;
}

VeJson::Bytes KeepBytes(ByteString& bytes) {
    constexpr std::size_t kPiece = std::size_t{256} * 1024; // stays in the processor's cache
    VeJson::Bytes kept;
    VeJson::Bytes piece(static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, bytes.Left())));
    while (const std::size_t count = bytes.Read(reinterpret_cast<char*>(piece.data()), piece.size())) {
        ReserveFor(kept, count, bytes.Left());
        // Elements of one type are copied as one block, others byte by byte.
        kept.insert(kept.end(), piece.data(), piece.data() + count);
    }
    return kept;
}

VeJson CborReader::Read(const ByteStringSink& sink) {
    takeBytes = sink;
    if (!Fill())
        return {};
    const Head head = NextHead();
    if (head.kind != Kind::Map && head.kind != Kind::Array)
        Throw(__LINE__, bERROR_FORMAT, "The body is neither a map nor an array.");
    VeJson value = ReadValue(head, 1, {});
    if (Fill())
        Throw(__LINE__, bERROR_FORMAT, "Something follows the body's value.");
    return value;
}

VeJson CborReader::ReadValue(const Head& head, int depth, const std::string& key) {
    const bool isContainer = head.kind == Kind::Map || head.kind == Kind::Array;
    if (isContainer && depth > VeJson::kMaxDepth)
        Throw(__LINE__, bERROR_LIMIT, "The values nest too deep.");
    switch (head.kind) {
    case Kind::Unsigned:
    case Kind::Negative:
        return VeJson(VeJson::Value(Integer(head.kind == Kind::Negative, head.argument)));
    case Kind::Bytes:
        return VeJson(VeJson::Value(std::make_shared<const VeJson::Bytes>(ReadBytes(head.argument, key))));
    case Kind::Text:
        return VeJson(VeJson::Value(ReadText(head.argument)));
    case Kind::Array:
        return ReadArray(head.argument, depth);
    case Kind::Map:
        return ReadMap(head.argument, depth);
    default:
        return VeJson(Simple(head.kind == Kind::Tag ? 0 : head.detail, head.argument));
    }
}

VeJson CborReader::ReadMap(std::uint64_t count, int depth) {
    static const std::string kNoKey;
    VeJson::Object members;
    for (; count > 0; --count) {
        const Head head = NextHead();
        if (head.kind != Kind::Text)
            Throw(__LINE__, bERROR_FORMAT, "A key is not a text.");
        const auto [member, isNew] = members.try_emplace(ReadText(head.argument));
        if (!isNew)
            Throw(__LINE__, bERROR_FORMAT, "A key is repeated.");
        member->second = ReadValue(NextHead(), depth + 1, depth == 1 ? member->first : kNoKey);
    }
    return VeJson(VeJson::Value(std::move(members)));
}

VeJson CborReader::ReadArray(std::uint64_t count, int depth) {
    VeJson::Array values;
    for (; count > 0; --count)
        values.push_back(ReadValue(NextHead(), depth + 1, {}));
    return VeJson(VeJson::Value(std::move(values)));
}

VeJson::Bytes CborReader::ReadBytes(std::uint64_t size, const std::string& key) {
    if (++byteStrings > kMaxByteStrings)
        Throw(__LINE__, bERROR_LIMIT, "The body has too many byte strings.");
    const std::uint64_t end = position + size;
    ByteString bytes(*this, key, size);
    VeJson::Bytes kept = takeBytes(bytes);
    for (std::array<char, 4096> rest{}; position < end;)
        static_cast<void>(bytes.Read(rest.data(), rest.size()));
    return kept;
}

std::string CborReader::ReadText(std::uint64_t size) {
    CountBeside(size);
    std::string text(static_cast<std::size_t>(size), '\0');
    for (std::size_t at = 0; at < text.size();)
        at += Take(text.data() + at, text.size() - at);
    if (!IsUtf8(text))
        Throw(__LINE__, bERROR_FORMAT, "A text is not UTF-8.");
    return text;
}

CborReader::Head CborReader::NextHead() {
    constexpr unsigned kKindShift = 5;
    constexpr unsigned kDetailMask = 0x1f;
    constexpr unsigned kFirstWide = 24; // 24 to 27: the argument follows in 1, 2, 4 or 8 bytes
    constexpr unsigned kLastWide = 27;
    const unsigned first = NextByte();
    Head head{static_cast<Kind>(first >> kKindShift), first & kDetailMask, first & kDetailMask};
    if (head.detail > kLastWide)
        Throw(__LINE__, bERROR_FORMAT, "A length is not definite.");
    if (head.detail >= kFirstWide) {
        head.argument = 0;
        for (unsigned left = 1U << (head.detail - kFirstWide); left > 0; --left)
            head.argument = head.argument << 8U | NextByte();
    }
    // Each element, key and value takes at least one byte.
    const bool isLength = head.kind >= Kind::Bytes && head.kind <= Kind::Map;
    if (isLength && head.argument > bounds.body - std::min(bounds.body, position))
        Throw(__LINE__, bERROR_FORMAT, "A length reaches beyond the body.");
    return head;
}

std::uint8_t CborReader::NextByte() {
    CountBeside(1);
    char byte = 0;
    Take(&byte, 1);
    return static_cast<std::uint8_t>(byte);
}

/// Reads some of the next bytes, at least one.
std::size_t CborReader::Take(char* bytes, std::size_t capacity) {
    // Larger reads go directly to their destination.
    std::size_t count = 0;
    if (windowAt == windowSize && capacity >= window.size()) {
        count = body.Read(bytes, capacity);
    } else if (Fill()) {
        count = std::min(capacity, windowSize - windowAt);
        std::copy_n(window.data() + windowAt, count, bytes);
        windowAt += count;
    }
    if (count == 0)
        Throw(__LINE__, bERROR_FORMAT, "The body is cut short.");
    position += count;
    return count;
}

/// @return false at the end of the body
bool CborReader::Fill() {
    if (windowAt == windowSize) {
        windowAt = 0;
        windowSize = body.Read(window.data(), window.size());
    }
    return windowAt < windowSize;
}

void CborReader::CountBeside(std::uint64_t size) {
    if (size > bounds.beside - beside)
        Throw(__LINE__, bERROR_LIMIT, "The body has too much besides its byte strings.");
    beside += size;
}

} // namespace OstraSdk
