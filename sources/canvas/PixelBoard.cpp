#include "PixelBoard.h"

#include <algorithm>
#include <cmath>

namespace {

/// The places on a row, measured from a point of reference, that lie within a band of the plane. The band's
/// two borders have one slope, which is neither level nor upright.
class RowBounds {
  public:
    /// The band is low <= x * slope + down * rise <= high, where `down` is the row's distance.
    RowBounds(double slope, double rise, double low, double high)
        : left(std::min(low / slope, high / slope)),
          right(std::max(low / slope, high / slope)),
          shift(rise / slope) {}

    [[nodiscard]] double Left(double down) const { return left - down * shift; }
    [[nodiscard]] double Right(double down) const { return right - down * shift; }

  private:
    double left;
    double right;
    double shift;
};

double Larger(double one, double other) {
    return one > other ? one : other;
}
double Smaller(double one, double other) {
    return one < other ? one : other;
}

} // namespace

PixelBoard::PixelBoard(QImage& image, const QPoint& origin)
    : pixels(image.bits()),
      stride(image.bytesPerLine()),
      columns(origin.x(), origin.x() + image.width() - 1),
      rows(origin.y(), origin.y() + image.height() - 1) {
}

inline void PixelBoard::FillRow(int row, int first, int last, QRgb colour) {
    QRgb* const line = reinterpret_cast<QRgb*>(pixels + (row - rows.first) * stride);
    for (int column = first; column <= last; ++column)
        line[column - columns.first] = colour;
}

void PixelBoard::Square(const QPointF& centre, double side, QRgb colour) {
    const double half = side / 2.0;
    Fill(centre.x() - half, centre.x() + half, centre.y() - half, centre.y() + half, colour);
}

void PixelBoard::Line(const QPointF& from, const QPointF& to, double width, QRgb colour) {
    const double half = width / 2.0;
    if (from.x() != to.x() && from.y() != to.y())
        return SlantedLine(from, to, width, colour);
    Fill(std::min(from.x(), to.x()) - half, std::max(from.x(), to.x()) + half,
         std::min(from.y(), to.y()) - half, std::max(from.y(), to.y()) + half, colour);
}

void PixelBoard::Fill(double left, double right, double top, double bottom, QRgb colour) {
    const int first = columns.FirstBehind(left);
    const int last = columns.LastUpTo(right);
    const int lastRow = rows.LastUpTo(bottom);
    for (int row = rows.FirstBehind(top); row <= lastRow; ++row)
        FillRow(row, first, last, colour);
}

void PixelBoard::SlantedLine(const QPointF& from, const QPointF& to, double width, QRgb colour) {
    const double dx = to.x() - from.x();
    const double dy = to.y() - from.y();
    const double length = std::sqrt(dx * dx + dy * dy);
    const double ux = dx / length;
    const double uy = dy / length;
    const double half = width / 2.0;
    const double reach = half * (std::abs(ux) + std::abs(uy));
    const double top = std::min(from.y(), to.y()) - reach;
    const double bottom = std::max(from.y(), to.y()) + reach;
    // Along the line from half a width before its start to half a width behind its end, across it half a
    // width to either side; both measured from `from`.
    const RowBounds along(ux, uy, -half, length + half);
    const RowBounds across(-uy, ux, -half, half);
    const bool inside =
        rows.Holds(top - 1.0, bottom + 1.0) &&
        columns.Holds(std::min(from.x(), to.x()) - reach - 1.0, std::max(from.x(), to.x()) + reach + 1.0);
    const int lastRow = rows.LastUpTo(bottom);
    for (int row = rows.FirstBehind(top); row <= lastRow; ++row) {
        const double down = row + 0.5 - from.y();
        const double left = from.x() + Larger(along.Left(down), across.Left(down));
        const double right = from.x() + Smaller(along.Right(down), across.Right(down));
        if (inside) // most lines are short and need no bounds
            FillRow(row, Floor(left + 0.5), Floor(right - 0.5), colour);
        else
            FillRow(row, columns.FirstBehind(left), columns.LastUpTo(right), colour);
    }
}
