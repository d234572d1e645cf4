#include "canvas/PathEditor.h"

#include <gtest/gtest.h>

namespace {

const CanvasScale kScale{QSize(400, 300)};

/// A path drawn point by point and closed.
void Draw(PathEditor& editor, const std::vector<QPointF>& pixels) {
    editor.Press(kScale, pixels.front());
    for (const QPointF& pixel : pixels)
        editor.Release(kScale, pixel);
    editor.DoubleClick();
}

void ExpectListsAsLongAsPoints(const PathEditor& editor) {
    for (const TrackPath& path : editor.State().paths) {
        EXPECT_EQ(path.methods.size(), path.points.size());
        EXPECT_EQ(path.lengths.size(), path.points.size());
        EXPECT_EQ(path.widths.size(), path.points.size());
        EXPECT_EQ(path.spaces.size(), path.points.size());
    }
}

TEST(PathEditor, StartsEmptyAndIdle) {
    const PathEditor editor;
    const EditingState& state = editor.State();
    EXPECT_EQ(state.finishedCount, 0);
    EXPECT_EQ(state.hoverPath, 0);
    EXPECT_EQ(state.hoverPoint, 0);
    EXPECT_TRUE(state.rubberPoint.isNull());
    EXPECT_TRUE(state.dragPoint.isNull());
    EXPECT_EQ(state.currentPath, 0);
    EXPECT_EQ(state.currentSegment, 0);
    EXPECT_TRUE(state.paths.empty());
}

TEST(PathEditor, ANewPointGetsTheDefaultParameters) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}});
    const TrackPath& path = editor.State().paths.at(0);
    EXPECT_EQ(path.methods, (std::vector<int>{1, 1}));
    EXPECT_EQ(path.lengths, (std::vector<int>{100, 100}));
    EXPECT_EQ(path.widths, (std::vector<int>{50, 50}));
    EXPECT_EQ(path.spaces, (std::vector<int>{100, 100}));
    EXPECT_TRUE(path.rulerMarks.empty());
}

TEST(PathEditor, AReleaseWithoutAPathDoesNothing) {
    PathEditor editor;
    EXPECT_FALSE(editor.Release(kScale, {50.0, 50.0}));
    EXPECT_TRUE(editor.State().paths.empty());
}

TEST(PathEditor, DeleteLastWithoutPathsDoesNothingAtAll) {
    PathEditor editor;
    editor.Drag(kScale, {50.0, 50.0});
    editor.DeleteLast();
    EXPECT_FALSE(editor.State().rubberPoint.isNull());
}

TEST(PathEditor, DeleteLastOnTwoPointsRemovesThePath) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}});
    editor.DeleteLast();
    EXPECT_TRUE(editor.State().paths.empty());
    EXPECT_EQ(editor.State().finishedCount, 0);
}

TEST(PathEditor, DeleteLastOnThreePointsLeavesTwoAndTheirMarks) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}, {150.0, 150.0}});
    editor.PathsForMarks().at(0).rulerMarks.resize(2);
    editor.DeleteLast();
    ASSERT_EQ(editor.State().paths.size(), 1U);
    EXPECT_EQ(editor.State().paths[0].points.size(), 2U);
    EXPECT_EQ(editor.State().paths[0].rulerMarks.size(), 2U);
    EXPECT_EQ(editor.State().finishedCount, 1);
    ExpectListsAsLongAsPoints(editor);
}

TEST(PathEditor, DeleteLastOfAWholePathClosesEveryOther) {
    PathEditor editor;
    editor.TakePaths({TrackPath{{{0.1, 0.1}, {0.2, 0.2}}, {1, 1}, {1, 1}, {1, 1}, {1, 1}, {}},
                      TrackPath{{{0.3, 0.3}, {0.4, 0.4}}, {1, 1}, {1, 1}, {1, 1}, {1, 1}, {}},
                      TrackPath{{{0.5, 0.5}}, {1}, {1}, {1}, {1}, {}}});
    ASSERT_EQ(editor.State().finishedCount, 0);
    editor.DeleteLast();
    EXPECT_EQ(editor.State().paths.size(), 2U);
    EXPECT_EQ(editor.State().finishedCount, 2);
}

TEST(PathEditor, DeleteLastForgetsTheCursor) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}});
    Draw(editor, {{50.0, 150.0}, {150.0, 150.0}, {200.0, 150.0}});
    editor.Drag(kScale, {300.0, 200.0});
    editor.Hover(kScale, {150.0, 150.0});
    ASSERT_EQ(editor.State().hoverPath, 1);
    editor.DeleteLast();
    EXPECT_EQ(editor.State().hoverPath, 0);
    EXPECT_EQ(editor.State().hoverPoint, 0);
    EXPECT_TRUE(editor.State().dragPoint.isNull());
    EXPECT_TRUE(editor.State().rubberPoint.isNull());
}

