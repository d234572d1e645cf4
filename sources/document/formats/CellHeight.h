#pragma once

#include <cstdint>

/// What is known of one cell of a height map.
struct CellHeight {
    enum class Kind : std::uint8_t {
        Unknown,     ///< it could not be read, or not yet
        NotMeasured, ///< the cell has no measurement
        Measured
    };

    Kind kind = Kind::Unknown;
    double height = 0.0; ///< in world units, when it is measured
};
