#include "raster/PixelBoard.h"

#include "raster/PixelEdges.h"
#include "raster/SlantedLine.h"

namespace {

/// Pixels that FillShort looks at together.
constexpr int kBlock = 8;

/// Fills pixels that are mostly few, and not as many each time: the processor cannot foresee how often a
/// plain loop goes round, but a whole block is done without a jump. Up to kBlock - 1 pixels behind the last
/// one must exist; they stay as they are.
void FillShort(QRgb* pixels, int count, QRgb colour) {
    for (; count > 0; count -= kBlock, pixels += kBlock)
        for (int pixel = 0; pixel < kBlock; ++pixel)
            pixels[pixel] = pixel < count ? colour : pixels[pixel];
}

} // namespace

int PixelBoard::Range::FirstBehind(double edge) const {
    return std::max(PixelEdges::FirstBehind(Near(edge)), first);
}

int PixelBoard::Range::LastUpTo(double edge) const {
    return std::min(PixelEdges::LastUpTo(Near(edge)), last);
}

PixelBoard::PixelBoard(QImage& image, const QPoint& origin, LineShapes& shapes)
    : pixels(reinterpret_cast<QRgb*>(image.bits())),
      stride(image.bytesPerLine() / static_cast<int>(sizeof(QRgb))),
      columns(origin.x(), origin.x() + image.width() - 1),
      rows(origin.y(), origin.y() + image.height() - 1),
      shapes(shapes) {
}

void PixelBoard::Square(const QPointF& centre, double side, QRgb colour) {
    const double half = side / 2.0;
    Fill(centre.x() - half, centre.x() + half, centre.y() - half, centre.y() + half, colour);
}

void PixelBoard::SquareClipped(int left, int top, int side, QRgb colour) {
    const int lastRow = std::min(top + side - 1, rows.last);
    for (int row = std::max(top, rows.first); row <= lastRow; ++row)
        FillRow(row, left, side, colour);
}

void PixelBoard::Line(const QPoint& from, const QPoint& to, QRgb colour) {
    const QPoint way = to - from;
    if (!LineShapes::Has(way))
        return Line(QPointF(from), QPointF(to), LineShapes::kWidth, colour);
    const LineShapes::Shape& shape = shapes.Of(way);
    const int top = from.y() + shape.firstRow;
    const bool inside = columns.Holds(std::min(from.x(), to.x()) - LineShapes::kReach,
                                      std::max(from.x(), to.x()) + LineShapes::kReach + kBlock) &&
                        rows.Holds(top, top + shape.rows - 1);
    if (inside)
        Draw(shape, from, colour);
    else
        DrawClipped(shape, from, colour);
}

void PixelBoard::Draw(const LineShapes::Shape& shape, const QPoint& start, QRgb colour) {
    QRgb* line = Pixel(start.x(), start.y() + shape.firstRow);
    const std::ptrdiff_t pixelsPerLine = stride;
    const auto count = static_cast<std::size_t>(shape.rows);
    for (std::size_t row = 0; row < count; ++row, line += pixelsPerLine) {
        const LineShapes::Shape::Run run = shape.runs[row];
        FillShort(line + run.first, run.count, colour);
    }
}

void PixelBoard::DrawClipped(const LineShapes::Shape& shape, const QPoint& start, QRgb colour) {
    const int top = start.y() + shape.firstRow;
    const int firstRow = std::max(top, rows.first);
    const int lastRow = std::min(top + shape.rows - 1, rows.last);
    for (int row = firstRow; row <= lastRow; ++row) {
        const LineShapes::Shape::Run run = shape.runs[static_cast<std::size_t>(row - top)];
        FillRow(row, start.x() + run.first, run.count, colour);
    }
}

void PixelBoard::FillRow(int row, int first, int count, QRgb colour) {
    const int left = std::max(first, columns.first);
    const int end = std::min(first + count, columns.last + 1);
    if (left < end)
        std::fill_n(Pixel(left, row), end - left, colour);
}

void PixelBoard::Line(const QPointF& from, const QPointF& to, double width, QRgb colour) {
    const double half = width / 2.0;
    if (from.x() == to.x() || from.y() == to.y())
        return Fill(std::min(from.x(), to.x()) - half, std::max(from.x(), to.x()) + half,
                    std::min(from.y(), to.y()) - half, std::max(from.y(), to.y()) + half, colour);
    const SlantedLine line(to - from, width);
    const int last = rows.LastUpTo(from.y() + line.Bottom());
    for (int row = rows.FirstBehind(from.y() + line.Top()); row <= last; ++row) {
        const double down = row + 0.5 - from.y();
        const int left = columns.FirstBehind(from.x() + line.Left(down));
        const int right = columns.LastUpTo(from.x() + line.Right(down));
        if (left <= right)
            std::fill_n(Pixel(left, row), right - left + 1, colour);
    }
}

void PixelBoard::Fill(double left, double right, double top, double bottom, QRgb colour) {
    const int first = columns.FirstBehind(left);
    const int last = columns.LastUpTo(right);
    const int lastRow = rows.LastUpTo(bottom);
    for (int row = rows.FirstBehind(top); first <= last && row <= lastRow; ++row)
        std::fill_n(Pixel(first, row), last - first + 1, colour);
}
