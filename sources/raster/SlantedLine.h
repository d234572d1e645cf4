#pragma once

#include <QPointF>

/// A line with square caps, neither level nor upright, as the stretch that it covers at any height. All is
/// measured from the line's start.
class SlantedLine {
  public:
    /// @param way from the start to the end
    SlantedLine(const QPointF& way, double width);

    /// Nothing of the line lies above the top or below the bottom.
    [[nodiscard]] double Top() const { return top; }
    [[nodiscard]] double Bottom() const { return bottom; }
    /// How far it reaches beyond its two points, across and down.
    [[nodiscard]] double Reach() const { return reach; }

    /// The stretch `down` below the start; none when the left end lies behind the right one.
    [[nodiscard]] double Left(double down) const { return Larger(along.Left(down), across.Left(down)); }
    [[nodiscard]] double Right(double down) const { return Smaller(along.Right(down), across.Right(down)); }

  private:
    /// The places on a row that lie within a band of the plane, whose two borders have one slope.
    class Band {
      public:
        /// The band is low <= x * slope + down * rise <= high, where `down` is the row's distance.
        Band(double slope, double rise, double low, double high);

        [[nodiscard]] double Left(double down) const { return left - down * shift; }
        [[nodiscard]] double Right(double down) const { return right - down * shift; }

      private:
        double left;
        double right;
        double shift;
    };

    static double Larger(double one, double other) { return one > other ? one : other; }
    static double Smaller(double one, double other) { return one < other ? one : other; }

    SlantedLine(const QPointF& way, double half, double length);

    double reach;
    double top;
    double bottom;
    Band along;  ///< from half a width before the start to half a width behind the end
    Band across; ///< half a width to either side
};
