// The tour: operates the editor's window through the display with simulated mouse and keyboard.
// Usage: corvane-tour PICTURES [DESKTOP], in a folder that has "station.osbak", "fault.trk" and
// the folder "served", the workspace of the sensor server that it starts. Desktops: see Desktop.h.

#include "Desktop.h"
#include "OstraServerProcess.h"
#include "Tour.h"
#include "window/mainwindow.h"

#include <QApplication>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <thread>

namespace {

/// In milliseconds: the simulated user's double clicks are slow on a busy machine.
constexpr int kDoubleClickInterval = 3000;

int Failed(const char* reason) {
    std::printf("FAILED: %s\n", reason);
    return 1;
}

/// Runs the tour and ends the application with its result.
void RunTour(Stage& stage, Tour& tour, bool complete) {
    int result = 0;
    try {
        if (complete)
            tour.Run();
        else
            tour.RunMainScenario();
        std::printf("The tour is over; every step did what it says.\n");
    } catch (const std::exception& failure) {
        result = Failed(failure.what());
        try {
            stage.Picture("failed");
        } catch (const std::exception& noPicture) {
            std::printf("and %s\n", noPicture.what());
        }
    }
    std::fflush(stdout);
    QMetaObject::invokeMethod(
        qApp, [result] { QApplication::exit(result); }, Qt::QueuedConnection);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3)
        return Failed("usage: corvane-tour PICTURES [DESKTOP]");
    try {
        Desktop desktop(argc == 3 ? argv[2] : "plain");
        // A slow archive, so that the busy indicator is visible.
        const OstraServerProcess server(
            "served", {"--fault-delay", "1500", "--fault-path", "/system/commands/archive"});
        qputenv("OSTRA_DISCOVERY", QByteArray::fromStdString(server.DiscoveryAddress()));

        desktop.Prepare();
        QApplication application(argc, argv);
        desktop.Apply();
        QApplication::setDoubleClickInterval(kDoubleClickInterval);
        MainWindow window;
        window.setWindowTitle(QStringLiteral("Corvane"));
        Stage stage(window, std::filesystem::absolute(argv[1]).string());
        Tour tour(stage, std::filesystem::absolute("served").string());
        std::thread operatorsThread(RunTour, std::ref(stage), std::ref(tour), desktop.IsPlain());
        const int result = QApplication::exec();
        operatorsThread.join();
        return result;
    } catch (const std::exception& failure) {
        return Failed(failure.what());
    }
}
