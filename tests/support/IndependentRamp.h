#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace independent {

/// Red, green and blue of a height in the picture: linear between the ramp's colours at the
/// bounds of its seven bands.
inline std::array<int, 3> RampColour(double height, double low, double high) {
    constexpr std::array<std::array<int, 3>, 8> kStarts = {{{0, 0, 0},
                                                            {0, 0, 255},
                                                            {0, 255, 255},
                                                            {0, 255, 0},
                                                            {255, 255, 0},
                                                            {255, 0, 0},
                                                            {255, 0, 255},
                                                            {255, 255, 255}}};
    constexpr int kStepsOfBand = 256;
    constexpr int kSteps = 7 * kStepsOfBand;
    const double step = std::floor((height - low) * kSteps / (high - low) + 0.5);
    if (step < 0)
        return kStarts.front();
    if (step >= kSteps)
        return kStarts.back();
    const auto band = static_cast<std::size_t>(step) / kStepsOfBand;
    const int into = static_cast<int>(step) % kStepsOfBand;
    std::array<int, 3> colour{};
    for (std::size_t channel = 0; channel < colour.size(); ++channel) {
        const int from = kStarts.at(band).at(channel);
        const int to = kStarts.at(band + 1).at(channel);
        colour.at(channel) = from == to ? from : (from < to ? into : 255 - into);
    }
    return colour;
}

} // namespace independent
