#include "canvas/PathEditor.h"

#include "CanvasPaths.h"

#include <gtest/gtest.h>

namespace {

class PathEditorTest : public ::testing::Test {
  protected:
    /// A path drawn point by point and closed.
    void Draw(const std::vector<QPointF>& pixels) {
        editor.Press(kScale, pixels.front());
        for (const QPointF& pixel : pixels)
            editor.Release(kScale, pixel);
        editor.DoubleClick();
    }
    [[nodiscard]] const std::vector<TrackPath>& Paths() const { return document.paths(); }

    TrackDocument document;
    PathEditor editor{document};
};

TEST_F(PathEditorTest, startsIdle) {
    const EditingState& state = editor.State();
    EXPECT_EQ(document.finishedCount(), 0);
    EXPECT_EQ(state.hoverPath, 0);
    EXPECT_EQ(state.hoverPoint, 0);
    EXPECT_TRUE(state.rubberPoint.isNull());
    EXPECT_TRUE(state.dragPoint.isNull());
    EXPECT_EQ(state.currentPath, 0);
    EXPECT_EQ(state.currentSegment, 0);
    EXPECT_TRUE(Paths().empty());
}

TEST_F(PathEditorTest, releaseWithoutAPathDoesNothing) {
    EXPECT_FALSE(editor.Release(kScale, {50.0, 50.0}));
    EXPECT_TRUE(Paths().empty());
}

TEST_F(PathEditorTest, resetsTheCursor) {
    Draw({{50.0, 50.0}, {150.0, 50.0}});
    Draw({{50.0, 150.0}, {150.0, 150.0}, {200.0, 150.0}});
    editor.Drag(kScale, {300.0, 200.0});
    editor.Hover(kScale, {150.0, 150.0});
    editor.SetCurrentPath(1);
    ASSERT_EQ(editor.State().hoverPath, 1);
    editor.ForgetCursor();
    EXPECT_EQ(editor.State().hoverPath, 0);
    EXPECT_EQ(editor.State().hoverPoint, 0);
    EXPECT_TRUE(editor.State().dragPoint.isNull());
    EXPECT_TRUE(editor.State().rubberPoint.isNull());
    EXPECT_EQ(editor.State().currentPath, 1);
}

TEST_F(PathEditorTest, resetClearsTheSelectedSegmentToo) {
    Draw({{50.0, 50.0}, {150.0, 50.0}});
    editor.Drag(kScale, {300.0, 200.0});
    editor.SetCurrentPath(3);
    editor.SetCurrentSegment(4);
    editor.Reset();
    EXPECT_TRUE(editor.State().rubberPoint.isNull());
    EXPECT_EQ(editor.State().currentPath, 0);
    EXPECT_EQ(editor.State().currentSegment, 0);
}

TEST_F(PathEditorTest, dragOfARemovedPointChangesNoPath) {
    Draw({{50.0, 50.0}, {150.0, 50.0}});
    editor.Hover(kScale, {150.0, 50.0});
    document.resetPaths();
    editor.Drag(kScale, {200.0, 200.0});
    editor.Release(kScale, {200.0, 200.0});
    EXPECT_TRUE(Paths().empty());
}

TEST_F(PathEditorTest, dragIsOneUndoStep) {
    Draw({{50.0, 50.0}, {150.0, 50.0}});
    editor.Hover(kScale, {150.0, 50.0});
    document.endGesture();
    for (const double x : {160.0, 170.0, 180.0})
        editor.Drag(kScale, {x, 60.0});
    editor.Release(kScale, {185.0, 60.0});
    document.undo();
    EXPECT_EQ(Paths()[0].points[1].x(), 150.0 / 400.0);
    EXPECT_EQ(Paths()[0].points[1].y(), 50.0 / 300.0);
    document.redo();
    EXPECT_EQ(Paths()[0].points[1].x(), 185.0 / 400.0);
}

} // namespace
