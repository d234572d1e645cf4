#include "Monkey.h"

#include <cstdio>

namespace {

constexpr std::chrono::seconds kStepTimeOut{120}; ///< for one event with its consequences

} // namespace

Monkey::Monkey()
    : habits{
          {280, "move", [this] { mouse.move(); }},
          {140, "press", [this] { mouse.press(); }},
          {150, "release", [this] { mouse.release(); }},
          {40, "double click", [this] { mouse.doubleClick(); }},
          {10, "other button", [this] { mouse.otherButton(); }},
          {150, "key on the canvas", [this] { mouse.pressKey(); }},
          {15, "space", [this] { mouse.pressSpace(); }},
          {40, "click with Ctrl", [this] { mouse.clickWithCtrl(); }},
          {15, "zoom key", [this] { controls.pressZoomKey(); }},
          {60, "go to a point", [this] { mouse.goToPoint(); }},
          {50, "turn a spin box", [this] { controls.turnSpinBox(); }},
          {25, "type into a spin box", [this] { controls.typeIntoSpinBox(); }},
          {90, "type a parameter", [this] { controls.typeParameter(); }},
          {30, "slider", [this] { controls.moveSlider(); }},
          {45, "delete last", [this] { controls.deleteLast(); }},
          {4, "delete all", [this] { controls.deleteAll(); }},
          {20, "ruler", [this] { controls.toggleRuler(); }},
          {15, "batch", [this] { controls.toggleBatch(); }},
          {60, "undo", [this] { controls.pressUndo(); }},
          {40, "redo", [this] { controls.pressRedo(); }},
          {40, "wheel", [this] { controls.turnWheel(); }},
          {15, "choose a file", [this] { files.chooseFile(); }},
          {14, "operation", [this] { files.operateOnFile(); }},
          {4, "key on the operations", [this] { files.pressKeyOnOperations(); }},
          {3, "source", [this] { sources.chooseSource(); }},
          {3, "sensor button", [this] { sources.pressSensorButton(); }},
          {3, "upload", [this] { sources.upload(); }},
          {1, "reset", [this] { sources.reset(); }},
          {3, "server", [this] { sources.killOrRestartServer(); }},
          {1, "reopen", [this] { sources.reopenWindow(); }},
          {8, "resize", [this] { controls.resizeWindow(); }},
          {15, "some key", [this] { controls.pressSomeKey(); }},
          {4, "another program", [this] { disk.changeBehindItsBack(); }},
          {20, "events", [] { QCoreApplication::processEvents(); }},
      } {
}

Monkey::~Monkey() = default;

void Monkey::open(unsigned newSeed) {
    seed = newSeed;
    random.seed(seed);
    disk.makeFiles();
    watchdog.emplace(kStepTimeOut);
    sources.open();
}

const Monkey::Habit& Monkey::anyHabit() {
    constexpr int kPatienceWithoutTrack = 5;
    if (!hasTrack() && random.chance(kPatienceWithoutTrack))
        return opening;
    int all = 0;
    for (const Habit& habit : habits)
        all += habit.weight;
    int place = random.pick(all);
    auto habit = habits.begin();
    while (place >= habit->weight)
        place -= habit++->weight;
    return *habit;
}

/// The shortest way from the current state of the window to an open track.
void Monkey::openSomething() {
    if (!window->isEnabled())
        return;
    if (find<QComboBox>("comboBox_operation").isEnabled())
        files.load();
    else
        sources.openSource();
}

void Monkey::act() {
    const Habit& habit = anyHabit();
    begin(habit.name);
    count(habit.name);
    count("  with a track", hasTrack() ? 1 : 0);
    watchdog->BeginStep(habit.name + (" after: " + lastEvents()));
    habit.act();
    answers.forgetFileNames(); // a name that no dialog has used is not for the next one
    check();
    // Usually waits for the worker, sometimes continues meanwhile.
    if (!window->isEnabled() && !random.chance(4))
        settle();
    watchdog->EndStep();
}

void Monkey::report(unsigned number) const {
    std::printf("monkey: seed %u, %u events, the longest took %lld ms\n", seed, number,
                static_cast<long long>(watchdog->Longest().count()));
    printCounts();
}
