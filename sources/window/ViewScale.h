#pragma once

#include <QLabel>
#include <QPointF>
#include <QScrollArea>
#include <QSlider>

#include <optional>

class QMaskWidget;
class TrackDocument;

/// The scale at which the canvas shows the track: the slider, its label, and the canvas's size. What the view
/// shows at its centre, or at a given place, stays there.
class ViewScale {
  public:
    /// All are borrowed and outlive the object.
    ViewScale(QSlider& slider, QLabel& label, QScrollArea& area, QMaskWidget& canvas,
              const TrackDocument& document);

    /// Shows `value` slider steps of 5 % in the label, and gives the canvas the track's size at that scale.
    void apply(int value);
    /// Makes the complete track visible.
    void fit();

    /// Moves the slider by steps, or to 100 %. What is at `place`, in pixels of the view, stays there, as far
    /// as the view can be scrolled; after any number of steps with the same place it is still exactly there.
    void zoomBy(int steps, const QPoint& place);
    void showFullSize(const QPoint& place);

    /// Scrolls so that the canvas's top left corner is at a place of the view, or as near as possible.
    void scrollTo(const QPoint& topLeft);

    /// The middle of the view, in its pixels.
    [[nodiscard]] QPoint centre() const;

  private:
    /// What is shown at a place of the view, and for which geometry of the canvas.
    struct Anchor {
        QPoint place;
        QPointF point; ///< normalised to the canvas
        QRect canvas;
    };

    [[nodiscard]] Anchor anchorAt(const QPoint& place) const;
    void setValue(int value, const QPoint& place);

    QSlider& slider;
    QLabel& label;
    QScrollArea& area;
    QMaskWidget& canvas;
    const TrackDocument& document;
    std::optional<QPoint> fixedPlace; ///< while the slider is moved for it
    std::optional<Anchor> last;       ///< kept, so that rounding does not add up from step to step
};
