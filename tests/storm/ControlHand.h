#pragma once

#include "RandomChoice.h"
#include "StormWindow.h"

#include <string>

/// Keys and the wheel on the controls. What a control was set to must be what the canvas works on.
class ControlHand {
  public:
    ControlHand(StormWindow& storm, RandomChoice& random) : storm(storm), random(random) {}

    void turnSpinBox();
    void typeIntoSpinBox();
    void typeParameter();
    void moveSlider();
    /// Over the canvas, the controls, and the lists, where it chooses nothing.
    void turnWheel();
    void deleteLast() { storm.click("pushButton_deleteLast"); }
    void deleteAll() { storm.click("pushButton_deleteAll"); }
    void toggleRuler() { storm.click("pushButton_getRuler"); }
    void toggleBatch() { storm.click("checkBox_batchSetting"); }
    void resizeWindow();
    void pressSomeKey();
    void pressZoomKey();
    void pressUndo() { pressInWindow(Qt::ControlModifier); }
    void pressRedo() { pressInWindow(Qt::ControlModifier | Qt::ShiftModifier); }

  private:
    /// Z, wherever the focus is.
    void pressInWindow(Qt::KeyboardModifiers modifiers);
    void checkChosen(const QSpinBox& box, int before);
    void checkParameter(std::size_t field, const std::string& text);

    StormWindow& storm;
    RandomChoice& random;
};
