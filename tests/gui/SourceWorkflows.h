#pragma once

#include "OstraServerProcess.h"
#include "WindowTest.h"

#include <QStatusBar>
#include <QToolButton>

#include <filesystem>
#include <optional>

/// The window with its sources: a real server, and backup files.
class SourceWorkflows : public WindowTest {
  protected:
    SourceWorkflows() {
        std::filesystem::create_directories(Utf8Path(folder.Path("station/vdk/ContourPath")));
        WriteFile(folder.Path("station/vdk/ContourPath/b.trk"), independent::BinaryFile(track));
        WriteFile(folder.Path("station/vdk/settings.json"), "{}");
    }

    void startServer(std::vector<std::string> options = {}) {
        server.emplace(folder.Path("station"), std::move(options));
        qputenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str());
    }

    void openWindowAndListen() {
        openWindow();
        QObject::connect(&find<QStatusBar>("statusBar"), &QStatusBar::messageChanged, window.get(),
                         [this](const QString& message) { messages.push_back(message.toStdString()); });
    }

    /// Waits until the worker has done its work.
    void awaitWorker() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return window->isEnabled(); }, 20000));
    }

    void connectToServer() {
        click("pushButton_sensor");
        awaitWorker();
        ASSERT_EQ(text("pushButton_sensor"), "Disconnect Sensor");
    }

    /// Starts a server and opens the window connected to it.
    void openConnected() {
        startServer();
        openWindowAndListen();
        connectToServer();
    }

    void loadAndEdit(const std::string& name) {
        choose("comboBox_file", name);
        choose("comboBox_operation", "Load");
        ASSERT_EQ(status(), "Load successfully.");
        type("lineEdit_lineLength", "33");
        choose("comboBox_operation", "Save");
        ASSERT_EQ(status(), "Save successfully.");
    }

    std::string title() { return window->windowTitle().toStdString(); }
    bool enabled(const char* widget) { return find<QWidget>(widget).isEnabled(); }
    std::string uploadTip() { return find<QToolButton>("toolButton_upload").toolTip().toStdString(); }

    /// The length of the first point in a track file.
    static int firstLength(const std::string& path) {
        return independent::ReadBinary(FileContent(path)).segments.at(0).length;
    }

    void expectTrackClosed() {
        EXPECT_EQ(text("label_fileName"), "");
        EXPECT_EQ(text("lineEdit_heightMin"), "0");
        EXPECT_EQ(text("lineEdit_heightMax"), "0");
        EXPECT_TRUE(canvas().pixmap(Qt::ReturnByValue).isNull());
    }

    const independent::Track track = SmallTrack(PathAcross(0, 3, 0.5, 100));
    std::optional<OstraServerProcess> server;
    std::vector<std::string> messages; ///< every message of the status bar
};
