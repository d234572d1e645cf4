#pragma once

#include <cstdint>

/// Turns raw samples of a height map into world heights.
struct SampleScale {
    double zResolution = 0.0;
    double zOffset = 0.0;

    /// The world height of a measured sample. It rises or falls with the sample throughout; it is not finite
    /// when the two numbers are not, or when it is too large for a double.
    [[nodiscard]] double HeightOf(std::int16_t sample) const { return sample * zResolution + zOffset; }
};
