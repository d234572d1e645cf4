#include "document/formats/HeightRange.h"

#include "document/formats/Heights.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

struct Extremes {
    std::int16_t lowest = std::numeric_limits<std::int16_t>::max();
    std::int16_t highest = kNoMeasurement;
};

/// Decremented, a sample without measurement wraps round to the maximum, where it cannot be the lowest: a
/// minimum without a branch. Only the largest possible sample decrements close to it, which is harmless.
constexpr std::int16_t MovedDown(std::int16_t sample) {
    return static_cast<std::int16_t>(sample - 1);
}

constexpr std::int16_t MovedUp(std::int16_t sample) {
    return static_cast<std::int16_t>(sample + 1);
}

/// As many samples as the compiler needs to compare several with one instruction.
constexpr std::size_t kSideBySide = 32;
using Lanes = std::array<std::int16_t, kSideBySide>;

/// The extremes of measured samples; `highest` is kNoMeasurement when there is none.
Extremes ExtremesOf(std::span<const std::int16_t> samples) {
    Lanes lowest;
    Lanes highest;
    lowest.fill(std::numeric_limits<std::int16_t>::max());
    highest.fill(kNoMeasurement);
    std::size_t at = 0;
    for (; at + kSideBySide <= samples.size(); at += kSideBySide) {
        for (std::size_t lane = 0; lane < kSideBySide; ++lane) {
            const std::int16_t sample = samples[at + lane];
            lowest[lane] = std::min(lowest[lane], MovedDown(sample));
            highest[lane] = std::max(highest[lane], sample);
        }
    }
    for (; at < samples.size(); ++at) {
        lowest[0] = std::min(lowest[0], MovedDown(samples[at]));
        highest[0] = std::max(highest[0], samples[at]);
    }
    return {MovedUp(*std::min_element(lowest.begin(), lowest.end())),
            *std::max_element(highest.begin(), highest.end())};
}

} // namespace

void HeightRange::Add(double height) {
    if (!std::isfinite(height))
        return;
    // Of 0 and -0, the first one stays.
    if (height == 0.0)
        TakeInDigits();
    Widen(height);
}

double HeightRange::Lowest() {
    TakeInDigits();
    return lowest;
}

double HeightRange::Highest() {
    TakeInDigits();
    return highest;
}

void HeightRange::Widen(double height) {
    if (height < lowest)
        lowest = height;
    if (height > highest)
        highest = height;
}

void HeightRange::TakeInDigits() {
    for (std::uint32_t fraction = 0; fraction < digits.size(); ++fraction) {
        DigitRange& range = digits[fraction];
        if (range.lowest > range.highest)
            continue;
        Widen(PackedDecimal{range.lowest, fraction}.Value());
        Widen(PackedDecimal{range.highest, fraction}.Value());
        range = DigitRange();
    }
}

void SampleRange::Add(std::span<const std::int16_t> samples) {
    const Extremes extremes = ExtremesOf(samples);
    if (extremes.highest == kNoMeasurement)
        return;
    const double first = scale.HeightOf(extremes.lowest);
    const double last = scale.HeightOf(extremes.highest);
    if (std::isfinite(first) && std::isfinite(last)) {
        AddHeight(first);
        AddHeight(last);
        return;
    }
    // Between extremes that are too large for a double there may be heights that are not.
    for (const std::int16_t sample : samples) {
        if (sample != kNoMeasurement)
            AddHeight(scale.HeightOf(sample));
    }
}

void SampleRange::AddHeight(double height) {
    if (!std::isfinite(height))
        return;
    lowest = std::min(lowest, height);
    highest = std::max(highest, height);
}
