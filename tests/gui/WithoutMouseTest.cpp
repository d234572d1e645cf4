#include "SourceWorkflows.h"

#include <QApplication>
#include <QSlider>

namespace {

/// The complete job by keys, which go to the widget with the focus, as a keyboard's do.
class WithoutMouse : public SourceWorkflows {
  protected:
    /// The widget that receives keys. A list that was open is no longer the active window, as on a desktop.
    QWidget* focused() {
        if (QApplication::activeWindow() != window.get())
            QApplication::setActiveWindow(window.get());
        return QApplication::focusWidget();
    }

    void press(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        ASSERT_NE(focused(), nullptr);
        QTest::keyClick(focused(), static_cast<Qt::Key>(code), modifiers);
    }

    /// Presses Tab until a control has the focus.
    void goTo(const char* control) {
        const QWidget* const wanted = &find<QWidget>(control);
        for (int step = 0; step < 40 && focused() != wanted; ++step)
            press(Qt::Key_Tab);
        ASSERT_EQ(focused(), wanted) << control;
    }

    /// Opens the list that has the focus and selects one of its items.
    void take(const char* control, const std::string& item) {
        goTo(control);
        choose(control, item);
    }

    void enterNumber(const char* control, const std::string& digits) {
        goTo(control);
        press(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(focused(), QString::fromStdString(digits));
    }
};

TEST_F(WithoutMouse, completesTheJob) {
    startServer();
    openWindowAndListen();
    QApplication::setActiveWindow(window.get());
    find<QWidget>("pushButton_sensor").setFocus(Qt::TabFocusReason);

    take("comboBox_sensor", "Backup File");
    take("comboBox_sensor", "127.0.0.1");
    goTo("pushButton_sensor");
    press(Qt::Key_Space);
    awaitWorker();
    ASSERT_EQ(status(), "Connect successfully.");
    take("comboBox_file", "b.trk");
    take("comboBox_operation", "Load");
    ASSERT_EQ(status(), "Load successfully.");
    ASSERT_EQ(focused(), &canvas()) << "the next keys edit";

    // The loaded path of three points is closed; its second point moves away from the centre, where another
    // path begins.
    press(Qt::Key_Return);
    press(Qt::Key_P);
    press(Qt::Key_P);
    press(Qt::Key_Up, Qt::ShiftModifier);
    ASSERT_LT(paths().at(0).points.at(1).y(), 0.3);
    press(Qt::Key_A);
    ASSERT_EQ(paths().size(), 2U);
    press(Qt::Key_Left, Qt::ShiftModifier);
    press(Qt::Key_A);
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    ASSERT_EQ(paths().at(1).points.size(), 2U);
    EXPECT_EQ(canvas().document().finishedCount(), 2);

    // A point of the first path is removed, and its only segment gets one in its middle.
    press(Qt::Key_Escape);
    press(Qt::Key_P);
    press(Qt::Key_P);
    press(Qt::Key_Delete);
    ASSERT_EQ(paths().at(0).points.size(), 2U);
    press(Qt::Key_Insert);
    ASSERT_EQ(paths().at(0).points.size(), 3U);
    EXPECT_EQ(paths()[0].points[1], (paths()[0].points[0] + paths()[0].points[2]) / 2);

    // Parameters of the second path's segment, another scale, one undo and one redo.
    press(Qt::Key_N);
    press(Qt::Key_N);
    EXPECT_EQ(find<QSpinBox>("spinBox_pathId").value(), 2);
    enterNumber("lineEdit_lineLength", "77");
    press(Qt::Key_F6);
    ASSERT_EQ(focused(), &canvas());
    press(Qt::Key_Plus, Qt::ControlModifier);
    press(Qt::Key_0, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(paths()[1].lengths[0], 100);
    press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(paths()[1].lengths[0], 77);

    take("comboBox_operation", "Save");
    ASSERT_EQ(status(), "Save successfully.");
    goTo("toolButton_upload");
    press(Qt::Key_Space);
    awaitWorker();
    EXPECT_EQ(status(), "Restoring successfully.");
    expectNoBox();

    const auto sent = independent::ReadBinary(FileContent(folder.Path("station/vdk/ContourPath/b.trk")));
    ASSERT_EQ(sent.segments.size(), 5U);
    for (std::size_t record = 0, path = 0; path < 2; ++path)
        for (std::size_t point = 0; point < paths()[path].points.size(); ++point, ++record) {
            EXPECT_EQ(sent.segments[record].path, static_cast<int>(path));
            EXPECT_EQ(sent.segments[record].relativeX, paths()[path].points[point].x());
            EXPECT_EQ(sent.segments[record].relativeY, paths()[path].points[point].y());
            EXPECT_EQ(sent.segments[record].length, paths()[path].lengths[point]);
        }
    EXPECT_EQ(sent.segments[3].length, 77);
}

} // namespace
