#include "cinder/Libraries.h"
#include "log/Log.h"
#include "start/StartOptions.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QMessageBox>
#include <QTextCodec>

#include <cstdio>

#include <windows.h>

// Held until the process ends.
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

/// Truncates the log: it covers the current run only.
static bool OpenLog() {
    if (fopen_s(&logFile, "Corvane.log", "w+") != 0) {
        LOG_LINE(ERROR) << "Failed to open the log file.";
        return false;
    }
    Output2FILE::Target() = logFile;
    return true;
}

/// A failure of the first library is not logged: an empty log distinguishes it from one of the second.
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

static int Print(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
    return 0;
}

static int SayWhetherRunning() {
    const bool running = AnotherCopyRuns();
    Print(running ? QStringLiteral("A copy of Corvane runs.\n")
                  : QStringLiteral("No copy of Corvane runs.\n"));
    return running ? 0 : 1;
}

/// Qt ends the program when no display answers.
static int SayWhichDisplay() {
    return Print(QStringLiteral("Windows are shown by \"%1\".\n").arg(QGuiApplication::platformName()));
}

/// A failed start from a terminal shows only its exit code and its log; a start from the desktop would show
/// nothing, so it gets a message box.
static void ShowWhyItEnds(StartMode mode, const QString& reason) {
    if (mode != StartMode::DesktopWindow)
        return;
    std::fprintf(stderr, "corvane: %s\n", reason.toUtf8().constData());
    QMessageBox::warning(nullptr, QStringLiteral("Corvane"), reason);
}

static int RunEditor(StartMode mode) {
    if (mode == StartMode::DesktopWindow) {
        if (const QString reason = EnterOwnFolder(); !reason.isEmpty()) {
            ShowWhyItEnds(mode, reason);
            return 1;
        }
    }
    if (AnotherCopyRuns()) {
        ShowWhyItEnds(mode, QStringLiteral("Corvane is already running."));
        return 0;
    }
    if (!OpenLog() || !StartLibraries()) {
        ShowWhyItEnds(mode,
                      QStringLiteral("Corvane cannot start: its log file or its libraries cannot be used."));
        return -1;
    }
    return RunWindow();
}

int main(int argc, char** argv) {
    const StartMode mode = StartModeOf(argc, argv);
    if (mode == StartMode::Help)
        return Print(UsageText());
    if (mode == StartMode::Version)
        return Print(VersionText());
    if (mode == StartMode::Running)
        return SayWhetherRunning();
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QCoreApplication::setApplicationName(QStringLiteral("corvane")); // names the user's data folder
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);  // icons are sharp on high-DPI screens
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    // With rounding, a desktop at 150 % would get a window of twice its size, larger than the screen.
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
    // Paths are in UTF-8 throughout. Some builds of Qt assume file names in the desktop's encoding.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QApplication application(argc, argv);
    return mode == StartMode::Display ? SayWhichDisplay() : RunEditor(mode);
}
