#pragma once

#include <QLabel>
#include <QScrollArea>
#include <QSlider>

class QMaskWidget;
class TrackDocument;

/// The scale at which the canvas shows the track: the slider, its label, and the canvas's size.
class ViewScale {
  public:
    /// All are borrowed and outlive the object.
    ViewScale(QSlider& slider, QLabel& label, QScrollArea& area, QMaskWidget& canvas,
              const TrackDocument& document);

    /// Shows `value` slider steps of 5 % in the label, and gives the canvas the size that the track has then.
    void apply(int value);
    /// Makes the whole track visible.
    void fit();

  private:
    QSlider& slider;
    QLabel& label;
    QScrollArea& area;
    QMaskWidget& canvas;
    const TrackDocument& document;
};
