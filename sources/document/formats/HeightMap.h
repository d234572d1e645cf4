#pragma once

#include <cstdint>
#include <vector>

/// Raw heights, row-major: the cell of row r and column c stands at r x width + c.
/// World height = raw x zResolution + zOffset.
using HeightMap = std::vector<std::int16_t>;

/// The raw value of a cell without a measurement.
constexpr std::int16_t kNoMeasurement = -32768;
