#include "CanvasFixture.h"
#include "SourceWorkflows.h"

#include <QAbstractItemView>
#include <QWheelEvent>

namespace {

/// Accidental input, with an unsaved edit on the canvas.
class Accidents : public SourceWorkflows {
  protected:
    void openEditedTrack() {
        makeBackup(folder.Path("station.osbak"),
                   {{"a.trk", independent::BinaryFile(track)}, {"b.trk", independent::BinaryFile(track)}});
        openWindowAndListen();
        choose("comboBox_sensor", "Backup File");
        loadBackup(folder.Path("station.osbak"));
        QApplication::setActiveWindow(window.get());
        choose("comboBox_operation", "Load");
        ASSERT_EQ(status(), "Load successfully.");
        type("lineEdit_lineLength", "33");
        messages.clear();
    }
    void expectNothingHappened() {
        EXPECT_EQ(paths().at(0).lengths.at(0), 33);
        EXPECT_TRUE(messages.empty()) << messages.back();
        expectNoBox();
        EXPECT_EQ(title(), "Corvane - Backup File - " + folder.Path("station.osbak"));
    }
    bool isOpen(const char* list) { return find<QComboBox>(list).view()->isVisible(); }
    /// One notch, up and down.
    void turnWheelOver(const char* name) {
        auto& control = find<QWidget>(name);
        const QPoint place(control.width() / 2, control.height() / 2);
        for (const int notch : {120, -120}) {
            QWheelEvent event(place, control.mapToGlobal(place), QPoint(), QPoint(0, notch), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&control, &event);
        }
    }
};

TEST_F(Accidents, wheelOverOperationListRunsNoOperation) {
    openEditedTrack();
    turnWheelOver("comboBox_operation");
    expectNothingHappened();
}

TEST_F(Accidents, wheelOverSourceListKeepsBackupOpen) {
    startServer(); // gives a second source
    openEditedTrack();
    ASSERT_EQ(items("comboBox_sensor").size(), 2U);
    turnWheelOver("comboBox_sensor");
    expectNothingHappened();
}

TEST_F(Accidents, wheelOverFileListAndSpinBoxesChangesNothing) {
    openEditedTrack();
    typeNumber("spinBox_segmentId", "2");
    for (const char* const control : {"comboBox_file", "spinBox_pathId", "spinBox_segmentId"})
        turnWheelOver(control);
    EXPECT_EQ(find<QComboBox>("comboBox_file").currentText(), QStringLiteral("a.trk"));
    EXPECT_EQ(find<QSpinBox>("spinBox_pathId").value(), 1);
    EXPECT_EQ(find<QSpinBox>("spinBox_segmentId").value(), 2);
    expectNothingHappened();
}

class AccidentalKeys : public Accidents, public ::testing::WithParamInterface<Qt::Key> {};

TEST_P(AccidentalKeys, openTheClosedOperationListInsteadOfChoosing) {
    openEditedTrack();
    auto& list = find<QComboBox>("comboBox_operation");
    list.setFocus();
    QTest::keyClick(&list, GetParam());
    EXPECT_TRUE(isOpen("comboBox_operation"));
    expectNothingHappened();
    QTest::keyClick(list.view(), Qt::Key_Escape);
    EXPECT_FALSE(isOpen("comboBox_operation"));
    expectNothingHappened();
}

INSTANTIATE_TEST_SUITE_P(Each, AccidentalKeys,
                         ::testing::Values(Qt::Key_Down, Qt::Key_Up, Qt::Key_L, Qt::Key_D, Qt::Key_End,
                                           Qt::Key_PageDown, Qt::Key_Home),
                         [](const auto& key) { return QKeySequence(key.param).toString().toStdString(); });

TEST_F(Accidents, keysThatChooseNothingLeaveOperationListClosed) {
    openEditedTrack();
    auto& list = find<QComboBox>("comboBox_operation");
    list.setFocus();
    for (const Qt::Key key : {Qt::Key_Shift, Qt::Key_Escape, Qt::Key_Left})
        QTest::keyClick(&list, key);
    EXPECT_FALSE(isOpen("comboBox_operation"));
    expectNothingHappened();
}

TEST_F(Accidents, operationMovesFocusFromListToCanvas) {
    openEditedTrack();
    choose("comboBox_operation", "Save");
    EXPECT_TRUE(canvas().hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_D);
    EXPECT_EQ(items("comboBox_file"), (std::vector<std::string>{"a.trk", "b.trk", "External"}));
    EXPECT_TRUE(std::filesystem::exists(kTracks + "a.trk"));
}

} // namespace
