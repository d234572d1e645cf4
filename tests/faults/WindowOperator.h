#pragma once

#include "DialogAnswers.h"
#include "window/mainwindow.h"

#include <QTest>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// Operates the real window with mouse and keys, as an operator does. @throws std::runtime_error for an
/// impossible step
class WindowOperator {
  public:
    WindowOperator();

    /// Picks an item of a combo box with the keyboard.
    void Choose(const char* combo, const std::string& item);
    void Click(const char* button);
    /// Replaces the text of a line edit, key by key.
    void Type(const char* lineEdit, const std::string& text);
    /// Lets the event loop run until the condition holds. @return false after half a minute
    template<typename Condition>
    bool Await(Condition condition) {
        return QTest::qWaitFor(condition, kTimeOut);
    }

    /// The next file dialog is answered with this name.
    void NameFile(const std::string& name) { answers.typeFileName(QString::fromStdString(name)); }

    void LoadBackup(const std::string& backup);
    /// Loads a track of the open workspace.
    void LoadTrack(const std::string& name);
    void LoadExternal(const std::string& path);
    /// Changes the length of the open track's first segment to 33.
    void Edit();

    /// Whether the window accepts input: it is disabled while the worker runs.
    [[nodiscard]] bool IsEnabled() const { return window.isEnabled(); }

    std::string Status();
    void ClearStatus();
    std::string Text(const char* widget);
    /// The texts of the "Error" boxes seen since the last call; boxes with another title do not count.
    std::vector<std::string> TakeErrors();

    /// Whether there are boxes that TakeErrors has not returned yet.
    bool HasErrors();

    /// Checks that the last step succeeded. @throws std::runtime_error with what was shown instead
    void Expect(const std::string& status);

    template<typename Widget>
    Widget& Find(const char* name) {
        auto* const found = window.findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr)
            throw std::runtime_error(std::string("no such widget: ") + name);
        return *found;
    }

  private:
    static constexpr int kTimeOut = 30'000; // milliseconds

    DialogAnswers answers;
    std::vector<std::string> errors;
    MainWindow window;
};
