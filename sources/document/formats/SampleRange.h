#pragma once

#include "document/formats/SampleScale.h"

#include <cstdint>
#include <span>

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
