#include "OperatingTest.h"

#include <filesystem>

namespace {

using CanvasKeysTest = OperatingTest;

TEST_F(CanvasKeysTest, arrowsMoveThePointUnderTheCursorByMapPixels) {
    mouse().Move(at(0, 1));
    const QPointF before = point(0, 1);
    key(Qt::Key_Right);
    EXPECT_DOUBLE_EQ(point(0, 1).x(), before.x() + 1.0 / 400);
    key(Qt::Key_Down);
    EXPECT_DOUBLE_EQ(point(0, 1).y(), before.y() + 1.0 / 300);
    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(point(0, 1).x(), before.x() - 9.0 / 400);
    key(Qt::Key_Up, Qt::AltModifier);
    EXPECT_DOUBLE_EQ(point(0, 1).y(), before.y() + 0.9 / 300);
}

TEST_F(CanvasKeysTest, eachKeyIsOneUndoStep) {
    mouse().Move(at(0, 1));
    const QPointF before = point(0, 1);
    const int steps = document().undoDepth();
    key(Qt::Key_Right);
    key(Qt::Key_Right);
    EXPECT_EQ(document().undoDepth(), steps + 2);
    undo();
    undo();
    EXPECT_EQ(point(0, 1).x(), before.x());
    EXPECT_EQ(document().undoDepth(), steps);
}

TEST_F(CanvasKeysTest, arrowsMoveThePointDraggedLast) {
    mouse().Move(at(0, 1));
    mouse().Press(at(0, 1));
    const QPoint to = at(0, 1) + QPoint(16, 12);
    mouse().Move(to);
    mouse().Release(to);
    mouse().Move({400.0, 30.0});
    const QPointF dragged = point(0, 1);
    key(Qt::Key_Right);
    EXPECT_DOUBLE_EQ(point(0, 1).x(), dragged.x() + 1.0 / 400);
}

TEST_F(CanvasKeysTest, arrowsScrollWithoutAPoint) {
    showPercent(300);
    scrollTo(300, 200);
    mouse().Move({310.0, 210.0});
    const int steps = document().undoDepth();
    key(Qt::Key_Right);
    EXPECT_EQ(area().horizontalScrollBar()->value(), 300 + area().horizontalScrollBar()->singleStep());
    key(Qt::Key_Up);
    EXPECT_EQ(area().verticalScrollBar()->value(), 200 - area().verticalScrollBar()->singleStep());
    EXPECT_EQ(document().undoDepth(), steps);
}

TEST_F(CanvasKeysTest, scrollsAMovedPointIntoView) {
    showPercent(400);
    scrollTo(0, 0);
    key(Qt::Key_P);
    key(Qt::Key_P); // the second point, in the middle
    key(Qt::Key_Right);
    EXPECT_TRUE(area().viewport()->rect().contains(at(0, 1) + canvas().pos()));
}

TEST_F(CanvasKeysTest, deleteRemovesThePointUnderTheCursor) {
    mouse().Move(at(0, 1));
    const QPointF last = point(0, 2);
    key(Qt::Key_Delete);
    ASSERT_EQ(paths().at(0).points.size(), 2U);
    EXPECT_EQ(point(0, 1), last);
    EXPECT_EQ(paths()[0].lengths, (std::vector<int>{100, 102}));
    mouse().Move(at(0, 0));
    key(Qt::Key_Delete);
    EXPECT_TRUE(paths().empty()) << "a path of two points goes with either of them";
    undo();
    undo();
    EXPECT_EQ(paths().at(0).lengths, (std::vector<int>{100, 101, 102}));
}

TEST_F(CanvasKeysTest, insertAddsAPointToTheSegmentUnderTheCursor) {
    const QPoint middle = (at(0, 1) + at(0, 2)) / 2;
    mouse().Move(middle + QPoint(0, 3));
    key(Qt::Key_Insert);
    ASSERT_EQ(paths().at(0).points.size(), 4U);
    EXPECT_DOUBLE_EQ(point(0, 2).y(), 0.5);
    EXPECT_NEAR(point(0, 2).x() * canvas().width(), middle.x(), 0.5);
    EXPECT_EQ(paths()[0].lengths, (std::vector<int>{100, 101, 101, 102}));
    EXPECT_EQ(paths()[0].widths, (std::vector<int>{110, 111, 111, 112}));
    EXPECT_EQ(paths()[0].spaces, (std::vector<int>{120, 121, 121, 122}));
    undo();
    EXPECT_EQ(paths()[0].points.size(), 3U);
}

TEST_F(CanvasKeysTest, ctrlClickOnASegmentOnlyAddsAPointToIt) {
    mouse().Click({60.0, 60.0}); // a path is open
    const QPoint middle = (at(0, 0) + at(0, 1)) / 2;
    const int steps = document().undoDepth();
    QTest::mouseMove(&canvas(), middle);
    QTest::mouseClick(&canvas(), Qt::LeftButton, Qt::ControlModifier, middle);
    EXPECT_EQ(paths().at(0).points.size(), 4U);
    EXPECT_EQ(paths().at(1).points.size(), 1U) << "the release adds no point";
    EXPECT_EQ(document().undoDepth(), steps + 1);
    EXPECT_EQ(document().finishedCount(), 1) << "the open path stays open";
}

TEST_F(CanvasKeysTest, ctrlClickOffTheSegmentsIsAPlainClick) {
    QTest::mouseClick(&canvas(), Qt::LeftButton, Qt::ControlModifier, QPoint(60, 60));
    EXPECT_EQ(paths().size(), 2U);
}

TEST_F(CanvasKeysTest, backspaceDeletesTheLastPoint) {
    key(Qt::Key_Backspace);
    EXPECT_EQ(paths().at(0).points.size(), 2U);
    key(Qt::Key_Backspace);
    EXPECT_TRUE(paths().empty());
}

TEST_F(CanvasKeysTest, enterClosesAllOpenPathsInOneUndoStep) {
    loadExternal(folder.Path("a.trk"));
    ASSERT_EQ(document().finishedCount(), 0) << "a loaded path is open";
    canvas().setFocus();
    key(Qt::Key_Return);
    EXPECT_EQ(document().finishedCount(), 1);
    EXPECT_EQ(document().undoDepth(), 1);
    mouse().Click({60.0, 60.0});
    ASSERT_EQ(paths().size(), 2U);
    key(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(document().finishedCount(), 2);
}

TEST_F(CanvasKeysTest, escapePutsADraggedPointBackWithoutAnUndoStep) {
    const QPointF before = point(0, 1);
    const int steps = document().undoDepth();
    mouse().Move(at(0, 1));
    mouse().Press(at(0, 1));
    mouse().Move({300.0, 50.0});
    ASSERT_NE(point(0, 1), before);
    key(Qt::Key_Escape);
    EXPECT_EQ(point(0, 1).x(), before.x());
    EXPECT_EQ(point(0, 1).y(), before.y());
    mouse().Move({350.0, 50.0});
    mouse().Release({350.0, 50.0});
    EXPECT_EQ(point(0, 1), before);
    EXPECT_EQ(paths().at(0).points.size(), 3U);
    EXPECT_EQ(document().undoDepth(), steps);
}

TEST_F(CanvasKeysTest, escapeCancelsTheRubberBand) {
    mouse().Press({60.0, 60.0});
    mouse().Move({200.0, 60.0});
    ASSERT_FALSE(canvas().editingState().rubberPoint.isNull());
    key(Qt::Key_Escape);
    EXPECT_TRUE(canvas().editingState().rubberPoint.isNull());
    mouse().Release({200.0, 60.0});
    EXPECT_EQ(paths().at(1).points.size(), 1U);
}

TEST_F(CanvasKeysTest, nKeySelectsNextSegmentAndUpdatesSpinBoxes) {
    drawPath({{0.1, 0.1}, {0.2, 0.1}});
    canvas().setFocus();
    const auto chosen = [this] {
        EXPECT_EQ(canvas().currentPath() + 1, find<QSpinBox>("spinBox_pathId").value());
        EXPECT_EQ(canvas().currentSegment() + 1, find<QSpinBox>("spinBox_segmentId").value());
        return std::pair(find<QSpinBox>("spinBox_pathId").value(),
                         find<QSpinBox>("spinBox_segmentId").value());
    };
    ASSERT_EQ(chosen(), std::pair(1, 1));
    key(Qt::Key_N);
    EXPECT_EQ(chosen(), std::pair(1, 2));
    EXPECT_EQ(text("lineEdit_lineLength"), "101");
    key(Qt::Key_N);
    EXPECT_EQ(chosen(), std::pair(2, 1));
    key(Qt::Key_N);
    EXPECT_EQ(chosen(), std::pair(2, 1)) << "the last";
    key(Qt::Key_N, Qt::ShiftModifier);
    key(Qt::Key_N, Qt::ShiftModifier);
    EXPECT_EQ(chosen(), std::pair(1, 1));
    key(Qt::Key_N, Qt::ShiftModifier);
    EXPECT_EQ(chosen(), std::pair(1, 1)) << "the first";
    click("checkBox_batchSetting");
    canvas().setFocus();
    key(Qt::Key_N);
    EXPECT_EQ(chosen(), std::pair(1, 1)) << "batch mode has no segment to select";
}

TEST_F(CanvasKeysTest, fieldsShowTheSelectedSegmentAfterAnEdit) {
    key(Qt::Key_N);
    ASSERT_EQ(text("lineEdit_lineLength"), "101");
    mouse().Move(at(0, 1));
    key(Qt::Key_Delete);
    EXPECT_EQ(find<QSpinBox>("spinBox_segmentId").value(), 1);
    EXPECT_EQ(text("lineEdit_lineLength"), "100");
    key(Qt::Key_Escape);
    mouse().Move({400.0, 30.0});
    key(Qt::Key_Insert);
    EXPECT_EQ(paths().at(0).lengths, (std::vector<int>{100, 100, 102})) << "the selected segment is halved";
}

TEST_F(CanvasKeysTest, keysDoNothingWhileTheButtonIsDown) {
    mouse().Move(at(0, 1));
    mouse().Press(at(0, 1));
    const auto before = paths().at(0).points;
    for (const int code :
         {Qt::Key_Right, Qt::Key_Delete, Qt::Key_Insert, Qt::Key_Backspace, Qt::Key_N, Qt::Key_P, Qt::Key_A})
        key(code);
    EXPECT_EQ(paths().at(0).points, before);
    EXPECT_EQ(canvas().currentSegment(), 0);
    EXPECT_EQ(paths().size(), 1U);
    mouse().Release(at(0, 1));
}

TEST_F(CanvasKeysTest, keysTypedInAFieldGoToTheField) {
    type("lineEdit_lineLength", "123");
    auto& field = find<QLineEdit>("lineEdit_lineLength");
    QTest::keyClick(&field, Qt::Key_Backspace);
    QTest::keyClick(&field, Qt::Key_Delete);
    EXPECT_EQ(field.text(), QStringLiteral("12"));
    EXPECT_EQ(paths().at(0).points.size(), 3U);
}

TEST_F(CanvasKeysTest, keysDoNothingWithoutATrack) {
    closeWindow();
    openWindow();
    QApplication::setActiveWindow(window.get());
    canvas().setFocus();
    for (const int code : {Qt::Key_Right, Qt::Key_Delete, Qt::Key_Insert, Qt::Key_Backspace, Qt::Key_Return,
                           Qt::Key_Escape, Qt::Key_N, Qt::Key_P, Qt::Key_A, Qt::Key_Space})
        key(code);
    EXPECT_TRUE(paths().empty());
    expectNoBox();
}

TEST_F(CanvasKeysTest, f6MovesFocusFromAFieldToTheCanvas) {
    find<QLineEdit>("lineEdit_lineLength").setFocus();
    QTest::keyClick(&find<QLineEdit>("lineEdit_lineLength"), Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), &canvas());
}

TEST_F(CanvasKeysTest, addKeyAddsAPointAtTheCursorOrTheViewCentre) {
    mouse().Move({60.0, 60.0});
    key(Qt::Key_A);
    ASSERT_EQ(paths().size(), 2U);
    EXPECT_EQ(point(1, 0), normalised(60, 60));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&canvas(), &leave);
    key(Qt::Key_A);
    ASSERT_EQ(paths().at(1).points.size(), 2U);
    const QPoint middle =
        area().viewport()->rect().intersected(canvas().geometry()).center() - canvas().pos();
    EXPECT_EQ(point(1, 1), normalised(middle.x(), middle.y()));
}

