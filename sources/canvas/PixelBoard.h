#pragma once

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>

#include <algorithm>

/// Draws solid lines and squares into a part of a larger picture. A pixel is painted when its centre lies
/// inside the shape, or on its right or lower edge; whether it is does not depend on the part, so that parts
/// fit together. Coordinates are the larger picture's pixels.
class PixelBoard {
  public:
    /// @param image in Format_RGB32
    /// @param origin the place of the image's top left pixel in the larger picture
    PixelBoard(QImage& image, const QPoint& origin);

    /// A square round its centre.
    void Square(const QPointF& centre, double side, QRgb colour);

    /// A line with square caps: it reaches half its width beyond both ends.
    void Line(const QPointF& from, const QPointF& to, double width, QRgb colour);

  private:
    /// The largest whole number up to a value within the range of int; a call less than the library's.
    static int Floor(double value) {
        const int whole = static_cast<int>(value);
        return whole - (value < whole ? 1 : 0);
    }

    /// The pixels of the part along one axis.
    struct Range {
        Range(int first, int last) : first(first), last(last), lowest(first - 1.0), highest(last + 2.0) {}

        /// The first pixel whose centre lies behind an edge, and the last one whose centre does not, of those
        /// in the part: pixel i has its centre at i + 0.5. Edges may lie anywhere.
        [[nodiscard]] int FirstBehind(double edge) const { return std::max(Floor(Near(edge) + 0.5), first); }
        [[nodiscard]] int LastUpTo(double edge) const { return std::min(Floor(Near(edge) - 0.5), last); }
        /// Whether all between two edges is in the part.
        [[nodiscard]] bool Holds(double low, double high) const { return low >= first && high <= last; }

        int first;
        int last;

      private:
        [[nodiscard]] double Near(double edge) const { return std::min(std::max(edge, lowest), highest); }
        double lowest;
        double highest;
    };

    void Fill(double left, double right, double top, double bottom, QRgb colour);
    void FillRow(int row, int first, int last, QRgb colour);
    void SlantedLine(const QPointF& from, const QPointF& to, double width, QRgb colour);

    uchar* pixels;
    std::ptrdiff_t stride; ///< in bytes
    Range columns;
    Range rows;
};
