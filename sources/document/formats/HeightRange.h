#pragma once

#include "document/formats/Heights.h"
#include "document/formats/NumberText.h"

#include <array>
#include <cstdint>
#include <limits>
#include <span>

/// The lowest and the highest of many heights. Heights that come as digits are compared as digits, among
/// those with as many decimals, and become doubles only once, when the range is asked for.
class HeightRange {
  public:
    /// Starts with a range that the heights may widen.
    HeightRange(double lowest, double highest) : lowest(lowest), highest(highest) {}

    void Add(PackedDecimal height) {
        DigitRange& range = digits[height.fraction];
        range.lowest = height.digits < range.lowest ? height.digits : range.lowest;
        range.highest = height.digits > range.highest ? height.digits : range.highest;
    }

    /// Infinite heights and NaN are ignored.
    void Add(double height);

    [[nodiscard]] double Lowest();
    [[nodiscard]] double Highest();

  private:
    struct DigitRange {
        std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
        std::int32_t highest = std::numeric_limits<std::int32_t>::min();
    };

    void Widen(double height);
    void TakeInDigits();

    std::array<DigitRange, PackedDecimal::kFractions> digits;
    double lowest;
    double highest;
};

/// The lowest and the highest height of the samples seen so far. Samples without a measurement, and those
/// whose height is not finite, do not count.
class SampleRange {
  public:
    explicit SampleRange(const SampleScale& sampleScale) : scale(sampleScale) {}

    void Add(std::span<const std::int16_t> samples);

    /// 1e38 until a height lower than that was seen.
    [[nodiscard]] double Lowest() const { return lowest; }
    /// -1e38 until a height greater than that was seen.
    [[nodiscard]] double Highest() const { return highest; }

  private:
    void AddHeight(double height);

    SampleScale scale;
    double lowest = 1e38;
    double highest = -1e38;
};
