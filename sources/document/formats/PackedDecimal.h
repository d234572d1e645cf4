#pragma once

#include "document/formats/NumberText.h"
#include "document/formats/PointLayout.h"

#include <bit>
#include <cstdint>
#include <cstring>

/// A number of at most seven characters, as the fields of a height map row hold them, kept as its digits:
/// many questions about heights (which is the lowest, which colour has this one again) have an exact answer
/// without the division that makes a double of them. Never a negative zero, which digits cannot tell.
struct PackedDecimal {
    /// How many bytes Read looks at.
    static constexpr std::ptrdiff_t kBytes = 8;

    /// There are fewer digits than this behind a decimal point.
    static constexpr std::uint32_t kFractions = PointLayout::kMostFraction + 1;

    std::int32_t digits = 0;    ///< the number without its point, with its sign
    std::uint32_t fraction = 0; ///< how many of the digits stand behind the point

    /// The nearest double: both operands are exact, so one division rounds once, as the general conversion
    /// does.
    [[nodiscard]] double Value() const { return static_cast<double>(digits) / kPowersOfTen[fraction]; }

    /// Reads the field that starts here from one 64-bit word, all its characters at once, several times
    /// faster than character by character; kBytes bytes must be readable. Fastest when the field has as many
    /// digits behind the point as `decimal`: let that be the field before.
    /// @return the field's end, a comma; null, with `decimal` untouched, when these bytes hold no comma or
    /// the field is no such number, so that it has to be read otherwise
    [[gnu::always_inline]] static const char* Read(const char* start, PackedDecimal& decimal) {
        if constexpr (std::endian::native != std::endian::little)
            return nullptr;
        std::uint64_t bytes = 0; // the first character is the lowest byte
        std::memcpy(&bytes, start, sizeof bytes);
        const std::uint64_t commas = BytesEqual(bytes, ',');
        const unsigned bits = FirstByteBits(commas);
        if (commas == 0 || bits == 0)
            return nullptr;
        const bool negative = (bytes & 0xFF) == '-';
        bytes ^= std::uint64_t{negative} * ('-' ^ '0');
        std::uint64_t field = bytes << (64 - bits);
        std::uint32_t fraction = decimal.fraction;
        if (!PointLayout::Of(fraction).ToDigits(field, bits)) {
            fraction = FractionOf(field);
            if (!PointLayout::Of(fraction).ToDigits(field, bits))
                return nullptr;
        }
        const std::int32_t magnitude = Number(field);
        if (negative && magnitude == 0) // a negative zero, or a lone minus
            return nullptr;
        decimal.digits = negative ? -magnitude : magnitude;
        decimal.fraction = fraction;
        return start + bits / 8;
    }

  private:
    static constexpr std::uint64_t kOnes = 0x0101010101010101;

    /// The high bit of each byte that equals the character. Only the lowest of them is to be trusted.
    static std::uint64_t BytesEqual(std::uint64_t bytes, char character) {
        const std::uint64_t zeros = bytes ^ (kOnes * static_cast<unsigned char>(character));
        return (zeros - kOnes) & ~zeros & (kOnes * 0x80);
    }

    /// How many bits stand before the first marked byte.
    static unsigned FirstByteBits(std::uint64_t highBits) {
        return static_cast<unsigned>(std::countr_zero(highBits)) & ~7U;
    }

    /// How many characters stand behind the first point; 0 without a point, or when they are too many.
    static std::uint32_t FractionOf(std::uint64_t field) {
        const std::uint32_t behind = 7 - FirstByteBits(BytesEqual(field, '.')) / 8;
        return behind <= PointLayout::kMostFraction ? behind : 0;
    }

    /// The number of eight digits' values: neighbours are joined to numbers of two, of four and then of eight
    /// digits.
    static std::int32_t Number(std::uint64_t digits) {
        digits = digits * (10 * 0x100 + 1) >> 8;
        digits = (digits & 0x00FF00FF00FF00FF) * (100 * 0x10000 + 1) >> 16;
        digits = (digits & 0x0000FFFF0000FFFF) * (10000 * 0x100000000 + 1) >> 32;
        return static_cast<std::int32_t>(digits);
    }
};
