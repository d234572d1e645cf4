#pragma once

#include "CanvasHand.h"
#include "ControlHand.h"
#include "DiskHand.h"
#include "FileHand.h"
#include "RandomChoice.h"
#include "SourceHand.h"
#include "StormWindow.h"
#include "Watchdog.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// A seeded hand that does to the real window whatever an operator could do, sensible or not, and looks after
/// every event whether what the window and its canvas hold still makes sense, and after every save whether
/// the file does. The same seed gives the same events, but for how long the server takes.
class Monkey : public StormWindow {
  protected:
    Monkey();
    ~Monkey() override;

    /// Opens the window beside a server, backup files and tracks, good and damaged ones.
    void open(unsigned seed);
    /// One event, and the checks after it.
    void act();
    void report(unsigned events) const;

  private:
    struct Habit {
        int weight;
        const char* name;
        std::function<void()> act;
    };

    const Habit& anyHabit();
    void openSomething();

    unsigned seed = 0;
    RandomChoice random;
    CanvasHand mouse{*this, random};
    ControlHand controls{*this, random};
    DiskHand disk{*this, random};
    FileHand files{*this, random, disk};
    SourceHand sources{*this, random};
    const std::vector<Habit> habits;
    const Habit opening{0, "open something", [this] { openSomething(); }};
    std::optional<Watchdog> watchdog;
};
