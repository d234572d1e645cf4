#pragma once

#include <QPoint>
#include <QPointF>
#include <QSize>

#include <algorithm>
#include <cmath>

/// Converts between widget pixels and normalised points for one size of the canvas.
class CanvasScale {
  public:
    /// Cursor positions are kept this many pixels away from the canvas's edges.
    static constexpr double kEdgeMargin = 10.0;

    /// A side below 1 counts as 1.
    explicit CanvasScale(const QSize& canvas);

    /// Widget pixels to (x / width, y / height).
    [[nodiscard]] QPointF toNormalized(const QPointF& pixel) const;

    /// (x, y) to the nearest whole pixel (width * x, height * y), halves upwards. A position beyond any
    /// possible widget is clamped to its border; NaN becomes 0.
    [[nodiscard]] QPoint toWidgetPixels(const QPointF& point) const {
        return {NearestPixel(canvas.width() * point.x()), NearestPixel(canvas.height() * point.y())};
    }

    /// The position kept inside the margin: first to the right or lower bound, then to the left or upper one,
    /// which wins on a canvas too small for both.
    [[nodiscard]] QPointF ClampToMargin(const QPointF& pixel) const;

    [[nodiscard]] QSize Canvas() const { return canvas; }

    friend bool operator==(const CanvasScale&, const CanvasScale&) = default;

  private:
    static int NearestPixel(double position) {
        /// Larger than any widget, and small enough for sums and differences to stay exact integers.
        constexpr double kMaxPixel = 1 << 26;
        if (std::isnan(position))
            return 0;
        const double rounded = std::min(std::max(position, -kMaxPixel), kMaxPixel) + 0.5;
        const int whole = static_cast<int>(rounded);
        return whole - (rounded < whole ? 1 : 0);
    }

    QSize canvas;
};

/// The distance of two points in a plane.
[[nodiscard]] double Distance(const QPointF& one, const QPointF& other);
