#pragma once

#include "canvas/qmaskwidget.h"

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
