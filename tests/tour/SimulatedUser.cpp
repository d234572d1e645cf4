#include "SimulatedUser.h"

#include <chrono>
#include <stdexcept>
#include <thread>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

struct SimulatedUser::Connection {
    Display* display = XOpenDisplay(nullptr);
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        if (display != nullptr)
            XCloseDisplay(display);
    }
};

namespace {

/// An operator is slower than a program: pauses let the window respond between events.
void Pause() {
    std::this_thread::sleep_for(std::chrono::milliseconds(15));
}

} // namespace

SimulatedUser::SimulatedUser() : connection(std::make_unique<Connection>()) {
    int ignored = 0;
    if (connection->display == nullptr ||
        XTestQueryExtension(connection->display, &ignored, &ignored, &ignored, &ignored) == False)
        throw std::runtime_error("The display cannot imitate a mouse.");
}

SimulatedUser::~SimulatedUser() = default;

void SimulatedUser::MoveTo(const QPoint& place) {
    // Step aside first: a pointer that is already at the place would send no enter event.
    for (const QPoint& stop : {place + QPoint(2, 2), place}) {
        XTestFakeMotionEvent(connection->display, -1, stop.x(), stop.y(), CurrentTime);
        XSync(connection->display, False);
        Pause();
    }
}

void SimulatedUser::Press() {
    XTestFakeButtonEvent(connection->display, 1, True, CurrentTime);
    XSync(connection->display, False);
    Pause();
}

void SimulatedUser::Release() {
    XTestFakeButtonEvent(connection->display, 1, False, CurrentTime);
    XSync(connection->display, False);
    Pause();
}

void SimulatedUser::Click(const QPoint& place) {
    MoveTo(place);
    Press();
    Release();
}

void SimulatedUser::DoubleClick(const QPoint& place) {
    Click(place);
    Press();
    Release();
}

void SimulatedUser::Drag(const QPoint& from, const QPoint& to) {
    constexpr int kSteps = 8;
    MoveTo(from);
    Press();
    for (int step = 1; step <= kSteps; ++step)
        MoveTo(from + (to - from) * step / kSteps);
    Release();
}

void SimulatedUser::Key(const std::string& name) {
    Stroke(XStringToKeysym(name.c_str()));
}

void SimulatedUser::ControlKey(const std::string& name) {
    const unsigned int control = XKeysymToKeycode(connection->display, XK_Control_L);
    Send(control, true);
    Key(name);
    Send(control, false);
}

void SimulatedUser::Type(const std::string& text) {
    for (const char letter : text)
        Stroke(static_cast<unsigned char>(letter));
}

void SimulatedUser::Stroke(unsigned long symbol) {
    const KeyCode code = XKeysymToKeycode(connection->display, symbol);
    if (code == 0)
        throw std::runtime_error("The keyboard has no such key.");
    const bool shifted = XkbKeycodeToKeysym(connection->display, code, 0, 0) != symbol;
    const unsigned int shift = XKeysymToKeycode(connection->display, XK_Shift_L);
    if (shifted)
        Send(shift, true);
    Send(code, true);
    Send(code, false);
    if (shifted)
        Send(shift, false);
}

void SimulatedUser::Send(unsigned int keyCode, bool down) {
    XTestFakeKeyEvent(connection->display, keyCode, down ? True : False, CurrentTime);
    XSync(connection->display, False);
    Pause();
}
