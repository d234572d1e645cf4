#pragma once

#include <QPointF>

#include <algorithm>
#include <cstdint>

/// Which pixels a solid line with square caps covers: those that QPainter (5.15, without antialiasing) paints
/// on a picture that the line does not leave. A pixel is covered when its centre is inside the outline. As in
/// QRasterizer::rasterizeLine, the outline's corners are first rounded down to 1/64 pixel, and its borders
/// then go from row to row in steps of 1/65536 pixel, so that this, too, decides about centres next to a
/// border.
///
/// Three things differ on purpose. QPainter clips a line that leaves its picture before it rounds, which
/// moves single pixels along it; here a line has the same pixels whatever part of a picture is drawn.
/// QPainter's columns end at 32,767. And QPainter on a scaled desktop widens a line without length in one
/// direction.
class StrokedLine {
  public:
    /// @param width at least 1
    StrokedLine(const QPointF& from, const QPointF& to, double width);

    /// What QPainter paints for a point: a line with caps of 1/63 pixel.
    /// @param ratio the painter's scale; place and width are before it
    [[nodiscard]] static StrokedLine Dot(const QPointF& place, double width, double ratio);

    /// No row outside of these is covered; none at all when the first is after the last.
    [[nodiscard]] int FirstRow() const { return firstRow; }
    [[nodiscard]] int LastRow() const { return lastRow; }

    /// The first and the last column covered in a row; none when the first is after the last.
    [[nodiscard]] int FirstColumn(int row) const { return left.Column(row); }
    [[nodiscard]] int LastColumn(int row) const { return right.Column(row); }

  private:
    /// A border of the outline: down to a corner, then on from there. Columns are in units of 1/65536 pixel.
    struct Border {
        int firstRow = 0; ///< of the part before the corner
        int lastRow = 0;
        std::int64_t before = 0; ///< at the first row of the part before the corner
        std::int64_t beforeStep = 0;
        std::int64_t after = 0; ///< at the first row of the part after the corner
        std::int64_t afterStep = 0;

        static constexpr std::int64_t kMaxColumn = std::int64_t{1} << 30;

        [[nodiscard]] int Column(int row) const {
            const std::int64_t place = row <= lastRow ? before + beforeStep * (row - firstRow)
                                                      : after + afterStep * (row - lastRow - 1);
            return static_cast<int>(std::clamp<std::int64_t>(place >> 16, -kMaxColumn, kMaxColumn));
        }
    };

    /// A line with its caps, and its width as a share of its length.
    struct Stroke {
        QPointF from;
        QPointF to;
        double relativeWidth;
    };

    [[nodiscard]] static Stroke WithCaps(const QPointF& from, const QPointF& to, double width);
    [[nodiscard]] static Border BorderOf(const QPointF& top, const QPointF& corner, const QPointF& bottom,
                                         int firstRow, double shift);
    void CoverLevel(const Stroke& stroke);
    void CoverUpright(const Stroke& stroke);
    void CoverSlanted(const Stroke& stroke);

    int firstRow = 0;
    int lastRow = -1;
    Border left;
    Border right;
};
