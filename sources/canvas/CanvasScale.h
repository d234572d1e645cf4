#pragma once

#include <QPoint>
#include <QPointF>
#include <QSize>

/// Converts between widget pixels and normalised points for one size of the canvas.
class CanvasScale {
  public:
    /// Cursor positions are kept this many pixels away from the canvas's edges.
    static constexpr double kEdgeMargin = 10.0;

    /// A side below 1 counts as 1.
    explicit CanvasScale(const QSize& canvas);

    /// Widget pixels to (x / width, y / height).
    [[nodiscard]] QPointF ToNormalized(const QPointF& pixel) const;

    /// (x, y) to the nearest whole pixel (width * x, height * y), halves upwards. What lies beyond any
    /// possible widget is brought back to its border, and what is not a number to 0.
    [[nodiscard]] QPoint ToWidgetPixels(const QPointF& point) const;

    /// The position kept inside the margin: first to the right or lower bound, then to the left or upper one,
    /// which so wins on a canvas too small for both.
    [[nodiscard]] QPointF ClampToMargin(const QPointF& pixel) const;

    [[nodiscard]] QSize Canvas() const { return canvas; }

    friend bool operator==(const CanvasScale&, const CanvasScale&) = default;

  private:
    QSize canvas;
};

/// The distance of two points in a plane.
[[nodiscard]] double Distance(const QPointF& one, const QPointF& other);
