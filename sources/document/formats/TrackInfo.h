#pragma once

#include <QPointF>

#include <cstdint>
#include <vector>

/// The information block of a track: relates its height map to world units.
struct TrackInfo {
    double xResolution = 0.0; ///< world size of one step along X
    double yResolution = 0.0; ///< world size of one step along Y
    double zResolution = 0.0; ///< world height of one raw height unit
    double xOffset = 0.0;     ///< world X of the origin
    double yOffset = 0.0;     ///< world Y of the origin
    double zOffset = 0.0;     ///< world height of raw value 0
    std::int32_t width = 0;   ///< columns of the height map
    std::int32_t height = 0;  ///< rows of the height map
    double anchorX = 0.0;
    double anchorY = 0.0;
    double anchorAngle = 0.0;
    std::vector<double> columnPositions; ///< world position of each column, `width` entries
    std::vector<double> rowPositions;    ///< world position of each row read
    double minHeight = 0.0;              ///< lowest height of the map; cells without measurement do not count
    double maxHeight = 0.0;              ///< highest height of the map
};

/// Converts the canvas's coordinates into those of a track file: the five factors that are passed to a write.
struct WorldTransform {
    double widthScale = 1.0;
    double xOffset = 0.0;
    double yOffset = 0.0;
    double xScale = 1.0;
    double yScale = 1.0;

    /// File coordinates of a point that is normalised to the canvas.
    [[nodiscard]] QPointF PointOf(const QPointF& normalised) const {
        return {normalised.x() * xScale + xOffset, normalised.y() * yScale + yOffset};
    }

    /// A segment's width as ruler records store it.
    [[nodiscard]] double WidthOf(int width) const { return width * widthScale; }
};
