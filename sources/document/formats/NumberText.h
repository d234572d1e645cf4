#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The most digits that a double holds exactly, whatever they are.
constexpr int kExactDigits = 15;

/// The powers of ten that scale so many digits, all of them exact.
constexpr std::array<double, kExactDigits + 1> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                               1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// The position of the decimal point in a short number that fills the highest bytes of a 64-bit word, with
/// its last character in the highest byte: which bytes are valid, and how they become digits without a gap.
class PointLayout {
  public:
    /// The layout of a number without a point.
    constexpr PointLayout() = default;

    /// The most decimals that fit into seven characters with their point.
    static constexpr std::uint32_t kMaxFraction = 6;

    /// @param fraction the number of decimals, at most kMaxFraction; 0 for a number without a point
    static const PointLayout& Of(std::uint32_t fraction);

    /// Turns characters into digit values and removes the point.
    /// @param word the number, with zeros in the bytes below; unchanged when it is rejected
    /// @param bits the number's length, 8 a character
    /// @return false when the point is elsewhere, or it is not a number
    [[gnu::always_inline]] bool ToDigits(std::uint64_t& word, unsigned bits) const {
        const std::uint64_t values = word ^ (characters & ~std::uint64_t{0} << (64 - bits));
        if (bits < leastBits || (((values + headroom) | values) & kHighBits) != 0)
            return false;
        word = (values & beforePoint) << 8 | (values & afterPoint);
        return true;
    }

  private:
    static constexpr std::uint64_t kOnes = 0x0101010101010101;
    static constexpr std::uint64_t kHighBits = kOnes * 0x80;
    static constexpr std::uint64_t kPoint = '.' ^ '0';

    using Layouts = std::array<PointLayout, kMaxFraction + 1>;

    constexpr explicit PointLayout(std::uint32_t fraction);
    static constexpr Layouts AllLayouts();

    static const Layouts kLayouts;

    std::uint64_t characters = kOnes * '0';       ///< XORed with each byte; a point becomes 0
    std::uint64_t headroom = kOnes * (0x7F - 9);  ///< beyond it a byte's high bit is set: the byte is wrong
    std::uint64_t beforePoint = 0;                ///< the bytes that move up by one
    std::uint64_t afterPoint = ~std::uint64_t{0}; ///< the bytes that stay
    unsigned leastBits = 8;
};

constexpr PointLayout::PointLayout(std::uint32_t fraction) {
    const unsigned bitsBefore = 56 - 8 * fraction;
    beforePoint = (std::uint64_t{1} << bitsBefore) - 1;
    afterPoint = ~beforePoint << 8;
    characters ^= kPoint << bitsBefore;
    headroom |= std::uint64_t{0x7F} << bitsBefore;
    leastBits = 8 * (fraction + 1);
}

constexpr PointLayout::Layouts PointLayout::AllLayouts() {
    Layouts layouts;
    for (std::uint32_t fraction = 1; fraction <= kMaxFraction; ++fraction)
        layouts[fraction] = PointLayout(fraction);
    return layouts;
}

inline constexpr PointLayout::Layouts PointLayout::kLayouts = PointLayout::AllLayouts();

inline const PointLayout& PointLayout::Of(std::uint32_t fraction) {
    return kLayouts[fraction];
}

/// A number of at most seven characters, as the fields of a height map row hold them, kept as its digits:
/// heights can be compared, and their colours found, exactly and without the division that makes a double of
/// them. Never a negative zero, which the digits cannot represent.
struct PackedDecimal {
    /// How many bytes Read examines.
    static constexpr std::ptrdiff_t kBytes = 8;

    /// There are fewer decimals than this.
    static constexpr std::uint32_t kFractions = PointLayout::kMaxFraction + 1;

    std::int32_t digits = 0;    ///< the number without its point, with its sign
    std::uint32_t fraction = 0; ///< how many of the digits are decimals

    /// The nearest double: both operands are exact, so one division rounds once, as the general conversion
    /// does.
    [[nodiscard]] double Value() const { return static_cast<double>(digits) / kPowersOfTen[fraction]; }

    /// Reads the field that starts here from one 64-bit word, all its characters at once, several times
    /// faster than character by character; kBytes bytes must be readable. Fastest when the field has as many
    /// decimals as `decimal`: pass the previous field there.
    /// @return the field's end, a comma; null, with `decimal` unchanged, when these bytes hold no comma or
    /// the field is not such a number and has to be read in another way
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

    /// The high bit of each byte that equals the character. Only the lowest of them is reliable.
    static std::uint64_t BytesEqual(std::uint64_t bytes, char character) {
        const std::uint64_t zeros = bytes ^ (kOnes * static_cast<unsigned char>(character));
        return (zeros - kOnes) & ~zeros & (kOnes * 0x80);
    }

    /// How many bits precede the first marked byte.
    static unsigned FirstByteBits(std::uint64_t highBits) {
        return static_cast<unsigned>(std::countr_zero(highBits)) & ~7U;
    }

    /// How many characters follow the first point; 0 without a point, or when they are too many.
    static std::uint32_t FractionOf(std::uint64_t field) {
        const std::uint32_t after = 7 - FirstByteBits(BytesEqual(field, '.')) / 8;
        return after <= PointLayout::kMaxFraction ? after : 0;
    }

    /// The number of eight digits' values: neighbours are combined into numbers of two, of four and then of
    /// eight digits.
    static std::int32_t Number(std::uint64_t digits) {
        digits = digits * (10 * 0x100 + 1) >> 8;
        digits = (digits & 0x00FF00FF00FF00FF) * (100 * 0x10000 + 1) >> 16;
        digits = (digits & 0x0000FFFF0000FFFF) * (10000 * 0x100000000 + 1) >> 32;
        return static_cast<std::int32_t>(digits);
    }
};

/// What the C library's `atof` gives for this text in the C locale, bit for bit, whatever the process's
/// locale: leading blanks are skipped, trailing text is ignored; 0 for text that is not a number.
[[nodiscard]] double ToDouble(std::string_view text);

/// What the C library's `atoi` gives for this text, read as by ToDouble: the low 32 bits of the nearest
/// `long`.
[[nodiscard]] std::int32_t ToInt32(std::string_view text);

/// A number as most fields hold one: an optional minus, digits, an optional point with digits.
struct ShortDecimal {
    double value = 0.0;
    const char* end = nullptr; ///< after the last character taken
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
