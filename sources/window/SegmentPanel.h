#pragma once

#include "canvas/qmaskwidget.h"

#include <QObject>
#include <QPushButton>

/// Whether the ruler is shown; a button toggles it.
class RulerControl {
  public:
    /// Both are borrowed and outlive the object.
    RulerControl(QPushButton& button, QMaskWidget& canvas) : button(button), canvas(canvas) {}

    [[nodiscard]] bool isShown() const { return shown; }
    void toggle();
    /// Computes the ruler marks, shown or not; does nothing without a track.
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

    /// In batch mode a parameter is set for every segment, so no segment can be chosen.
    void setBatchMode(bool batch);
    /// A number beyond the last track, or segment, is reset to the last one.
    void choosePath(int number);
    void chooseSegment(int number);

    void setMethod(int index) { set(SegmentParameter::Method, index + 1); }
    /// Sets the number in the text and refreshes the ruler; text that is not a number counts as 0.
    void setFromText(SegmentParameter parameter, const QString& text);

    /// Chooses the next (1) or previous (-1) segment of all paths; the numbers follow. Does nothing in batch
    /// mode, and beyond the last or first one.
    void chooseNeighbour(int delta);

    /// To be called after undo or redo, or when segments were shifted: corrects the numbers and shows the
    /// segment's parameters.
    void followPaths();

  private:
    void set(SegmentParameter parameter, int value);
    void showSegment();
    [[nodiscard]] int pathCount() const;
    /// Number of points of a path (from 0); 0 for a path that does not exist.
    [[nodiscard]] int pointCount(int path) const;

    Ui::MainWindow& ui;
    QMaskWidget& canvas;
    RulerControl& ruler;
    bool showing = false; ///< the controls are being filled, not used
};
