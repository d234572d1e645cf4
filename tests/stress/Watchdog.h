#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/// Ends what would hang a test that works a window: a dialog that nobody answers is dismissed after a while
/// and fails the test; when the window's thread itself gets stuck, the program is aborted, and what it was
/// about is told.
class Watchdog final {
  public:
    /// @param patience for one step
    explicit Watchdog(std::chrono::seconds patience);
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog();

    /// A step begins, and with it the patience anew.
    /// @param description what is told when it does not end
    void BeginStep(const std::string& description);
    void EndStep();

    /// The longest step so far.
    [[nodiscard]] std::chrono::milliseconds Longest() const { return longest; }

  private:
    using Clock = std::chrono::steady_clock;

    void Watch();
    void LookForOldDialog();

    const std::chrono::seconds patience;
    std::chrono::milliseconds longest{};

    QTimer dialogTimer;
    QPointer<QWidget> dialog; ///< the one that stands
    Clock::time_point dialogSince;

    std::mutex mutex; ///< guards what follows
    std::condition_variable changed;
    std::string step;
    Clock::time_point begun;
    bool running = false;
    bool ending = false;
    std::thread watching; ///< the last member: it uses the others
};
