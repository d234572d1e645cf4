#pragma once

#include "CanvasUser.h"
#include "ControlUser.h"
#include "DiskUser.h"
#include "FileUser.h"
#include "RandomChoice.h"
#include "SourceUser.h"
#include "StressWindow.h"
#include "Watchdog.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// A seeded hand that does to the real window whatever an operator could do, sensible or not, and looks after
/// every event whether what the window and its canvas hold still makes sense, and after every save whether
/// the file does. The same seed gives the same events, but for how long the server takes.
class Monkey : public StressWindow {
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
    CanvasUser mouse{*this, random};
    ControlUser controls{*this, random};
    DiskUser disk{*this, random};
    FileUser files{*this, random, disk};
    SourceUser sources{*this, random};
    const std::vector<Habit> habits;
    const Habit opening{0, "open something", [this] { openSomething(); }};
    std::optional<Watchdog> watchdog;
};
