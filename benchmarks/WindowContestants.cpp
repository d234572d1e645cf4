#include "WindowContestants.h"

#include "window/mainwindow.h"

#include <QApplication>
#include <QMainWindow>
#include <QWindow>

#include <fstream>
#include <iterator>
#include <sstream>

#include <unistd.h>

namespace {

/// The start of this process since the boot, in hundredths of a second.
double ProcessStart() {
    constexpr int kFieldsBetween = 19; // from after the program's name to the start time
    std::ifstream file("/proc/self/stat");
    std::string text{std::istreambuf_iterator<char>(file), {}};
    std::istringstream fields(text.substr(text.rfind(')') + 2));
    std::string skipped;
    for (int i = 0; i < kFieldsBetween; ++i)
        fields >> skipped;
    double ticks = 0;
    fields >> ticks;
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double SecondsSinceStart() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 - ProcessStart();
}

template<typename Window>
Figures ShowWindow() {
    int count = 1;
    char name[] = "corvane-bench";
    char* names[] = {name, nullptr};
    const QApplication application(count, names);
    Window window;
    window.show();
    while (!window.windowHandle()->isExposed())
        QApplication::processEvents();
    return {{"wall", SecondsSinceStart()}};
}

} // namespace

Contestants WindowContestants() {
    return {{"window", [](const Arguments&) { return ShowWindow<MainWindow>(); }},
            {"window-bare", [](const Arguments&) { return ShowWindow<QMainWindow>(); }}};
}