TEST(PathEditor, TakenPathsLeaveTheCountOfClosedOnes) {
    PathEditor editor;
    editor.TakePaths({TrackPath{{{0.1, 0.1}}, {1}, {1}, {1}, {1}, {}}});
    EXPECT_EQ(editor.State().finishedCount, 0);
}

TEST(PathEditor, ASegmentExistsBetweenTwoPoints) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}, {150.0, 150.0}});
    EXPECT_TRUE(editor.SegmentExists(0, 0));
    EXPECT_TRUE(editor.SegmentExists(0, 1));
    EXPECT_FALSE(editor.SegmentExists(0, 2));
    EXPECT_FALSE(editor.SegmentExists(1, 0));
    EXPECT_FALSE(PathEditor().SegmentExists(0, 0));
}

TEST(PathEditor, EachParameterGoesToItsOwnListAndSegment) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}, {150.0, 150.0}});
    editor.SetCurrentSegment(1);
    EXPECT_TRUE(editor.SetParameter(SegmentParameter::Method, 2));
    EXPECT_TRUE(editor.SetParameter(SegmentParameter::Length, 3));
    EXPECT_TRUE(editor.SetParameter(SegmentParameter::Width, 4));
    EXPECT_TRUE(editor.SetParameter(SegmentParameter::Space, 5));
    const TrackPath& path = editor.State().paths[0];
    EXPECT_EQ(path.methods, (std::vector<int>{1, 2, 1}));
    EXPECT_EQ(path.lengths, (std::vector<int>{100, 3, 100}));
    EXPECT_EQ(path.widths, (std::vector<int>{50, 4, 50}));
    EXPECT_EQ(path.spaces, (std::vector<int>{100, 5, 100}));
    EXPECT_EQ(editor.Parameter(SegmentParameter::Method), 2);
    EXPECT_EQ(editor.Parameter(SegmentParameter::Length), 3);
    EXPECT_EQ(editor.Parameter(SegmentParameter::Width), 4);
    EXPECT_EQ(editor.Parameter(SegmentParameter::Space), 5);
}

TEST(PathEditor, AParameterOfNoSegmentIsNotSet) {
    PathEditor editor;
    EXPECT_FALSE(editor.SetParameter(SegmentParameter::Length, 3));
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}});
    editor.SetCurrentSegment(1);
    EXPECT_FALSE(editor.SetParameter(SegmentParameter::Length, 3));
    editor.SetCurrentPath(1);
    editor.SetCurrentSegment(0);
    EXPECT_FALSE(editor.SetParameter(SegmentParameter::Length, 3));
    EXPECT_EQ(editor.State().paths[0].lengths, (std::vector<int>{100, 100}));
}

TEST(PathEditor, ABatchReachesTheLastPointsToo) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}});
    Draw(editor, {{50.0, 150.0}, {150.0, 150.0}, {150.0, 200.0}});
    editor.SetParameterEverywhere(SegmentParameter::Width, 7);
    EXPECT_EQ(editor.State().paths[0].widths, (std::vector<int>{7, 7}));
    EXPECT_EQ(editor.State().paths[1].widths, (std::vector<int>{7, 7, 7}));
    EXPECT_EQ(editor.State().paths[1].lengths, (std::vector<int>{100, 100, 100}));
}

TEST(PathEditor, ResetForgetsEverything) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}});
    Draw(editor, {{50.0, 150.0}, {150.0, 150.0}});
    editor.Drag(kScale, {300.0, 200.0});
    editor.Hover(kScale, {150.0, 150.0});
    ASSERT_EQ(editor.State().hoverPath, 1);
    editor.SetCurrentPath(3);
    editor.SetCurrentSegment(4);
    editor.Reset();
    EXPECT_EQ(editor.State().finishedCount, 0);
    EXPECT_EQ(editor.State().hoverPath, 0);
    EXPECT_EQ(editor.State().hoverPoint, 0);
    EXPECT_TRUE(editor.State().rubberPoint.isNull());
    EXPECT_EQ(editor.State().currentPath, 0);
    EXPECT_EQ(editor.State().currentSegment, 0);
    EXPECT_TRUE(editor.State().dragPoint.isNull());
    EXPECT_TRUE(editor.State().paths.empty());
}

TEST(PathEditor, ADragOfAPointThatIsGoneChangesNoPath) {
    PathEditor editor;
    Draw(editor, {{50.0, 50.0}, {150.0, 50.0}});
    editor.Hover(kScale, {150.0, 50.0});
    editor.TakePaths({});
    editor.Drag(kScale, {200.0, 200.0});
    editor.Release(kScale, {200.0, 200.0});
    EXPECT_TRUE(editor.State().paths.empty());
}

} // namespace
