#pragma once

#include "document/formats/Heights.h"
#include "document/formats/NumberText.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Turns heights into colours: black, blue, cyan, green, yellow, red, magenta and white, seven bands of 256
/// steps from the lowest height to the highest.
class HeightRamp {
  public:
    /// Red, green, blue.
    using Colour = std::array<std::uint8_t, 3>;

    /// The step of the highest height; steps above it are white, steps below 0 black.
    static constexpr int kLastStep = 1792;

    /// What a cell without a measurement is painted with.
    static constexpr Colour kBlack = {0, 0, 0};

    /// The range must be greater than 0: check IsValid before the first height.
    HeightRamp(double lowHeight, double highHeight) : low(lowHeight), range(highHeight - lowHeight) {}

    [[nodiscard]] bool IsValid() const { return range > 0.0; }

    /// The colour of a finite height: that of step floor((height - low) x 1792 / range + 0.5).
    [[nodiscard]] const Colour& ColourOf(double height) const {
        return ColourOfStep((height - low) * kLastStep / range + 0.5);
    }

    /// The colour of the step floor(step). Any value is accepted; below 0 and NaN give black.
    static const Colour& ColourOfStep(double step) {
        // Written so that NaN becomes 0 in the first comparison, as a value below 0 does; from 0 up, dropping
        // the fraction rounds down.
        const double notBelow = step > 0.0 ? step : 0.0;
        const double inside = notBelow < kLastStep ? notBelow : double{kLastStep};
        return kTable[static_cast<std::size_t>(static_cast<int>(inside))];
    }

  private:
    using Table = std::array<Colour, kLastStep + 1>;

    static constexpr Colour ComputedColour(int step);
    static constexpr Table ComputedTable();

    static const Table kTable;

    double low;
    double range;
};

constexpr HeightRamp::Colour HeightRamp::ComputedColour(int step) {
    const auto rising = static_cast<std::uint8_t>(step % 256);
    const auto falling = static_cast<std::uint8_t>(255 - rising);
    switch (step / 256) {
    case 0:
        return {0, 0, rising};
    case 1:
        return {0, rising, 255};
    case 2:
        return {0, 255, falling};
    case 3:
        return {rising, 255, 0};
    case 4:
        return {255, falling, 0};
    case 5:
        return {255, 0, rising};
    case 6:
        return {255, rising, 255};
    default:
        return {255, 255, 255};
    }
}

constexpr HeightRamp::Table HeightRamp::ComputedTable() {
    Table table{};
    for (int step = 0; step <= kLastStep; ++step)
        table[static_cast<std::size_t>(step)] = ComputedColour(step);
    return table;
}

inline constexpr HeightRamp::Table HeightRamp::kTable = HeightRamp::ComputedTable();

/// The colours of a map's heights on a ramp, each computed once: the heights of a sensor come from a few
/// thousand values, written with the same number of decimals, so that most are found by their digits in a
/// table of 256 KiB.
class HeightColours {
  public:
    /// The ramp's range may be invalid: check IsValid before the first height.
    explicit HeightColours(const HeightRamp& ramp) : ramp(ramp), found(kDigits) {}

    [[nodiscard]] bool IsValid() const { return ramp.IsValid(); }

    /// The reference is valid until the next call.
    [[nodiscard]] const HeightRamp::Colour& ColourOf(PackedDecimal height) {
        const auto index = static_cast<std::uint32_t>(height.digits + kLowestDigits);
        if (height.fraction != fraction || index >= kDigits)
            return ColourOutside(height);
        Found& entry = found[index];
        if (!entry.isKnown)
            entry = {ramp.ColourOf(height.Value()), true};
        return entry.colour;
    }

    /// An infinite height and NaN count as no measurement.
    [[nodiscard]] const HeightRamp::Colour& ColourOf(double height) const;

  private:
    struct Found {
        HeightRamp::Colour colour;
        bool isKnown;
    };

    static constexpr std::int32_t kLowestDigits = 1 << 15;
    static constexpr std::uint32_t kDigits = 1 << 16;
    static constexpr std::uint32_t kNotYetSeen = PackedDecimal::kFractions;

    const HeightRamp::Colour& ColourOutside(PackedDecimal height);

    HeightRamp ramp;
    std::vector<Found> found;             ///< by digits, from -kLowestDigits on
    std::uint32_t fraction = kNotYetSeen; ///< the decimals of the heights in the table
};

/// The colours of all 65,536 raw samples, found in a table instead of computed for each cell.
class SampleRamp {
  public:
    /// The ramp must be valid. Samples without a measurement, and those whose height is not finite, are
    /// black.
    SampleRamp(const HeightRamp& ramp, const SampleScale& scale);

    /// Writes one pixel, three bytes in the order red, green, blue, for each sample; nothing beyond them.
    void Paint(std::span<const std::int16_t> samples, std::uint8_t* target) const;

  private:
    [[nodiscard]] std::uint32_t PixelOf(std::int16_t sample) const {
        return pixels[static_cast<std::uint16_t>(sample)];
    }

    /// Red in the lowest byte, then green and blue; indexed by the sample's bits as an unsigned number.
    std::vector<std::uint32_t> pixels;
};
