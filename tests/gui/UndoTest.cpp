#include "CanvasFixture.h"
#include "WindowTest.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>

#include <filesystem>
#include <optional>

namespace {

/// The real window with a track of one path of three points, which is closed.
class Undo : public WindowTest {
  protected:
    Undo() {
        WriteFile(folder.Path("a.trk"), independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, 100))));
        openWindow();
        loadExternal(folder.Path("a.trk"));
        QApplication::setActiveWindow(window.get());
        canvasMouse.emplace(&canvas());
        mouse().DoubleClick(at(0, 2));
    }

    [[nodiscard]] TrackDocument& document() { return canvas().document(); }

    /// A point in widget pixels.
    QPoint at(std::size_t path, std::size_t point) {
        const QPointF place = paths().at(path).points.at(point);
        return {qRound(place.x() * canvas().width()), qRound(place.y() * canvas().height())};
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QApplication::setActiveWindow(window.get()); // a dialog may have been active
        QTest::keyClick(window.get(), key, modifiers);
    }
    void undo() { key(Qt::Key_Z, Qt::ControlModifier); }
    void redo() { key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); }

    void drag(const QPoint& from, const QPoint& to) {
        mouse().Move(from);
        mouse().Press(from);
        for (int part = 1; part <= 4; ++part)
            mouse().Move(from + (to - from) * part / 4);
        mouse().Release(to);
    }
    Mouse& mouse() { return *canvasMouse; }

    std::optional<Mouse> canvasMouse;
};

TEST_F(Undo, undoesAndRedoesADragAsOneStep) {
    const QPointF before = paths()[0].points[1];
    drag(at(0, 1), at(0, 1) + QPoint(20, 15));
    const QPointF after = paths()[0].points[1];
    ASSERT_NE(before.x(), after.x());
    undo();
    EXPECT_EQ(paths()[0].points[1].x(), before.x());
    EXPECT_EQ(paths()[0].points[1].y(), before.y());
    redo();
    EXPECT_EQ(paths()[0].points[1].x(), after.x());
    undo();
    key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(paths()[0].points[1].y(), after.y());
}

TEST_F(Undo, undoesDrawingStepByStep) {
    drawPath({{0.2, 0.2}, {0.4, 0.2}});
    ASSERT_EQ(paths().size(), 2U);
    undo();
    EXPECT_EQ(document().finishedCount(), 1) << "the double click";
    undo();
    EXPECT_EQ(paths()[1].points.size(), 1U) << "the second point";
    undo();
    EXPECT_EQ(paths().size(), 1U) << "the path";
    for (int step = 0; step < 3; ++step)
        redo();
    EXPECT_EQ(paths()[1].points.size(), 2U);
    EXPECT_EQ(document().finishedCount(), 2);
}

TEST_F(Undo, undoesTheDeleteButtons) {
    click("pushButton_deleteLast");
    ASSERT_EQ(paths()[0].points.size(), 2U);
    click("pushButton_deleteLast");
    ASSERT_TRUE(paths().empty());
    undo();
    undo();
    ASSERT_EQ(paths().size(), 1U);
    EXPECT_EQ(paths()[0].points.size(), 3U);
    EXPECT_EQ(paths()[0].lengths, (std::vector<int>{100, 101, 102}));
    EXPECT_EQ(document().finishedCount(), 1);
    click("pushButton_deleteAll");
    ASSERT_TRUE(paths().empty());
    undo();
    EXPECT_EQ(paths().size(), 1U);
    EXPECT_EQ(document().finishedCount(), 1);
}

TEST_F(Undo, undoesABatchSettingAsOneStep) {
    click("checkBox_batchSetting");
    type("lineEdit_lineSpace", "77");
    ASSERT_EQ(paths()[0].spaces, (std::vector<int>{77, 77, 77}));
    canvas().setFocus();
    undo();
    EXPECT_EQ(paths()[0].spaces, (std::vector<int>{120, 121, 122}));
    redo();
    EXPECT_EQ(paths()[0].spaces, (std::vector<int>{77, 77, 77}));
}

TEST_F(Undo, undoesTypingInAFieldAsOneStepAndShowsIt) {
    type("lineEdit_lineLength", "345");
    ASSERT_EQ(paths()[0].lengths[0], 345);
    canvas().setFocus();
    undo();
    EXPECT_EQ(paths()[0].lengths[0], 100);
    EXPECT_EQ(text("lineEdit_lineLength"), "100");
    redo();
    EXPECT_EQ(paths()[0].lengths[0], 345);
    EXPECT_EQ(text("lineEdit_lineLength"), "345");
}

TEST_F(Undo, leavingAFieldEndsTheStep) {
    type("lineEdit_lineLength", "3");
    canvas().setFocus();
    type("lineEdit_lineLength", "45");
    canvas().setFocus();
    undo();
    EXPECT_EQ(paths()[0].lengths[0], 3);
    undo();
    EXPECT_EQ(paths()[0].lengths[0], 100);
}

TEST_F(Undo, focusedFieldUndoesItsOwnTypingFirst) {
    drag(at(0, 1), at(0, 1) + QPoint(20, 15));
    const QPointF dragged = paths()[0].points[1];
    auto& field = find<QLineEdit>("lineEdit_lineLength");
    type("lineEdit_lineLength", "345");
    while (field.isUndoAvailable())
        QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(text("lineEdit_lineLength"), "100");
    EXPECT_EQ(paths()[0].lengths[0], 100);
    EXPECT_EQ(paths()[0].points[1].x(), dragged.x()) << "the field could undo its typing";
    QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(paths()[0].points[1].x(), dragged.x()) << "now the document undoes";
    QTest::keyClick(&field, Qt::Key_Y, Qt::ControlModifier);
}

