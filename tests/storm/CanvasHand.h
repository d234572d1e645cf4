#pragma once

#include "RandomChoice.h"
#include "StormWindow.h"

/// The mouse on the canvas, with no regard for which event may follow which.
class CanvasHand {
  public:
    CanvasHand(StormWindow& storm, RandomChoice& random) : storm(storm), random(random) {}

    void move();
    void press();
    void release();
    void doubleClick();
    void otherButton();
    /// Moves to where a point is, so that dragging happens.
    void goToPoint();

  private:
    void send(QEvent::Type type, Qt::MouseButton button);

    StormWindow& storm;
    RandomChoice& random;
    QPoint cursor;
};
