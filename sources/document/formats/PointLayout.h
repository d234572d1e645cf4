#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Where the decimal point stands in a short number that fills the highest bytes of a 64-bit word, its last
/// character the highest: what the bytes must be then, and how they become digits without a gap.
class PointLayout {
  public:
    /// The layout of a number without a point.
    constexpr PointLayout() = default;

    /// A point and so many digits behind it still fit into seven characters.
    static constexpr std::uint32_t kMostFraction = 6;

    /// @param fraction the digits behind the point, at most kMostFraction; 0 for a number without a point
    static const PointLayout& Of(std::uint32_t fraction);

    /// Turns characters into digits' values and takes out the point.
    /// @param word the number, with zeros in the bytes below; untouched when it is refused
    /// @param bits the number's length, 8 a character
    /// @return false when the number is laid out in another way, or is none
    [[gnu::always_inline]] bool ToDigits(std::uint64_t& word, unsigned bits) const {
        const std::uint64_t values = word ^ (characters & ~std::uint64_t{0} << (64 - bits));
        if (bits < leastBits || (((values + headroom) | values) & kHighBits) != 0)
            return false;
        word = (values & beforePoint) << 8 | (values & behindPoint);
        return true;
    }

  private:
    static constexpr std::uint64_t kOnes = 0x0101010101010101;
    static constexpr std::uint64_t kHighBits = kOnes * 0x80;
    static constexpr std::uint64_t kPoint = '.' ^ '0';

    using Layouts = std::array<PointLayout, kMostFraction + 1>;

    constexpr explicit PointLayout(std::uint32_t fraction);
    static constexpr Layouts AllLayouts();

    static const Layouts kLayouts;

    std::uint64_t characters = kOnes * '0';        ///< taken away from each byte, 0 is left of a point
    std::uint64_t headroom = kOnes * (0x7F - 9);   ///< beyond it a byte's high bit is set: the byte is wrong
    std::uint64_t beforePoint = 0;                 ///< the bytes that move up by one
    std::uint64_t behindPoint = ~std::uint64_t{0}; ///< the bytes that stay
    unsigned leastBits = 8;
};

constexpr PointLayout::PointLayout(std::uint32_t fraction) {
    const unsigned bitsBefore = 56 - 8 * fraction;
    beforePoint = (std::uint64_t{1} << bitsBefore) - 1;
    behindPoint = ~beforePoint << 8;
    characters ^= kPoint << bitsBefore;
    headroom |= std::uint64_t{0x7F} << bitsBefore;
    leastBits = 8 * (fraction + 1);
}

constexpr PointLayout::Layouts PointLayout::AllLayouts() {
    Layouts layouts;
    for (std::uint32_t fraction = 1; fraction <= kMostFraction; ++fraction)
        layouts[fraction] = PointLayout(fraction);
    return layouts;
}

inline constexpr PointLayout::Layouts PointLayout::kLayouts = PointLayout::AllLayouts();

inline const PointLayout& PointLayout::Of(std::uint32_t fraction) {
    return kLayouts[fraction];
}
