#pragma once

#include "WindowTest.h"

#include <deque>
#include <map>
#include <string>

/// The real window with a record of the events, and the checks after every event. Its members are public for
/// the simulated users.
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

    /// Begins the next event.
    void begin(const std::string& event);
    /// Adds a detail to the current event.
    void note(const std::string& detail) { events.back() += " " + detail; }
    void count(const std::string& what, unsigned times = 1) { counts[what] += times; }
    /// Counts the current status text.
    void countStatus() { count("  " + status()); }
    /// The events before a failure, in order.
    [[nodiscard]] std::string lastEvents() const;

    /// Whether a picture is shown.
    [[nodiscard]] bool hasTrack() { return !canvas().pixmap(Qt::ReturnByValue).isNull(); }
    /// Answers the next file dialog with this name in the working folder, or cancels it.
    void typeName(const std::string& name) {
        answers.typeFileName(QString::fromStdString(name.empty() ? name : folder.Path(name)));
    }
    /// Waits for the worker.
    void settle();
    /// Checks that the state of the window and its canvas is consistent.
    void check();
    void checkBoxes();

    Qt::MouseButtons held = Qt::NoButton; ///< over any widget

  protected:
    /// Prints the counters.
    void printCounts() const;

  private:
    void checkWindow();

    std::deque<std::string> events;
    std::map<std::string, unsigned> counts;
};
