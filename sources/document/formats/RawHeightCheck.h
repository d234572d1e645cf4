#pragma once

#include "document/formats/Heights.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

/// Checks the heights of a map while they become raw values: whether a file with nothing but these values
/// still holds the map. Every measured cell needs a raw value within 16 bits, and different heights must not
/// all become one value, since such a map has no height range and cannot be opened. A cell is measured when
/// its height is finite.
class RawHeightCheck {
  public:
    struct Cell {
        std::int64_t row;
        std::int32_t column;
        double height; ///< in world units
    };

    RawHeightCheck(double zOffset, double zResolution);

    /// What RawHeight gives for the cell's height.
    std::int16_t RawValueOf(const Cell& cell) {
        const std::int16_t raw = RawHeight(cell.height, zOffset, zResolution);
        // Nearly every cell returns here.
        if (!rawValuesDiffer || !HasRawValue(cell.height))
            Note(cell, raw);
        return raw;
    }

    /// The first cell whose height would be lost, and the reason; empty when the map can be stored.
    [[nodiscard]] std::string Failure() const;

  private:
    [[nodiscard]] bool HasRawValue(double height) const {
        constexpr double kLimit = 32768.0; // of raw values before they are truncated; not itself one
        return hasRawValues && std::abs((height - zOffset) / zResolution) < kLimit;
    }

    void Note(const Cell& cell, std::int16_t raw);
    void Compare(const Cell& cell, std::int16_t raw);

    double zOffset;
    double zResolution;
    bool hasRawValues;                   ///< whether any height has one
    std::optional<Cell> withoutRawValue; ///< the first of them
    std::optional<Cell> first;           ///< the first measured cell
    std::optional<Cell> different;       ///< the first one with another height
    std::int16_t firstRaw = 0;
    bool rawValuesDiffer = false;
};
