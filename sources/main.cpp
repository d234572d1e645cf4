#include "cinder/VeApiLib.h"
#include "cinder/bCdLib.h"
#include "log/Log.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QTextCodec>

#include <cstdio>

#include <windows.h>

// Held until the process ends, and by nobody before.
static HANDLE instanceMutex = nullptr;
static std::FILE* logFile = nullptr;
static const VeApiLib* apiLibrary = nullptr;
static const bCdLib* deviceLibrary = nullptr;

static bool AnotherCopyRuns() {
    instanceMutex = CreateMutexW(nullptr, FALSE, L"corvane");
    if (GetLastError() != ERROR_ALREADY_EXISTS)
        return false;
    CloseHandle(instanceMutex);
    return true;
}

/// Empties the log: it tells of the current run only.
static bool OpenLog() {
    if (fopen_s(&logFile, "Corvane.log", "w+") != 0) {
        LOG_LINE(ERROR) << "Failed to open the log file.";
        return false;
    }
    Output2FILE::Target() = logFile;
    return true;
}

/// A failure of the first library is not logged: an empty log tells it from one of the second.
static bool StartLibraries() {
    if (VeApiLib_Construct(&apiLibrary) != bOK)
        return false;
    const bStatus status = bCdLib_Construct(&deviceLibrary);
    if (status == bOK)
        return true;
    LOG_LINE(ERROR) << "(" << status << ") Failed to construct the bCdLib.";
    return false;
}

static int RunWindow() {
    MainWindow window;
    window.setWindowTitle(QStringLiteral("Corvane"));
    window.show();
    return QApplication::exec();
}

int main(int argc, char** argv) {
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QCoreApplication::setApplicationName(QStringLiteral("corvane")); // the user's data folder is called so
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);  // icons are crisp on finer screens
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    // Rounded, a desktop at 150 % would get a window of twice its size, which leaves the screen.
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
    // Paths are in UTF-8 throughout. Some builds of the toolkit take file names to be in the desktop's
    // encoding.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QApplication application(argc, argv);
    if (AnotherCopyRuns())
        return 0;
    if (!OpenLog() || !StartLibraries())
        return -1;
    return RunWindow();
}
