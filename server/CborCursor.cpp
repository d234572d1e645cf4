#include "CborCursor.h"

#include "RequestError.h"

namespace {

[[noreturn]] void Malformed() {
    throw RequestError(400, "The body is not well-formed CBOR.");
}

} // namespace

std::uint8_t CborCursor::Byte() {
    if (offset < windowStart || offset >= windowStart + windowSize) {
        windowStart = offset;
        windowSize = body.Read(offset, window.data(), window.size());
        if (windowSize == 0)
            Malformed();
    }
    return static_cast<std::uint8_t>(window[static_cast<std::size_t>(offset++ - windowStart)]);
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
    if (isString && head.argument > body.Size() - offset)
        Malformed();
    return head;
}

std::string CborCursor::Text(const Head& head, std::size_t longest) {
    std::string text;
    if (head.argument <= longest) {
        text.resize(static_cast<std::size_t>(head.argument));
        body.Read(offset, text.data(), text.size());
    }
    SkipString(head);
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
        if (head.argument > body.Size())
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
    if (depth == 0 || count > body.Size() - offset)
        Malformed();
    for (; count > 0; --count)
        SkipValue(Next(), depth - 1);
}
