#pragma once

#include "RandomChoice.h"
#include "StressWindow.h"

#include <string>

/// Keys and the wheel on the controls. The canvas must use the values of the controls.
class ControlUser {
  public:
    ControlUser(StressWindow& stress, RandomChoice& random) : stress(stress), random(random) {}

    void turnSpinBox();
    void typeIntoSpinBox();
    void typeParameter();
    void moveSlider();
    /// The wheel over the canvas, the controls, and the lists, where it must select nothing.
    void turnWheel();
    void deleteLast() { stress.click("pushButton_deleteLast"); }
    void deleteAll() { stress.click("pushButton_deleteAll"); }
    void toggleRuler() { stress.click("pushButton_getRuler"); }
    void toggleBatch() { stress.click("checkBox_batchSetting"); }
    void resizeWindow();
    void pressSomeKey();
    void pressZoomKey();
    void pressUndo() { pressInWindow(Qt::ControlModifier); }
    void pressRedo() { pressInWindow(Qt::ControlModifier | Qt::ShiftModifier); }

  private:
    /// Ctrl+Z, with any focus.
    void pressInWindow(Qt::KeyboardModifiers modifiers);
    void checkChosen(const QSpinBox& box, int before);
    void checkParameter(std::size_t field, const std::string& text);

    StressWindow& stress;
    RandomChoice& random;
};
