#include "canvas/PathEditor.h"

#include "CanvasPaths.h"

#include <gtest/gtest.h>

namespace {

const QSize kImage{400, 300}; // shown at 100 %

/// Two closed paths, of three and of two points, edited without the mouse.
class PathKeys : public ::testing::Test {
  protected:
    PathKeys() {
        QObject::connect(&document, &TrackDocument::pathsChanged,
                         [this](const PathsChange& change) { editor.Follow(change); });
        Draw({{50, 50}, {150, 50}, {150, 150}});
        Draw({{200, 200}, {300, 200}});
        editor.LetGo();
    }

    void Draw(const std::vector<QPointF>& pixels) {
        for (const QPointF& pixel : pixels)
            editor.AddPoint(kScale, pixel);
        document.closeAllPaths();
    }
    [[nodiscard]] const std::vector<TrackPath>& Paths() const { return document.paths(); }
    [[nodiscard]] QPointF Point(int path, int point) const {
        return Paths().at(static_cast<std::size_t>(path)).points.at(static_cast<std::size_t>(point));
    }
    static QPointF Place(double x, double y) { return kScale.toNormalized({x, y}); }
    bool Nudge(int x, int y) { return editor.MoveTouched(kScale, {x, y}, kImage); }

    TrackDocument document;
    PathEditor editor{document};
};

TEST_F(PathKeys, addsPointsAsClicksDo) {
    ASSERT_EQ(Paths().size(), 2U);
    EXPECT_EQ(Point(0, 2), Place(150, 150));
    EXPECT_EQ(document.finishedCount(), 2);
    EXPECT_FALSE(editor.AddPoint(kScale, {152, 50})) << "a point exists and does not move";
    EXPECT_EQ(Point(0, 1), Place(150, 50));
    EXPECT_TRUE(editor.AddPoint(kScale, {350, 250}));
    EXPECT_EQ(Paths().size(), 3U);
    EXPECT_EQ(editor.TouchedPoint(), (PointIndex{2, 0}));
}

TEST_F(PathKeys, movesNothingWithoutATouchedPoint) {
    EXPECT_FALSE(editor.TouchedPoint());
    EXPECT_FALSE(Nudge(10, 0));
    EXPECT_FALSE(editor.RemoveTouched());
}

TEST_F(PathKeys, movesThePointUnderTheCursorByTenthsOfAnImagePixel) {
    editor.Hover(kScale, {151, 51});
    const int steps = document.undoDepth();
    EXPECT_TRUE(Nudge(10, 0));
    EXPECT_EQ(Point(0, 1), Place(151, 50));
    EXPECT_TRUE(Nudge(0, -100));
    EXPECT_EQ(Point(0, 1), Place(151, 40));
    EXPECT_TRUE(Nudge(-1, 0));
    EXPECT_DOUBLE_EQ(Point(0, 1).x(), 150.9 / 400);
    EXPECT_EQ(document.undoDepth(), steps + 3) << "one step each";
    EXPECT_EQ(editor.State().dragPoint, Point(0, 1)) << "the grip is removed too";
    document.undo();
    document.undo();
    EXPECT_EQ(Point(0, 1), Place(151, 50));
}

TEST_F(PathKeys, tenTenthsAreExactlyOnePixel) {
    editor.Hover(kScale, {150, 50});
    for (int tenth = 0; tenth < 70; ++tenth)
        Nudge(1, 1);
    EXPECT_EQ(Point(0, 1).x(), Place(157, 57).x());
    EXPECT_EQ(Point(0, 1).y(), Place(157, 57).y());
}

TEST_F(PathKeys, movedPointStopsAtTheMouseMargin) {
    editor.Hover(kScale, {150, 50});
    for (int step = 0; step < 10; ++step)
        Nudge(0, -100);
    EXPECT_EQ(Point(0, 1).y(), kScale.toNormalized(kScale.ClampToMargin({150, 0})).y());
    for (int step = 0; step < 40; ++step)
        Nudge(100, 0);
    EXPECT_EQ(Point(0, 1).x(), kScale.toNormalized(kScale.ClampToMargin({400, 0})).x());
}

TEST_F(PathKeys, pointInTheMarginMovesInwardsOnly) {
    editor.AddPoint(kScale, {3, 100}); // its first point is at the press position
    document.closeAllPaths();
    editor.LetGo();
    while (editor.ChoosePoint(1) && editor.TouchedPoint() != PointIndex{2, 0}) {
    }
    ASSERT_EQ(Point(2, 0), Place(3, 100));
    Nudge(-10, 0);
    EXPECT_EQ(Point(2, 0), Place(3, 100));
    Nudge(10, 0);
    EXPECT_EQ(Point(2, 0), Place(4, 100));
}

TEST_F(PathKeys, removesTheTouchedPointOrItsPathOfFewerThanThree) {
    editor.Hover(kScale, {150, 50});
    EXPECT_TRUE(editor.RemoveTouched());
    EXPECT_EQ(Paths().at(0).points.size(), 2U);
    EXPECT_EQ(Point(0, 1), Place(150, 150));
    EXPECT_FALSE(editor.RemoveTouched()) << "no point is touched any more";
    editor.Hover(kScale, {200, 200});
    EXPECT_TRUE(editor.RemoveTouched());
    EXPECT_EQ(Paths().size(), 1U);
}

TEST_F(PathKeys, splitsTheSegmentUnderTheCursor) {
    document.setParameter({0, 1}, SegmentParameter::Width, 7);
    EXPECT_TRUE(editor.SplitSegment(kScale, QPointF(152, 90)));
    EXPECT_EQ(Paths().at(0).points.size(), 4U);
    EXPECT_EQ(Point(0, 2), Place(150, 90));
    EXPECT_EQ(Paths().at(0).widths, (std::vector<int>{50, 7, 7, 50}));
    EXPECT_EQ(editor.TouchedPoint(), (PointIndex{0, 2}));
}

TEST_F(PathKeys, halvesTheSelectedSegmentWithoutACursor) {
    editor.SetCurrentPath(1);
    EXPECT_TRUE(editor.SplitSegment(kScale, std::nullopt));
    EXPECT_EQ(Point(1, 1), Place(250, 200));
    editor.SetCurrentSegment(5);
    EXPECT_FALSE(editor.SplitSegment(kScale, std::nullopt)) << "there is no such segment";
}

TEST_F(PathKeys, selectsPointAfterPointAndStopsAtTheEnds) {
    editor.SetCurrentSegment(1);
    std::vector<PointIndex> visited;
    while (editor.ChoosePoint(1))
        visited.push_back(*editor.TouchedPoint());
    EXPECT_EQ(visited, (std::vector<PointIndex>{{0, 1}, {0, 2}, {1, 0}, {1, 1}}));
    visited.clear();
    while (editor.ChoosePoint(-1))
        visited.push_back(*editor.TouchedPoint());
    EXPECT_EQ(visited, (std::vector<PointIndex>{{1, 0}, {0, 2}, {0, 1}, {0, 0}}));
    EXPECT_EQ(editor.State().dragPoint, Point(0, 0));
}

TEST_F(PathKeys, pressAtARestingCursorDoesNotDragThePointSelectedByKey) {
    editor.Hover(kScale, {350, 250});
    ASSERT_TRUE(editor.ChoosePoint(1));
    const QPointF chosen = Point(0, 0);
    editor.Press(kScale, {350, 250});
    editor.Release(kScale, {350, 250});
    EXPECT_EQ(Point(0, 0), chosen);
    EXPECT_EQ(Paths().size(), 3U) << "it began a path";
}

TEST_F(PathKeys, cancelledDragRestoresThePointWithoutAnUndoStep) {
    editor.Hover(kScale, {150, 50});
    document.endGesture();
    const int steps = document.undoDepth();
    const auto revision = document.revision();
    editor.Press(kScale, {150, 50});
    editor.Drag(kScale, {170, 70});
    editor.Drag(kScale, {190, 90});
    EXPECT_TRUE(editor.GiveUpGesture());
    EXPECT_EQ(Point(0, 1), Place(150, 50));
    EXPECT_EQ(document.undoDepth(), steps);
    EXPECT_EQ(document.revision(), revision);
    EXPECT_FALSE(editor.Drag(kScale, {200, 100}));
    EXPECT_FALSE(editor.Release(kScale, {200, 100}));
    EXPECT_EQ(Point(0, 1), Place(150, 50));
    EXPECT_EQ(Paths().at(1).points.size(), 2U);
}

TEST_F(PathKeys, cancelledRubberBandAddsNoPoint) {
    editor.Press(kScale, {20, 250});
    editor.Drag(kScale, {100, 250});
    EXPECT_FALSE(editor.GiveUpGesture());
    EXPECT_TRUE(editor.State().rubberPoint.isNull());
    EXPECT_FALSE(editor.Release(kScale, {100, 250}));
    EXPECT_EQ(Paths().back().points.size(), 1U);
    editor.Press(kScale, {100, 250});
    EXPECT_TRUE(editor.Release(kScale, {100, 250})) << "the next click works normally";
}

TEST_F(PathKeys, resetsTheTouchedPointWhenIndexesShift) {
    ASSERT_TRUE(editor.ChoosePoint(1));
    editor.ForgetCursor();
    ASSERT_TRUE(editor.TouchedPoint());
    document.removePoint({0, 0});
    EXPECT_FALSE(editor.TouchedPoint());
}

} // namespace
