#pragma once

#include "document/formats/HeightMap.h"

#include <cmath>

/// The raw value of a world height: (height - zOffset) / zResolution, truncated toward zero. A value beyond
/// 16 bits becomes -32767 or 32767, so that a measured cell never turns into one without a measurement; a
/// height that is not finite, and any height where zResolution is 0, has none.
inline std::int16_t RawHeight(double height, double zOffset, double zResolution) {
    constexpr double kLargest = 32767.0;
    if (!std::isfinite(height) || zResolution == 0.0)
        return kNoMeasurement;
    const double raw = (height - zOffset) / zResolution;
    if (std::isnan(raw))
        return kNoMeasurement;
    if (raw >= kLargest)
        return static_cast<std::int16_t>(kLargest);
    if (raw <= -kLargest)
        return static_cast<std::int16_t>(-kLargest);
    return static_cast<std::int16_t>(raw);
}
