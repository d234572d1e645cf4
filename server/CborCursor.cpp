#include "server/CborCursor.h"

#include "server/RequestError.h"

#include <algorithm>

namespace {

[[noreturn]] void Malformed() {
    throw RequestError(400, "The body is not well-formed CBOR.");
}

} // namespace

/// @return false at the end of the body
bool CborCursor::Fill() {
    if (windowAt == windowSize) {
        windowAt = 0;
        windowSize = body.Read(window.data(), window.size());
    }
    return windowAt < windowSize;
}

std::uint8_t CborCursor::Byte() {
    if (!Fill())
        Malformed();
    ++offset;
    return static_cast<std::uint8_t>(window[windowAt++]);
}

CborCursor::Head CborCursor::Next() {
    constexpr unsigned kKindShift = 5;
    constexpr unsigned kDetailMask = 0x1f;
    constexpr unsigned kFirstWide = 24; // 24 to 27: the argument follows in 1, 2, 4 or 8 bytes
    constexpr unsigned kLastWide = 27;
    const unsigned first = Byte();
    Head head{static_cast<Kind>(first >> kKindShift), first & kDetailMask, first & kDetailMask};
    if (head.detail > kLastWide)
        Malformed();
    if (head.detail >= kFirstWide) {
        head.argument = 0;
        for (unsigned left = 1U << (head.detail - kFirstWide); left > 0; --left)
            head.argument = head.argument << 8U | Byte();
    }
    const bool isString = head.kind == Kind::Bytes || head.kind == Kind::Text;
    if (isString && head.argument > body.MostBytes() - offset)
        Malformed();
    return head;
}

std::size_t CborCursor::TakeFromWindow(char* bytes, std::size_t most) {
    const std::size_t count = std::min(most, windowSize - windowAt);
    std::copy_n(window.data() + windowAt, count, bytes);
    windowAt += count;
    return count;
}

std::size_t CborCursor::Take(char* bytes, std::size_t most) {
    const std::size_t count = windowAt < windowSize ? TakeFromWindow(bytes, most) : body.Read(bytes, most);
    if (count == 0)
        Malformed();
    offset += count;
    return count;
}

void CborCursor::SkipTo(std::uint64_t end) {
    while (offset < end) {
        if (!Fill())
            Malformed();
        const std::uint64_t count = std::min<std::uint64_t>(end - offset, windowSize - windowAt);
        windowAt += static_cast<std::size_t>(count);
        offset += count;
    }
}

std::string CborCursor::Text(const Head& head, std::size_t longest) {
    std::string text;
    if (head.argument > longest)
        SkipString(head);
    else
        for (std::uint64_t left = head.argument; left > 0; --left)
            text += static_cast<char>(Byte());
    return text;
}

void CborCursor::SkipValue(const Head& head, unsigned depth) {
    switch (head.kind) {
    case Kind::Bytes:
    case Kind::Text:
        SkipString(head);
        break;
    case Kind::Array:
        SkipElements(head.argument, depth);
        break;
    case Kind::Map:
        // Each entry takes two bytes at least, so a larger count is caught before it is doubled.
        if (head.argument > body.MostBytes())
            Malformed();
        SkipElements(2 * head.argument, depth);
        break;
    case Kind::Tag:
        SkipElements(1, depth);
        break;
    case Kind::Unsigned:
    case Kind::Negative:
    case Kind::Simple:
        break;
    }
}

void CborCursor::SkipElements(std::uint64_t count, unsigned depth) {
    if (depth == 0 || count > body.MostBytes() - offset)
        Malformed();
    for (; count > 0; --count)
        SkipValue(Next(), depth - 1);
}
