#include "raster/PixelBoard.h"

#include "raster/StrokedLine.h"

#include <algorithm>

namespace {

/// Pixels that FillShort writes together.
constexpr int kBlock = 8;

/// Fills a few pixels, a different number each time: a block is written without a branch, so nothing
/// mispredicts. Up to kBlock - 1 pixels after the last one must exist; they stay as they are.
void FillShort(QRgb* pixels, int count, QRgb colour) {
    for (; count > 0; count -= kBlock, pixels += kBlock)
        for (int pixel = 0; pixel < kBlock; ++pixel)
            pixels[pixel] = pixel < count ? colour : pixels[pixel];
}

/// The number of columns is known when this is compiled, since there are many dots.
template<int columns>
void FillDot(QRgb* pixels, std::ptrdiff_t stride, QRgb colour) {
    for (int row = 0; row < ShapeCache::kDotWidth; ++row, pixels += stride)
        std::fill_n(pixels, columns, colour);
}

} // namespace

PixelBoard::PixelBoard(QImage& image, const QPoint& origin, ShapeCache& shapes)
    : pixels(reinterpret_cast<QRgb*>(image.bits())),
      stride(image.bytesPerLine() / static_cast<int>(sizeof(QRgb))),
      columns{origin.x(), origin.x() + image.width() - 1},
      rows{origin.y(), origin.y() + image.height() - 1},
      shapes(shapes) {
}

void PixelBoard::Line(const QPointF& from, const QPointF& to, double width, QRgb colour) {
    Draw(StrokedLine(from, to, width), colour);
}

void PixelBoard::Line(const QPoint& from, const QPoint& to, QRgb colour) {
    const QPoint delta = to - from;
    if (!ShapeCache::HasLine(delta))
        return Line(QPointF(from), QPointF(to), ShapeCache::kLineWidth, colour);
    const ShapeCache::Line& shape = shapes.LineTo(delta);
    const int top = from.y() + shape.firstRow;
    const bool inside = columns.Holds(std::min(from.x(), to.x()) - ShapeCache::kReach,
                                      std::max(from.x(), to.x()) + ShapeCache::kReach + kBlock) &&
                        rows.Holds(top, top + shape.rows - 1);
    if (inside)
        Draw(shape, from, colour);
    else
        DrawClipped(shape, from, colour);
}

void PixelBoard::Dot(const QPoint& place, double width, double ratio, QRgb colour) {
    Draw(StrokedLine::Dot(place, width, ratio), colour);
}

void PixelBoard::Dot(const QPoint& place, QRgb colour) {
    if (!ShapeCache::HasDot(place))
        return Dot(place, ShapeCache::kDotWidth, 1.0, colour);
    const ShapeCache::Columns shape = shapes.DotAt(place.x());
    const int left = place.x() + shape.first;
    const int top = place.y() - ShapeCache::kDotWidth / 2;
    if (!columns.Holds(left, left + ShapeCache::kDotWidth) ||
        !rows.Holds(top, top + ShapeCache::kDotWidth - 1)) {
        for (int row = top; row < top + ShapeCache::kDotWidth; ++row)
            FillRow(row, left, shape.count, colour);
        return;
    }
    if (shape.count == ShapeCache::kDotWidth)
        FillDot<ShapeCache::kDotWidth>(Pixel(left, top), stride, colour);
    else
        FillDot<ShapeCache::kDotWidth + 1>(Pixel(left, top), stride, colour);
}

void PixelBoard::Draw(const StrokedLine& line, QRgb colour) {
    const int lastRow = std::min(line.LastRow(), rows.last);
    for (int row = std::max(line.FirstRow(), rows.first); row <= lastRow; ++row) {
        const int first = line.FirstColumn(row);
        FillRow(row, first, line.LastColumn(row) - first + 1, colour);
    }
}

void PixelBoard::Draw(const ShapeCache::Line& shape, const QPoint& start, QRgb colour) {
    QRgb* line = Pixel(start.x(), start.y() + shape.firstRow);
    const std::ptrdiff_t pixelsPerLine = stride;
    const auto count = static_cast<std::size_t>(shape.rows);
    for (std::size_t row = 0; row < count; ++row, line += pixelsPerLine) {
        const ShapeCache::Line::Run run = shape.runs[row];
        FillShort(line + run.first, run.count, colour);
    }
}

void PixelBoard::DrawClipped(const ShapeCache::Line& shape, const QPoint& start, QRgb colour) {
    const int top = start.y() + shape.firstRow;
    const int lastRow = std::min(top + shape.rows - 1, rows.last);
    for (int row = std::max(top, rows.first); row <= lastRow; ++row) {
        const ShapeCache::Line::Run run = shape.runs[static_cast<std::size_t>(row - top)];
        FillRow(row, start.x() + run.first, run.count, colour);
    }
}

/// Fills the part of a row that is inside the image.
void PixelBoard::FillRow(int row, int first, int count, QRgb colour) {
    if (row < rows.first || row > rows.last)
        return;
    const int left = std::max(first, columns.first);
    const int end = std::min(first + count, columns.last + 1);
    if (left < end)
        std::fill_n(Pixel(left, row), end - left, colour);
}
