#pragma once

#include <QPoint>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// The pixels of short lines and of dots, both at integer positions. Paths of many points consist of the same
/// few shapes: each is computed at its first use and kept.
class ShapeCache {
  public:
    /// Lines whose end is at most this far from their start, across and down, have a shape here.
    static constexpr int kMaxDelta = 16;
    /// The width of all of them.
    static constexpr double kLineWidth = 2.0;
    /// None reaches more pixels than this beyond its two ends, across or down.
    static constexpr int kReach = 2;

    /// The pixels of one line; rows and columns are counted from its start.
    struct Line {
        static constexpr int kMaxRows = kMaxDelta + 1 + 2 * kReach;

        struct Run {
            std::int8_t first = 0;
            std::int8_t count = 0;
        };

        std::int8_t firstRow = 0;
        std::int16_t rows = 0; ///< 0 while the shape is not known: every line has pixels
        std::array<Run, kMaxRows> runs;
    };

    /// The columns of one dot, counted from its place.
    struct Columns {
        std::int8_t first = 0;
        std::int8_t count = 0; ///< 0 while they are not known
    };

    /// Whether there is a shape for a line from a pixel to the one at `delta` from it.
    [[nodiscard]] static bool HasLine(const QPoint& delta) {
        return std::abs(delta.x()) <= kMaxDelta && std::abs(delta.y()) <= kMaxDelta;
    }

    /// The shape of such a line.
    const Line& LineTo(const QPoint& delta) {
        const int place = (delta.y() + kMaxDelta) * kSide + delta.x() + kMaxDelta;
        Line& line = lines[static_cast<std::size_t>(place)];
        if (line.rows == 0)
            line = ShapeOf(delta);
        return line;
    }

    /// Dots of this width have a shape here, in these columns and rows. They have as many rows as their
    /// width.
    static constexpr int kDotWidth = 5;
    static constexpr int kMaxDotColumn = (1 << 16) - 1;
    static constexpr int kFirstDotRow = 16;
    [[nodiscard]] static bool HasDot(const QPoint& place) {
        return place.y() >= kFirstDotRow && place.x() >= 0 && place.x() <= kMaxDotColumn;
    }

    /// The columns of such a dot, which depend on its own: by QPainter's rounding they are sometimes 6.
    Columns DotAt(int column) {
        Columns& columns = dots[static_cast<std::size_t>(column)];
        if (columns.count == 0)
            columns = DotColumns(column);
        return columns;
    }

  private:
    static Line ShapeOf(const QPoint& delta);
    static Columns DotColumns(int column);

    static constexpr int kSide = 2 * kMaxDelta + 1;

    std::vector<Line> lines{std::size_t{kSide} * kSide};
    std::vector<Columns> dots{std::size_t{kMaxDotColumn} + 1};
};
