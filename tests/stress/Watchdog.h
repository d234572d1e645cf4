#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/// Ends a test of a window that hangs: an unanswered dialog is dismissed after a while and fails the test; if
/// the GUI thread itself hangs, the program is aborted and the current step is printed.
class Watchdog final {
  public:
    /// @param timeOut for one step
    explicit Watchdog(std::chrono::seconds timeOut);
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog();

    /// Begins a step and restarts its time-out.
    /// @param description printed if the step does not end
    void BeginStep(const std::string& description);
    void EndStep();

    /// The longest step so far.
    [[nodiscard]] std::chrono::milliseconds Longest() const { return longest; }

  private:
    using Clock = std::chrono::steady_clock;

    void Watch();
    void LookForOldDialog();

    const std::chrono::seconds timeOut;
    std::chrono::milliseconds longest{};

    QTimer dialogTimer;
    QPointer<QWidget> dialog; ///< the open one
    Clock::time_point dialogSince;

    std::mutex mutex; ///< guards the following members
    std::condition_variable changed;
    std::string step;
    Clock::time_point begun;
    bool running = false;
    bool ending = false;
    std::thread watching; ///< the last member: it uses the others
};
