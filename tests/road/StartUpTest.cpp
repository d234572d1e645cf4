#include "FakeLibraries.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QTextCodec>
#include <QTimer>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <sys/stat.h>

#include <windows.h>

/// The program's entry, built under this name.
int CorvaneMain(int argc, char** argv);

namespace {

/// What is done once the event loop of the program runs.
std::function<void(QMainWindow&)> whenShown;
bool highDpiAtConstruction = false;
bool finePixmapsAtConstruction = false;

QMainWindow* ShownWindow() {
    for (QWidget* const widget : QApplication::topLevelWidgets())
        if (auto* const window = qobject_cast<QMainWindow*>(widget); window != nullptr && window->isVisible())
            return window;
    return nullptr;
}

void Plan() {
    highDpiAtConstruction = QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling);
    finePixmapsAtConstruction = QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps);
    QTimer::singleShot(0, [] {
        QMainWindow* const window = ShownWindow();
        if (window == nullptr)
            QCoreApplication::exit(99);
        else
            whenShown(*window);
    });
}
Q_COREAPP_STARTUP_FUNCTION(Plan)

/// One start of the program in this process: a process starts it once.
class StartUpTest : public ::testing::Test {
  protected:
    StartUpTest() {
        ::mkdir("instance", 0700);
        ::setenv("CORVANE_INSTANCE", folder.Path("instance").c_str(), 1);
        ::setenv("CORVANE_KEPT", folder.Path("kept").c_str(), 1);
        ::setenv("OSTRA_DISCOVERY", "127.0.0.1:9", 1); // also when this is not started by ctest
        whenShown = [](QMainWindow& window) { window.close(); };
    }

    static int start() {
        char name[] = "corvane";
        char* arguments[] = {name, nullptr};
        return CorvaneMain(1, arguments);
    }

    [[nodiscard]] std::string log() const { return FileContent(folder.Path("Corvane.log")); }

    TemporaryFolder folder;
};

TEST_F(StartUpTest, showsTheTitledWindowAndEndsWithTheLoopsResult) {
    std::string title;
    whenShown = [&](QMainWindow& window) {
        title = window.windowTitle().toStdString();
        QCoreApplication::exit(7);
    };
    EXPECT_EQ(start(), 7);
    EXPECT_EQ(title, "Corvane");
    EXPECT_TRUE(highDpiAtConstruction);
    EXPECT_TRUE(finePixmapsAtConstruction);
    EXPECT_EQ(fakeLibraries::apiStarts, 1);
    EXPECT_EQ(fakeLibraries::deviceStarts, 1);
    EXPECT_NE(log(), "");
}

TEST_F(StartUpTest, closingTheWindowEndsWithZero) {
    EXPECT_EQ(start(), 0);
}

TEST_F(StartUpTest, windowIsDestroyedBeforeTheApplication) {
    bool destroyed = false;
    bool applicationLived = false;
    whenShown = [&](QMainWindow& window) {
        QObject::connect(&window, &QObject::destroyed, [&] {
            destroyed = true;
            applicationLived = QCoreApplication::instance() != nullptr;
        });
        window.close();
    };
    start();
    EXPECT_TRUE(destroyed);
    EXPECT_TRUE(applicationLived);
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
}

TEST_F(StartUpTest, exceptionFromTheEventLoopEndsTheProcess) {
    whenShown = [](QMainWindow&) { throw std::runtime_error("nobody catches this"); };
    // Without the noexcept the test's own frame would be the one that catches it.
    const auto startAlone = []() noexcept { start(); };
    EXPECT_DEATH(startAlone(), "nobody catches this");
}

TEST_F(StartUpTest, fileNamesAreUtf8WhateverTheDesktopsEncoding) {
    // What a toolkit that follows the desktop would find on one with an older encoding.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const std::string name = "straße 日.trk";
    WriteFile(name, "");
    std::vector<std::string> listed;
    std::string encoded;
    whenShown = [&](QMainWindow& window) {
        for (const QString& found : QDir().entryList({QStringLiteral("*.trk")}))
            listed.push_back(found.toStdString());
        encoded = QFile::encodeName(QString::fromStdString(name)).toStdString();
        window.close();
    };
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(listed, ::testing::ElementsAre(name));
    EXPECT_EQ(encoded, name);
}

TEST_F(StartUpTest, logIsEmptiedByTheStart) {
    WriteFile("Corvane.log", "an older run\n");
    start();
    EXPECT_THAT(log(), ::testing::Not(::testing::HasSubstr("older")));
    EXPECT_NE(log(), "");
}

TEST_F(StartUpTest, mutexThatIsTakenEndsTheStartWithZero) {
    WriteFile("Corvane.log", "the other copy's\n");
    const HANDLE other = CreateMutexW(nullptr, FALSE, L"corvane");
    EXPECT_EQ(start(), 0);
    CloseHandle(other);
    EXPECT_EQ(log(), "the other copy's\n");
    EXPECT_EQ(fakeLibraries::apiStarts, 0);
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
}

TEST_F(StartUpTest, mutexThatCannotBeMadeKeepsNobodyOut) {
    ::mkdir("instance/corvane.lock", 0700);
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, L"corvane"), nullptr);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(fakeLibraries::deviceStarts, 1);
}

TEST_F(StartUpTest, mutexIsHeldWhileTheWindowIsOpen) {
    DWORD found = 0;
    whenShown = [&](QMainWindow& window) {
        CloseHandle(CreateMutexW(nullptr, FALSE, L"corvane"));
        found = GetLastError();
        window.close();
    };
    start();
    EXPECT_EQ(found, ERROR_ALREADY_EXISTS);
}

TEST_F(StartUpTest, logThatCannotBeOpenedIsToldOnStandardError) {
    ::mkdir("Corvane.log", 0700);
    ::testing::internal::CaptureStderr();
    const int result = start();
    const std::string told = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(result, -1);
    EXPECT_THAT(told,
                ::testing::ContainsRegex(
                    "[0-9][0-9]:[0-9][0-9]:[0-9][0-9].0[0-9][0-9] ERROR: Failed to open the log file.\n"));
    EXPECT_EQ(fakeLibraries::apiStarts, 0);
}

TEST_F(StartUpTest, firstLibraryThatFailsLeavesTheLogEmpty) {
    WriteFile("Corvane.log", "an older run\n");
    fakeLibraries::apiStatus = -997;
    EXPECT_EQ(start(), -1);
    EXPECT_EQ(log(), "");
    EXPECT_EQ(fakeLibraries::deviceStarts, 0);
}

TEST_F(StartUpTest, anyStatusButOneIsAFailure) {
    fakeLibraries::apiStatus = 0;
    EXPECT_EQ(start(), -1);
    EXPECT_EQ(log(), "");
}

TEST_F(StartUpTest, secondLibraryThatFailsWritesOneLine) {
    fakeLibraries::deviceStatus = -993;
    EXPECT_EQ(start(), -1);
    EXPECT_THAT(log(), ::testing::MatchesRegex("[0-9][0-9]:[0-9][0-9]:[0-9][0-9].0[0-9][0-9] ERROR: "
                                               "\\(-993\\) Failed to construct the bCdLib.\n"));
}

} // namespace
