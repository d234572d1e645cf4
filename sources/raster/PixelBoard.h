#pragma once

#include "raster/LineShapes.h"

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>

#include <algorithm>

/// Draws solid lines and squares into a part of a larger picture. A pixel is painted when its centre lies
/// inside the shape, or on its right or lower edge; whether it is does not depend on the part, so that parts
/// fit together. Coordinates are the larger picture's pixels, and less than 2^30.
class PixelBoard {
  public:
    /// @param image in Format_RGB32
    /// @param origin the place of the image's top left pixel in the larger picture
    /// @param shapes remembers shapes from one board to the next
    PixelBoard(QImage& image, const QPoint& origin, LineShapes& shapes);

    /// A square round its centre.
    void Square(const QPointF& centre, double side, QRgb colour);

    /// A line with square caps: it reaches half its width beyond both ends.
    void Line(const QPointF& from, const QPointF& to, double width, QRgb colour);

    /// The same round a whole pixel. The side is known when this is compiled, since there are many squares.
    template<int side>
    void Square(const QPoint& centre, QRgb colour) {
        const int left = centre.x() - side / 2;
        const int top = centre.y() - side / 2;
        if (!columns.Holds(left, left + side - 1) || !rows.Holds(top, top + side - 1))
            return SquareClipped(left, top, side, colour);
        QRgb* line = Pixel(left, top);
        const std::ptrdiff_t pixelsPerLine = stride;
        for (int row = 0; row < side; ++row, line += pixelsPerLine)
            std::fill_n(line, side, colour);
    }

    /// The same between whole pixels, LineShapes::kWidth wide.
    void Line(const QPoint& from, const QPoint& to, QRgb colour);

  private:
    /// The pixels of the part along one axis.
    struct Range {
        Range(int first, int last) : first(first), last(last), lowest(first - 1.0), highest(last + 2.0) {}

        /// The first pixel whose centre lies behind an edge, and the last one whose centre does not, of those
        /// in the part. Edges may lie anywhere.
        [[nodiscard]] int FirstBehind(double edge) const;
        [[nodiscard]] int LastUpTo(double edge) const;
        [[nodiscard]] bool Holds(int low, int high) const { return low >= first && high <= last; }

        int first;
        int last;

      private:
        [[nodiscard]] double Near(double edge) const { return std::min(std::max(edge, lowest), highest); }
        double lowest;
        double highest;
    };

    [[nodiscard]] QRgb* Pixel(int column, int row) {
        return pixels + (row - rows.first) * stride + (column - columns.first);
    }
    void Fill(double left, double right, double top, double bottom, QRgb colour);
    void FillRow(int row, int first, int count, QRgb colour);
    void SquareClipped(int left, int top, int side, QRgb colour);
    void Draw(const LineShapes::Shape& shape, const QPoint& start, QRgb colour);
    void DrawClipped(const LineShapes::Shape& shape, const QPoint& start, QRgb colour);

    QRgb* pixels;
    std::ptrdiff_t stride; ///< in pixels
    Range columns;
    Range rows;
    LineShapes& shapes;
};