TEST_F(Undo, focusedSpinBoxLeavesUndoToTheDocument) {
    const QPointF before = paths()[0].points[1];
    drag(at(0, 1), at(0, 1) + QPoint(20, 15));
    auto& box = find<QSpinBox>("spinBox_segmentId");
    box.setFocus();
    ASSERT_TRUE(box.hasFocus());
    QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(paths()[0].points[1].x(), before.x());
}

TEST_F(Undo, doesNothingWhileTheButtonIsDown) {
    drag(at(0, 1), at(0, 1) + QPoint(20, 15));
    const QPoint point = at(0, 2);
    mouse().Move(point);
    mouse().Press(point);
    mouse().Move(point - QPoint(30, 0));
    const QPointF held = paths()[0].points[2];
    const QPointF other = paths()[0].points[1];
    undo();
    EXPECT_EQ(paths()[0].points[2].x(), held.x());
    EXPECT_EQ(paths()[0].points[1].x(), other.x());
    mouse().Release(point - QPoint(30, 0));
    undo();
    EXPECT_EQ(at(0, 2), point) << "the complete drag";
    EXPECT_EQ(paths()[0].points[1].x(), other.x());
}

TEST_F(Undo, moveWithTwoButtonsHeldContinuesTheDrag) {
    const QPoint point = at(0, 1);
    mouse().Move(point);
    mouse().Press(point);
    mouse().Press(point, Qt::RightButton);
    mouse().Move(point + QPoint(10, 10));
    EXPECT_EQ(at(0, 1), point + QPoint(10, 10));
    mouse().Release(point + QPoint(10, 10), Qt::RightButton);
    mouse().Release(point + QPoint(10, 10));
    undo();
    EXPECT_EQ(at(0, 1), point);
}

TEST_F(Undo, resetsThePointUnderTheCursorAndTheRubberBand) {
    drag(at(0, 1), at(0, 1) + QPoint(20, 15));
    ASSERT_FALSE(canvas().editingState().dragPoint.isNull());
    undo();
    EXPECT_TRUE(canvas().editingState().dragPoint.isNull());
    EXPECT_TRUE(canvas().editingState().rubberPoint.isNull());
    EXPECT_EQ(canvas().editingState().hoverPath, 0);
    EXPECT_EQ(canvas().editingState().hoverPoint, 0);
}

TEST_F(Undo, keepsTheViewAndItsScale) {
    find<QSlider>("horizontalSlider_resizeImage").setValue(60);
    auto& bar = *find<QScrollArea>("scrollArea").horizontalScrollBar();
    click("pushButton_deleteLast");
    bar.setValue(bar.maximum() / 2);
    const QSize size = canvas().size();
    const int place = bar.value();
    undo();
    EXPECT_EQ(canvas().size(), size);
    EXPECT_EQ(bar.value(), place);
    EXPECT_EQ(text("label_scale"), "Scale:300%");
}

TEST_F(Undo, limitsTheSpinBoxesToExistingSegments) {
    drawPath({{0.2, 0.2}, {0.4, 0.2}, {0.4, 0.7}});
    typeNumber("spinBox_pathId", "2");
    typeNumber("spinBox_segmentId", "2");
    ASSERT_EQ(find<QSpinBox>("spinBox_segmentId").value(), 2);
    canvas().setFocus();
    undo(); // the double click
    undo(); // the third point
    EXPECT_EQ(find<QSpinBox>("spinBox_pathId").value(), 2);
    EXPECT_EQ(find<QSpinBox>("spinBox_segmentId").value(), 1);
    EXPECT_EQ(canvas().currentSegment(), 0);
    undo();
    undo();
    EXPECT_EQ(find<QSpinBox>("spinBox_pathId").value(), 1);
    EXPECT_EQ(canvas().currentPath(), 0);
    EXPECT_EQ(text("lineEdit_lineLength"), "100") << "the parameter of the newly selected segment";
    EXPECT_EQ(text("lineEdit_lineWidth"), "110");
}

TEST_F(Undo, refreshesTheRulerOnlyWhileItIsShown) {
    click("pushButton_deleteLast");
    ASSERT_EQ(paths()[0].rulerMarks.size(), 1U);
    undo();
    EXPECT_EQ(paths()[0].rulerMarks.size(), 2U);
    click("pushButton_getRuler");
    undo();
    redo();
    EXPECT_TRUE(paths()[0].rulerMarks.empty());
}

TEST_F(Undo, isEmptyAfterALoad) {
    click("pushButton_deleteLast");
    loadExternal(folder.Path("a.trk"));
    ASSERT_EQ(paths()[0].points.size(), 3U);
    undo();
    EXPECT_EQ(paths()[0].points.size(), 3U);
    EXPECT_FALSE(document().canRedo());
}

TEST_F(Undo, savingClearsTheModifiedMarkAndSavingACopyDoesNot) {
    const auto state = [this] { return text("label_state"); };
    EXPECT_EQ(state(), "");
    click("pushButton_deleteLast");
    EXPECT_EQ(state(), "Unsaved");
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    operate("Save As");
    EXPECT_EQ(state(), "Unsaved");
    undo();
    EXPECT_EQ(state(), "");
    redo();
    std::filesystem::create_directories(kTracks);
    operate("Save");
    ASSERT_EQ(status(), "Save successfully.");
    EXPECT_FALSE(document().isModified());
    undo();
    EXPECT_EQ(state(), "Unsaved");
    EXPECT_TRUE(document().isModified());
}

} // namespace
