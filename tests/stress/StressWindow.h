#pragma once

#include "WindowTest.h"

#include <deque>
#include <map>
#include <string>

/// The real window with a record of what is done to it, and the checks of what must hold after every event.
/// The hands that work it find everything open.
class StressWindow : public WindowTest {
  public:
    using WindowTest::answers;
    using WindowTest::canvas;
    using WindowTest::choose;
    using WindowTest::click;
    using WindowTest::closeWindow;
    using WindowTest::find;
    using WindowTest::folder;
    using WindowTest::makeBackup;
    using WindowTest::openWindow;
    using WindowTest::paths;
    using WindowTest::status;
    using WindowTest::text;
    using WindowTest::typeNumber;
    using WindowTest::window;

    /// The next event begins.
    void begin(const std::string& event);
    /// What else there is to say of the event.
    void note(const std::string& detail) { events.back() += " " + detail; }
    void count(const std::string& what, unsigned times = 1) { counts[what] += times; }
    /// Counts what the status bar says.
    void countStatus() { count("  " + status()); }
    /// The events before a failure, the last one last.
    [[nodiscard]] std::string lastEvents() const;

    /// Whether there is a picture to work on.
    [[nodiscard]] bool hasTrack() { return !canvas().pixmap(Qt::ReturnByValue).isNull(); }
    /// The next file dialog gets this name of the working folder, or is cancelled.
    void typeName(const std::string& name) {
        answers.typeFileName(QString::fromStdString(name.empty() ? name : folder.Path(name)));
    }
    /// Waits for the worker.
    void settle();
    /// That what the window and its canvas hold makes sense.
    void check();
    void checkBoxes();

    Qt::MouseButtons held = Qt::NoButton; ///< over whatever widget

  protected:
    /// Prints how often each thing was counted.
    void printCounts() const;

  private:
    void checkWindow();

    std::deque<std::string> events;
    std::map<std::string, unsigned> counts;
};
