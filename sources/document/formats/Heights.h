#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

/// Raw heights, row-major: the cell of row r and column c is at r x width + c. World height = raw x
/// zResolution + zOffset.
using HeightMap = std::vector<std::int16_t>;

/// The raw value of a cell without a measurement.
constexpr std::int16_t kNoMeasurement = -32768;

/// Turns raw samples of a height map into world heights.
struct SampleScale {
    double zResolution = 0.0;
    double zOffset = 0.0;

    /// The world height of a measured sample. It rises or falls with the sample throughout; it is not finite
    /// when the two numbers are not, or when it is too large for a double.
    [[nodiscard]] double HeightOf(std::int16_t sample) const { return sample * zResolution + zOffset; }
};

/// The raw value of a world height: (height - zOffset) / zResolution, truncated toward zero. A value beyond
/// 16 bits becomes -32767 or 32767, so that a measured cell never turns into one without a measurement; a
/// height that is not finite, and any height where zResolution is 0, has none.
inline std::int16_t RawHeight(double height, double zOffset, double zResolution) {
    constexpr double kMax = 32767.0;
    if (!std::isfinite(height) || zResolution == 0.0)
        return kNoMeasurement;
    const double raw = (height - zOffset) / zResolution;
    if (std::isnan(raw))
        return kNoMeasurement;
    if (raw >= kMax)
        return static_cast<std::int16_t>(kMax);
    if (raw <= -kMax)
        return static_cast<std::int16_t>(-kMax);
    return static_cast<std::int16_t>(raw);
}

/// What is known about one cell of a height map.
struct CellHeight {
    enum class Kind : std::uint8_t {
        Unknown,     ///< it could not be read, or not yet
        NotMeasured, ///< the cell has no measurement
        Measured
    };

    Kind kind = Kind::Unknown;
    double height = 0.0; ///< in world units, when it is measured
};
