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

/// A simulated user with a seed, who does to the real window anything that an operator could do. After every
/// event it checks that the state of the window and the canvas is consistent, and after every save that the
/// file is. The same seed gives the same events, except for the timing of the server.
class Monkey : public StressWindow {
  protected:
    Monkey();
    ~Monkey() override;

    /// Opens the window with a server, backup files and tracks, good and damaged ones.
    void open(unsigned seed);
    /// Performs one event and the checks after it.
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
