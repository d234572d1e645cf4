#pragma once

#include "raster/ShapeCache.h"

#include <QImage>
#include <QPoint>
#include <QPointF>

class StrokedLine;

/// Draws solid lines and dots into a part of a larger picture. The pixels are those that QPainter paints on
/// the complete picture with a solid pen with square caps, without antialiasing (StrokedLine.h says where
/// they differ), so that parts fit together. Many times as fast as QPainter for paths of many short segments.
/// Coordinates are the larger picture's pixels, and less than 2^30.
class PixelBoard {
  public:
    /// @param image in Format_RGB32
    /// @param origin the place of the image's top left pixel in the larger picture
    /// @param shapes remembers shapes from one board to the next
    PixelBoard(QImage& image, const QPoint& origin, ShapeCache& shapes);

    /// A line as QPainter::drawLine draws it with a pen of this width.
    void Line(const QPointF& from, const QPointF& to, double width, QRgb colour);
    /// The same between whole pixels, ShapeCache::kLineWidth wide.
    void Line(const QPoint& from, const QPoint& to, QRgb colour);

    /// A dot as QPainter::drawPoint draws it with a pen of this width.
    /// @param ratio the painter's scale; place and width are before it
    void Dot(const QPoint& place, double width, double ratio, QRgb colour);
    /// The same ShapeCache::kDotWidth wide, without a scale.
    void Dot(const QPoint& place, QRgb colour);

  private:
    /// The pixels of the part along one axis.
    struct Range {
        int first;
        int last;

        [[nodiscard]] bool Holds(int low, int high) const { return low >= first && high <= last; }
    };

    [[nodiscard]] QRgb* Pixel(int column, int row) {
        return pixels + (row - rows.first) * stride + (column - columns.first);
    }
    void Draw(const StrokedLine& line, QRgb colour);
    void Draw(const ShapeCache::Line& shape, const QPoint& start, QRgb colour);
    void DrawClipped(const ShapeCache::Line& shape, const QPoint& start, QRgb colour);
    void FillRow(int row, int first, int count, QRgb colour);

    QRgb* pixels;
    std::ptrdiff_t stride; ///< in pixels
    Range columns;
    Range rows;
    ShapeCache& shapes;
};
