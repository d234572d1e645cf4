#include "PixelBoard.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// The places x on a row that lie within a band of the plane: low <= x * slope + offset <= high, where the
/// offset changes from row to row.
class RowBounds {
  public:
    RowBounds(double slope, double low, double high) : level(slope == 0.0) {
        const double inverse = level ? 0.0 : 1.0 / slope;
        factor = inverse;
        left = std::min(low * inverse, high * inverse);
        right = std::max(low * inverse, high * inverse);
    }
    void Narrow(double offset, double& from, double& to) const {
        if (level)
            return;
        from = std::max(from, left - offset * factor);
        to = std::min(to, right - offset * factor);
    }

  private:
    bool level;
    double factor = 0.0;
    double left = 0.0;
    double right = 0.0;
};

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
    const RowBounds along(ux, -half, length + half);
    const RowBounds across(-uy, -half, half);
    const int lastRow = rows.LastUpTo(bottom);
    for (int row = rows.FirstBehind(top); row <= lastRow; ++row) {
        const double down = row + 0.5 - from.y();
        double left = -std::numeric_limits<double>::infinity();
        double right = std::numeric_limits<double>::infinity();
        along.Narrow(down * uy, left, right);
        across.Narrow(down * ux, left, right);
        FillRow(row, columns.FirstBehind(from.x() + left), columns.LastUpTo(from.x() + right), colour);
    }
}
