#pragma once

#include "RandomChoice.h"
#include "StressWindow.h"

/// Mouse and keys on the canvas, in any order of events.
class CanvasUser {
  public:
    CanvasUser(StressWindow& stress, RandomChoice& random) : stress(stress), random(random) {}

    void move();
    void press();
    void release();
    void doubleClick();
    void otherButton();
    /// An editing key on the focused canvas. It makes at most one step, and none while the left button draws
    /// or drags.
    void pressKey();
    /// Presses or releases Space.
    void pressSpace();
    /// A click with Ctrl, often on a segment.
    void clickWithCtrl();
    /// Moves to where a point is, so that dragging happens.
    void goToPoint();

  private:
    void send(QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    bool focusCanvas();
    void goToSegment();

    StressWindow& stress;
    RandomChoice& random;
    QPoint cursor;
    bool spaceHeld = false;
};
