#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Watches the heights of a map on their way into raw values and says whether a file that keeps nothing else
/// of them still holds the map: every measured cell needs a raw value of its own, and heights that differ
/// must not all become one, since such a map has no height range and cannot be opened. A cell is measured
/// when its height is finite.
class RawHeightCheck {
  public:
    struct Cell {
        std::int64_t row;
        std::int32_t column;
        double height; ///< in world units
    };

    RawHeightCheck(double zOffset, double zResolution);

    /// What RawHeight gives for the cell's height.
    std::int16_t RawValueOf(const Cell& cell);

    /// The first cell whose height would be lost, and the reason; empty when the map can be stored.
    [[nodiscard]] std::string Failure() const;

  private:
    void Compare(const Cell& cell, std::int16_t raw);

    double zOffset;
    double zResolution;
    std::optional<Cell> withoutRawValue; ///< the first of them
    std::optional<Cell> first;           ///< the first measured cell
    std::optional<Cell> different;       ///< the first one whose height is another
    std::int16_t firstRaw = 0;
    bool rawValuesDiffer = false;
};
