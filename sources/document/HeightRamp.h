#pragma once

#include <array>
#include <cstdint>

/// Turns heights into colours: black, blue, cyan, green, yellow, red, magenta and white, seven bands of 256
/// steps from the lowest height to the highest.
class HeightRamp {
  public:
    /// Red, green, blue.
    using Colour = std::array<std::uint8_t, 3>;

    /// The step of the highest height; steps above it are white, steps below 0 black.
    static constexpr int kLastStep = 1792;

    /// The range must be greater than 0: ask IsValid before the first height.
    HeightRamp(double lowHeight, double highHeight);

    [[nodiscard]] bool IsValid() const { return range > 0.0; }

    /// The colour of a finite height: that of step floor((height - low) x 1792 / range + 0.5).
    [[nodiscard]] const Colour& ColourOf(double height) const;

    /// The colour of a step; any value is taken.
    static const Colour& ColourOfStep(double step);

  private:
    double low;
    double range;
};
