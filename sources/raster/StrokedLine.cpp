#include "raster/StrokedLine.h"

#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double kGrid = 64.0;      ///< corners are on a grid of 1/64 pixel
constexpr double kColumn = 65536.0; ///< borders are in units of 1/65536 pixel

QPointF RoundedDown(const QPointF& corner) {
    return {std::floor(corner.x() * kGrid) / kGrid, std::floor(corner.y() * kGrid) / kGrid};
}

/// Whether two coordinates differ by less than the grid.
bool OnOneLine(double one, double other) {
    return std::abs(other - one) * kGrid < 1.0;
}

/// The first row or column with its centre at or after an edge, and the last one with its centre at or before
/// it.
int FirstFrom(double edge) {
    return static_cast<int>(std::floor(edge + 0.5));
}
int LastUpTo(double edge) {
    return static_cast<int>(std::floor(edge - 0.5));
}

double Slope(const QPointF& from, const QPointF& to) {
    const QPointF delta = to - from;
    constexpr double kLevel = 1e20; // a level border covers no row
    if (delta.y() == 0.0)
        return delta.x() > 0.0 ? kLevel : -kLevel;
    return delta.x() / delta.y();
}

std::int64_t ToUnits(double columns, double limit) {
    return static_cast<std::int64_t>(std::clamp(columns * kColumn, -limit, limit));
}

/// A step from row to row ends at 32 bits, as in QPainter.
std::int64_t StepOf(double slope) {
    return ToUnits(slope, std::numeric_limits<std::int32_t>::max());
}

std::int64_t PlaceOf(double column) {
    constexpr double kFarOutside = 1e15;
    return ToUnits(column, kFarOutside);
}

double Square(const QPointF& delta) {
    return delta.x() * delta.x() + delta.y() * delta.y();
}

} // namespace

StrokedLine::StrokedLine(const QPointF& from, const QPointF& to, double width) {
    const Stroke stroke = WithCaps(from, to, width);
    if (OnOneLine(stroke.from.y(), stroke.to.y()))
        CoverLevel(stroke);
    else if (OnOneLine(stroke.from.x(), stroke.to.x()))
        CoverUpright(stroke);
    else
        CoverSlanted(stroke);
}

/// As a vertical line through its middle, as long as the line was wide.
void StrokedLine::CoverLevel(const Stroke& stroke) {
    const double middle = (stroke.from.x() + stroke.to.x()) * 0.5;
    const double half = stroke.relativeWidth * (std::abs(stroke.to.x() - stroke.from.x()) * 0.5);
    const double row = stroke.from.y();
    CoverUpright({{middle, row - half}, {middle, row + half}, 1.0 / stroke.relativeWidth});
}

StrokedLine StrokedLine::Dot(const QPointF& place, double width, double ratio) {
    constexpr double kLength = 1 / 63.0;
    return {place * ratio, QPointF(place.x() + kLength, place.y()) * ratio, width * ratio};
}

StrokedLine::Stroke StrokedLine::WithCaps(const QPointF& from, const QPointF& to, double width) {
    if (from == to) {
        const QPointF half(width * 0.5, 0.0);
        return {from - half, from + half, 1.0};
    }
    const double relative = width / std::sqrt(Square(to - from));
    const QPointF cap = 0.5 * relative * (to - from);
    const Stroke stroke{from - cap, to + cap, relative};
    // The width is a share of the length without the caps; from here on, of that with them.
    return {stroke.from, stroke.to,
            relative * std::sqrt(Square(from - to) / Square(stroke.from - stroke.to))};
}

void StrokedLine::CoverUpright(const Stroke& stroke) {
    const double top = std::min(stroke.from.y(), stroke.to.y());
    const double bottom = std::max(stroke.from.y(), stroke.to.y());
    const double half = 0.5 * stroke.relativeWidth * (bottom - top);
    firstRow = FirstFrom(top);
    lastRow = LastUpTo(bottom);
    left = {firstRow, lastRow, PlaceOf(FirstFrom(stroke.from.x() - half)), 0, 0, 0};
    right = {firstRow, lastRow, PlaceOf(LastUpTo(stroke.from.x() + half)), 0, 0, 0};
}

void StrokedLine::CoverSlanted(const Stroke& stroke) {
    QPointF upper = stroke.from;
    QPointF lower = stroke.to;
    if (upper.y() > lower.y())
        std::swap(upper, lower);
    const QPointF half = (lower - upper) * (0.5 * stroke.relativeWidth);
    const QPointF across(half.y(), -half.x());
    const bool downRight = upper.x() < lower.x();

    const QPointF top = RoundedDown(downRight ? upper + across : upper - across);
    const QPointF bottom = RoundedDown(downRight ? lower - across : lower + across);
    const QPointF leftCorner = RoundedDown(downRight ? upper - across : lower - across);
    const QPointF rightCorner = RoundedDown(downRight ? lower + across : upper + across);

    firstRow = FirstFrom(top.y());
    lastRow = LastUpTo(bottom.y());
    left = BorderOf(top, leftCorner, bottom, firstRow, 0.5);
    right = BorderOf(top, rightCorner, bottom, firstRow, -0.5);
}

/// @param shift from the border to the edge of the first pixel that it leaves to its inner side
StrokedLine::Border StrokedLine::BorderOf(const QPointF& top, const QPointF& corner, const QPointF& bottom,
                                          int firstRow, double shift) {
    const int lastRow = LastUpTo(corner.y());
    const double before = Slope(top, corner);
    const double after = Slope(corner, bottom);
    return {firstRow,
            lastRow,
            PlaceOf(top.x() + shift + (firstRow + 0.5 - top.y()) * before),
            StepOf(before),
            PlaceOf(corner.x() + shift + (lastRow + 1.5 - corner.y()) * after),
            StepOf(after)};
}
