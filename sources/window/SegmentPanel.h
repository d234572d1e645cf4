#pragma once

#include "canvas/qmaskwidget.h"

#include <QObject>
#include <QPushButton>

/// Whether the ruler is shown, which a button switches.
class RulerControl {
  public:
    /// Both are borrowed and outlive the object.
    RulerControl(QPushButton& button, QMaskWidget& canvas) : button(button), canvas(canvas) {}

    [[nodiscard]] bool isShown() const { return shown; }
    void toggle();
    /// Computes the ruler marks, shown or not; nothing without a track.
    void refresh();
    void refreshIfShown() {
        if (shown)
            refresh();
    }

  private:
    QPushButton& button;
    QMaskWidget& canvas;
    bool shown = true;
};

namespace Ui {
class MainWindow;
}

/// The controls for the paths: they choose a segment, show its parameters and set them, and delete what was
/// drawn. Tracks and segments are numbered from 1.
class SegmentPanel final : public QObject {
    Q_OBJECT

  public:
    /// All are borrowed and outlive the panel.
    SegmentPanel(Ui::MainWindow& ui, QMaskWidget& canvas, RulerControl& ruler);

    /// Limits what can be typed and fills the list of methods, whose slots then find this panel.
    void setUp();

    /// Shows the first segment's numbers and the default parameters, without setting any.
    void reset();
    void deleteLast();
    void deleteAll();

    /// In batch mode a parameter is set for every segment, so there is none to be chosen.
    void setBatchMode(bool batch);
    /// A number beyond the last track, or segment, is put back to it.
    void choosePath(int number);
    void chooseSegment(int number);

    void setMethod(int index) { set(SegmentParameter::Method, index + 1); }
    /// Sets what the text says and refreshes the ruler; a text that is no number counts as 0.
    void setFromText(SegmentParameter parameter, const QString& text);

    /// Chooses the next (1) or previous (-1) segment of all paths; the numbers follow. In batch mode, and
    /// beyond the last or first one, nothing.
    void chooseNeighbour(int delta);

    /// After a step back or forth, or when segments were shifted: the numbers are of what exists, and the
    /// parameters those of the segment.
    void followPaths();

  private:
    void set(SegmentParameter parameter, int value);
    void showSegment();
    [[nodiscard]] int pathCount() const;
    /// Points of a path (from 0); none of a path that does not exist.
    [[nodiscard]] int pointCount(int path) const;

    Ui::MainWindow& ui;
    QMaskWidget& canvas;
    RulerControl& ruler;
    bool showing = false; ///< the controls are being filled, nobody sets a parameter
};
