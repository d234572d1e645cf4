#pragma once

#include "SimulatedUser.h"
#include "document/formats/TrackPath.h"

#include <QPoint>
#include <QString>

#include <functional>
#include <string>
#include <vector>

class MainWindow;
class QWidget;

/// What the operator sees and does: finds widgets of the window by name, reads them on the GUI thread, and
/// operates them with the simulated user. Everything here is called from the tour's thread.
class Stage {
  public:
    /// @param pictures the folder for the pictures
    Stage(MainWindow& window, std::string pictures);

    /// Shows the window and gives it the keyboard focus, since there may be no window manager.
    void Open() const;

    /// Gives the window the keyboard focus again, which an open list may have taken.
    void Activate() const;

    /// Runs a function on the GUI thread, also while a dialog is open, and waits for its result.
    void Look(const std::function<void()>& look) const;

    /// @throws std::runtime_error with `what` when the condition does not hold within ten seconds
    void WaitUntil(const std::function<bool()>& condition, const std::string& what) const;

    /// @throws std::runtime_error with `what`
    static void Expect(bool condition, const std::string& what);

    /// Saves the screen as build/tour/NN-name.png.
    void Picture(const std::string& name);

    void ClickOn(const char* widget);
    /// Opens a combo box's list.
    void OpenList(const char* comboBox);
    /// Opens a combo box and clicks an item of its list.
    void Choose(const char* comboBox, const QString& item);
    /// Replaces a line edit's or spin box's text by typing.
    void Enter(const char* widget, const std::string& text);
    /// Types a path into the open file dialog and accepts it.
    void AnswerFileDialog(const std::string& path);

    [[nodiscard]] QString StatusText() const;
    [[nodiscard]] QString TextOf(const char* widget) const;
    /// Whether the window is completely on the screen.
    [[nodiscard]] bool IsOnScreen() const;
    [[nodiscard]] bool IsEnabled(const char* widget) const;
    /// Whether the busy indicator turns.
    [[nodiscard]] bool IsBusy() const;
    [[nodiscard]] std::vector<TrackPath> PathsOnCanvas() const;
    /// A point of a path, in pixels of the screen.
    [[nodiscard]] QPoint PlaceOf(const QPointF& point) const;
    /// A place on the canvas, given as fractions of its visible part, in pixels of the screen.
    [[nodiscard]] QPoint OnCanvas(double across, double down) const;

    SimulatedUser user;

  private:
    [[nodiscard]] QPoint CentreOf(const char* widget) const;
    /// A place of a widget in pixels of the screen, which are smaller than Qt's pixels on a scaled desktop.
    [[nodiscard]] static QPoint OnScreen(const QWidget& widget, const QPoint& place);
    template<typename Widget>
    [[nodiscard]] Widget* Find(const char* name) const;

    MainWindow& window;
    std::string pictures;
    int pictureCount = 0;
};
