#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// What the C library's `atof` gives for this text in the C locale, bit for bit, whatever the process's
/// locale: leading blanks are skipped, trailing text is ignored, 0 for a text that is no number.
[[nodiscard]] double ToDouble(std::string_view text);

/// What the C library's `atoi` gives for this text: as ToDouble; beyond the range of `long` its nearest
/// value, and of that the low 32 bits.
[[nodiscard]] std::int32_t ToInt32(std::string_view text);

/// The most digits that a double holds exactly, whatever they are.
constexpr int kExactDigits = 15;

/// The powers of ten that scale so many digits, all of them exact.
constexpr std::array<double, kExactDigits + 1> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                               1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// A number as most fields hold one: an optional minus, digits, an optional point with digits.
struct ShortDecimal {
    double value = 0.0;
    const char* end = nullptr; ///< behind the last character taken
    bool exact = false;        ///< whether `value` is the number; otherwise it has too many digits, or none
};

/// Reads the short decimal that [begin, end) starts with. Up to 15 digits and powers of ten up to 10^22 are
/// exact as doubles, so one division rounds once and gives the nearest double, just as the general conversion
/// does.
inline ShortDecimal ReadShortDecimal(const char* begin, const char* end) {
    const char* at = begin;
    std::uint64_t digits = 0; // wraps around when there are too many, and is not used then
    const auto takeDigits = [&] {
        const char* const first = at;
        for (; at != end; ++at) {
            const unsigned digit = static_cast<unsigned char>(*at) - unsigned{'0'};
            if (digit > 9)
                break;
            digits = digits * 10 + digit;
        }
        return at - first;
    };
    const bool negative = at != end && *at == '-';
    if (negative)
        ++at;
    const auto whole = takeDigits();
    auto fraction = decltype(whole){0};
    if (at != end && *at == '.') {
        ++at;
        fraction = takeDigits();
    }
    const auto count = whole + fraction;
    if (count < 1 || count > kExactDigits)
        return {0.0, at, false};
    const double value = static_cast<double>(static_cast<std::int64_t>(digits)) /
                         kPowersOfTen[static_cast<std::size_t>(fraction)];
    return {negative ? -value : value, at, true};
}
