#pragma once

#include "DialogAnswers.h"
#include "LogCapture.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"
#include "canvas/qmaskwidget.h"
#include "window/mainwindow.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>

#include <map>
#include <memory>

/// The real window in a temporary working folder, driven by mouse and keys.
class WindowTest : public ::testing::Test {
  protected:
    WindowTest();
    ~WindowTest() override;
    /// Destroys the window before anything that a test gave it to call.
    void TearDown() override;

    /// Makes and shows the window, large enough for a usable scroll area.
    void openWindow();
    void closeWindow() { window.reset(); }

    template<typename Widget>
    Widget& find(const char* name) {
        auto* const found = window->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr)
            throw std::runtime_error(std::string("no such widget: ") + name);
        return *found;
    }

    QMaskWidget& canvas() { return find<QMaskWidget>("label_mask"); }
    /// The canvas's paths.
    const std::vector<TrackPath>& paths() { return canvas().paths(); }

    /// Selects an item with the keyboard, if it is enabled.
    void choose(const char* combo, const std::string& item);
    std::vector<std::string> items(const char* combo);
    void click(const char* button);
    /// Replaces the text of a line edit, key by key.
    void type(const char* lineEdit, const std::string& text);
    /// Types a number into a spin box in place of the one it shows.
    void typeNumber(const char* spinBox, const std::string& digits);
    /// A left click on the canvas at a point normalised to it.
    void clickCanvas(double x, double y);
    /// Draws a path through points normalised to the canvas and closes it by a double click.
    void drawPath(const std::vector<QPointF>& points);

    std::string status();
    std::string text(const char* widget) {
        return find<QWidget>(widget).property("text").toString().toStdString();
    }

    /// Loads a track by "External" and the file dialog.
    void loadExternal(const std::string& path);
    /// Chooses an operation in any state of the source.
    void operate(const std::string& operation);

    /// Makes a backup whose workspace holds these files (name below "vdk/ContourPath", content).
    void makeBackup(const std::string& backup, const std::map<std::string, std::string>& tracks);
    /// Opens a backup with "Load Backup" and the file dialog.
    void loadBackup(const std::string& backup);

    /// Checks that exactly one critical "Error" box with an Ok button showed this text, and clears the
    /// record.
    void expectErrorBox(const std::string& text);
    void expectNoBox() { EXPECT_TRUE(answers.takeBoxes().empty()); }

    TemporaryFolder folder;
    LogCapture log;
    DialogAnswers answers;
    std::unique_ptr<MainWindow> window;
};

/// The folder of the open workspace's tracks.
inline const std::string kTracks = "./TmpDirOsws/vdk/ContourPath/";
