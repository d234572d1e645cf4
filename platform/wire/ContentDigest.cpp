#include "wire/ContentDigest.h"

#include <algorithm>

#include <isa-l/crc.h>

namespace {

constexpr std::string_view kKey = "crc32c=";

/// Four bytes, the most significant first, in base64.
std::string Base64(std::uint32_t number) {
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr unsigned kLetterBits = 6;
    constexpr unsigned kTopShift = 32 - kLetterBits;
    const std::uint64_t padded = std::uint64_t{number} << 4U; // six letters hold 36 bits
    std::string text;
    for (unsigned letter = 0; letter < 6; ++letter)
        text += kLetters[padded >> (kTopShift + 4U - kLetterBits * letter) & 0x3FU];
    return text + "==";
}

/// Takes the next element of a list off its front, without the blanks around it.
std::string_view NextElement(std::string_view& list) {
    const std::size_t comma = std::min(list.find(','), list.size());
    std::string_view element = list.substr(0, comma);
    list.remove_prefix(std::min(comma + 1, list.size()));
    const auto isBlank = [](char letter) { return letter == ' ' || letter == '\t'; };
    while (!element.empty() && isBlank(element.front()))
        element.remove_prefix(1);
    while (!element.empty() && isBlank(element.back()))
        element.remove_suffix(1);
    return element;
}

/// The first element of the algorithm; empty when there is none.
std::string_view Crc32cElement(std::string_view list) {
    while (!list.empty()) {
        const std::string_view element = NextElement(list);
        if (element.substr(0, kKey.size()) == kKey)
            return element;
    }
    return {};
}

} // namespace

void Crc32c::Take(const void* data, std::size_t size) {
    constexpr std::size_t kMaxPiece = std::size_t{1} << 30U; // the library takes an int
    // It takes a non-const pointer, but changes nothing.
    auto* bytes = static_cast<unsigned char*>(const_cast<void*>(data));
    for (std::size_t piece = 0; size > 0; bytes += piece, size -= piece) {
        piece = std::min(size, kMaxPiece);
        state = crc32_iscsi(bytes, static_cast<int>(piece), state);
    }
}

std::string ContentDigest(std::uint32_t crc32c) {
    return std::string(kKey) + ":" + Base64(crc32c) + ":";
}

DigestCheck CheckContentDigest(std::string_view field, std::uint32_t crc32c) {
    const std::string_view element = Crc32cElement(field);
    if (element.empty())
        return DigestCheck::NotGiven;
    return element == ContentDigest(crc32c) ? DigestCheck::Equal : DigestCheck::Different;
}

bool WantsCrc32c(std::string_view field) {
    const std::string_view element = Crc32cElement(field);
    return !element.empty() && element != "crc32c=0";
}
