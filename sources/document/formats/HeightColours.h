#pragma once

#include "document/formats/HeightRamp.h"
#include "document/formats/PackedDecimal.h"

#include <cstdint>
#include <vector>

/// The colours of a map's heights on a ramp, each computed once: the heights of a sensor come from a few
/// thousand values, written with the same number of digits behind the point, so that most are found by their
/// digits in a table of 256 KiB.
class HeightColours {
  public:
    /// The ramp's range may be wrong: ask IsValid before the first height.
    explicit HeightColours(const HeightRamp& ramp) : ramp(ramp), found(kDigits) {}

    [[nodiscard]] bool IsValid() const { return ramp.IsValid(); }

    /// The colour stays until the next call.
    [[nodiscard]] const HeightRamp::Colour& ColourOf(PackedDecimal height) {
        const auto index = static_cast<std::uint32_t>(height.digits + kLowestDigits);
        if (height.fraction != fraction || index >= kDigits)
            return ColourOutside(height);
        Found& entry = found[index];
        if (!entry.isKnown)
            entry = {ramp.ColourOf(height.Value()), true};
        return entry.colour;
    }

    /// What is infinite or no number is no measurement.
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
    std::uint32_t fraction = kNotYetSeen; ///< the digits behind the point of the heights in the table
};
