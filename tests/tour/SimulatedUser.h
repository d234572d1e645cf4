#pragma once

#include <QPoint>

#include <memory>
#include <string>

/// The operator: moves the pointer and presses buttons and keys through the display server, like a mouse
/// and a keyboard. It has its own connection to the display and is used only from the tour's thread.
class SimulatedUser {
  public:
    /// @throws std::runtime_error when the display cannot be opened or cannot simulate input
    SimulatedUser();
    ~SimulatedUser();

    /// Positions are pixels of the screen.
    void MoveTo(const QPoint& place);
    void Press();
    void Release();
    void Click(const QPoint& place);
    void DoubleClick(const QPoint& place);
    /// Presses at one place, moves in steps and releases at the other.
    void Drag(const QPoint& from, const QPoint& to);

    /// Presses a key by its name in the X tables ("Return", "Down", "Tab").
    void Key(const std::string& name);
    /// The same while Control is held.
    void ControlKey(const std::string& name);
    /// Types printable ASCII.
    void Type(const std::string& text);

  private:
    struct Connection;
    void Stroke(unsigned long symbol);
    void Send(unsigned int keyCode, bool down);

    std::unique_ptr<Connection> connection;
};