/// The file that a save writes after edits on a fresh copy of the track.
class SameWork : public OperatingTest {
  protected:
    std::string saved() {
        std::filesystem::create_directories(kTracks);
        operate("Save");
        EXPECT_EQ(status(), "Save successfully.");
        std::string content = FileContent(kTracks + "a.trk");
        closeWindow();
        openTrack();
        return content;
    }
};

TEST_F(SameWork, byMouseAndByKeysGivesEqualFiles) {
    // A point dragged, one inserted, one removed, and a path of two points drawn and closed.
    const QPoint start = at(0, 1);
    mouse().Move(start);
    mouse().Press(start);
    mouse().Move(start + QPoint(20, 5));
    mouse().Release(start + QPoint(20, 5));
    mouse().Move(QPoint(300, 150));
    QTest::mouseClick(&canvas(), Qt::LeftButton, Qt::ControlModifier, QPoint(300, 150));
    click("pushButton_deleteLast");
    mouse().Click({60.0, 60.0});
    mouse().Click({160.0, 80.0});
    mouse().DoubleClick({160.0, 80.0});
    const std::string byMouse = saved();

    mouse().Move(at(0, 1));
    key(Qt::Key_Right, Qt::ShiftModifier); // 20 widget pixels: the map is stretched to twice its width
    for (int pixel = 0; pixel < 5; ++pixel)
        key(Qt::Key_Down);
    mouse().Move(QPoint(300, 150));
    key(Qt::Key_Insert);
    key(Qt::Key_Backspace);
    mouse().Move({60.0, 60.0});
    key(Qt::Key_A);
    mouse().Move({160.0, 80.0});
    key(Qt::Key_A);
    key(Qt::Key_Return);
    EXPECT_TRUE(saved() == byMouse);
}

} // namespace
