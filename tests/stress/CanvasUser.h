#pragma once

#include "RandomChoice.h"
#include "StressWindow.h"

/// Mouse and keys on the canvas, with no regard for which event may follow which.
class CanvasUser {
  public:
    CanvasUser(StressWindow& stress, RandomChoice& random) : stress(stress), random(random) {}

    void move();
    void press();
    void release();
    void doubleClick();
    void otherButton();
    /// A key of those that edit, with the canvas in focus. It is one step at most, and none while the left
    /// button draws or drags.
    void pressKey();
    /// Space goes down or up.
    void pressSpace();
    /// A click with Ctrl, over a segment as likely as not.
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
