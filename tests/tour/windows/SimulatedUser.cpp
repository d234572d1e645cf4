#include "SimulatedUser.h"

#include <chrono>
#include <map>
#include <stdexcept>
#include <thread>

#include <windows.h>

/// The system takes input from any process that shows windows.
struct SimulatedUser::Connection {};

namespace {

/// A hand is slower than a program: events come one after the other, so that the window can answer between
/// them.
void Pause() {
    std::this_thread::sleep_for(std::chrono::milliseconds(15));
}

void SendMouse(DWORD what, LONG across, LONG down) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = across;
    input.mi.dy = down;
    input.mi.dwFlags = what;
    SendInput(1, &input, sizeof input);
    Pause();
}

/// An earlier movement may come back to the system late, from a display server under it, and take the pointer
/// along.
void AwaitPointer(const QPoint& place, LONG across, LONG down) {
    constexpr int kTries = 100;
    constexpr int kQuiet = 4; // pauses in which it stays there
    int quiet = 0;
    for (int i = 0; i < kTries && quiet < kQuiet; ++i) {
        POINT seen{};
        Pause();
        GetCursorPos(&seen);
        quiet = seen.x == place.x() && seen.y == place.y() ? quiet + 1 : 0;
        if (quiet == 0)
            SendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, across, down);
    }
}

/// A pixel in 65536ths of the screen, so that rounding down leads back to it.
LONG ShareOf(int place, int screen) {
    constexpr int kWhole = 65536;
    return (place * kWhole + screen - 1) / screen;
}

WORD KeyNamed(const std::string& name) {
    static const std::map<std::string, WORD> kKeys = {
        {"Return", VK_RETURN}, {"Tab", VK_TAB}, {"Escape", VK_ESCAPE}, {"Down", VK_DOWN}};
    const auto found = kKeys.find(name);
    if (found != kKeys.end())
        return found->second;
    return LOBYTE(VkKeyScanA(name.at(0)));
}

} // namespace

SimulatedUser::SimulatedUser() : connection(std::make_unique<Connection>()) {
}

SimulatedUser::~SimulatedUser() = default;

void SimulatedUser::MoveTo(const QPoint& place) {
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    // A hand comes from somewhere: a pointer that is there already would not be seen to arrive.
    for (const QPoint& stop : {place + QPoint(2, 2), place}) {
        const LONG across = ShareOf(stop.x(), width);
        const LONG down = ShareOf(stop.y(), height);
        SendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, across, down);
        AwaitPointer(stop, across, down);
    }
}

void SimulatedUser::Press() {
    SendMouse(MOUSEEVENTF_LEFTDOWN, 0, 0);
}

void SimulatedUser::Release() {
    SendMouse(MOUSEEVENTF_LEFTUP, 0, 0);
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
    Stroke(KeyNamed(name));
}

void SimulatedUser::ControlKey(const std::string& name) {
    Send(VK_CONTROL, true);
    Key(name);
    Send(VK_CONTROL, false);
}

void SimulatedUser::Type(const std::string& text) {
    for (const char letter : text) {
        const SHORT key = VkKeyScanA(letter);
        if (key == -1)
            throw std::runtime_error("The keyboard has no such key.");
        const bool shifted = (HIBYTE(key) & 1) != 0;
        if (shifted)
            Send(VK_SHIFT, true);
        Stroke(LOBYTE(key));
        if (shifted)
            Send(VK_SHIFT, false);
    }
}

void SimulatedUser::Stroke(unsigned long symbol) {
    Send(static_cast<unsigned>(symbol), true);
    Send(static_cast<unsigned>(symbol), false);
}

void SimulatedUser::Send(unsigned int keyCode, bool down) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = static_cast<WORD>(keyCode);
    input.ki.dwFlags = down ? 0 : KEYEVENTF_KEYUP;
    SendInput(1, &input, sizeof input);
    Pause();
}
