#pragma once

#include <QPoint>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// The pixels of short lines between whole pixels, with square caps. Paths of many points have little else,
/// and the same few shapes all over: each is worked out when it is first asked for and looked up from then
/// on.
class LineShapes {
  public:
    /// Lines whose end is no further than this from their start, across and down, have a shape here.
    static constexpr int kFarthest = 16;
    /// The width of all of them.
    static constexpr double kWidth = 2.0;
    /// None reaches more pixels than this beyond its two ends, across or down.
    static constexpr int kReach = 2;

    /// The pixels of one line; rows and columns are counted from its start.
    struct Shape {
        static constexpr int kMostRows = kFarthest + 1 + 2 * kReach;

        struct Run {
            std::int8_t first = 0;
            std::int8_t count = 0;
        };

        std::int8_t firstRow = 0;
        std::int16_t rows = 0; ///< 0 while the shape is not known: no line is without pixels
        std::array<Run, kMostRows> runs;
    };

    /// Whether there is a shape for a line with its end `way` from its start.
    [[nodiscard]] static bool Has(const QPoint& way) {
        return std::abs(way.x()) <= kFarthest && std::abs(way.y()) <= kFarthest;
    }

    /// The shape of such a line.
    const Shape& Of(const QPoint& way) {
        const int place = (way.y() + kFarthest) * kSide + way.x() + kFarthest;
        Shape& shape = shapes[static_cast<std::size_t>(place)];
        if (shape.rows == 0)
            shape = ShapeOf(way);
        return shape;
    }

  private:
    static Shape ShapeOf(const QPoint& way);
    static Shape UprightOrLevel(const QPoint& way);
    static Shape Slanted(const QPoint& way);

    static constexpr int kSide = 2 * kFarthest + 1;

    std::vector<Shape> shapes{std::size_t{kSide} * kSide};
};
