#pragma once

#include <QPointF>

/// Turns what the canvas holds into what a track file stores: the five factors that the caller of a write
/// gives.
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
