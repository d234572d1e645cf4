#include "CanvasFixture.h"

#include <QTest>

namespace {

using CanvasMouse = CanvasTest;

TEST_F(CanvasMouse, tracksTheMouseWithoutAButton) {
    EXPECT_TRUE(window.canvas->hasMouseTracking());
    EXPECT_TRUE(window.canvas->testAttribute(Qt::WA_MouseTracking));
}

TEST_F(CanvasMouse, ignoresEverythingWithoutAnImage) {
    window.canvas->clear();
    mouse.Draw({{50, 50}, {150, 50}});
    EXPECT_TRUE(Paths().empty());
    EXPECT_EQ(Document().finishedCount(), 0);
    mouse.Press({50, 50});
    mouse.Move({100, 100});
    EXPECT_TRUE(State().rubberPoint.isNull());
}

TEST_F(CanvasMouse, eachHandlerIgnoresEventsAfterTheImageWasRemoved) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Click({50, 200});
    mouse.Move({150, 50});
    ASSERT_FALSE(State().dragPoint.isNull());
    window.canvas->clear();
    mouse.Move({300, 200});
    EXPECT_FALSE(State().dragPoint.isNull());
    mouse.DoubleClick({300, 200});
    EXPECT_EQ(Document().finishedCount(), 1);
    EXPECT_EQ(At(0, 1), QPointF(150, 50));
}

TEST_F(CanvasMouse, clickWithoutMovingStartsAPathOfOnePoint) {
    QTest::mouseClick(window.canvas, Qt::LeftButton, {}, {120, 80});
    ASSERT_EQ(Paths().size(), 1U);
    EXPECT_EQ(Paths()[0].points.size(), 1U);
    EXPECT_EQ(At(0, 0), QPointF(120, 80));
    EXPECT_EQ(Document().finishedCount(), 0);
}

TEST_F(CanvasMouse, releaseExactlyFivePixelsAwayAddsNothing) {
    mouse.Press({120, 80});
    mouse.Release({125, 80});
    EXPECT_EQ(Paths().at(0).points.size(), 1U);
    mouse.Release({123, 84});
    EXPECT_EQ(Paths().at(0).points.size(), 1U);
}

TEST_F(CanvasMouse, releaseMoreThanFivePixelsAwayAddsAPoint) {
    mouse.Press({120, 80});
    mouse.Release({126, 80});
    ASSERT_EQ(Paths().at(0).points.size(), 2U);
    EXPECT_EQ(At(0, 1), QPointF(126, 80));
    EXPECT_EQ(Paths()[0].methods, (std::vector<int>{1, 1}));
    EXPECT_EQ(Paths()[0].lengths, (std::vector<int>{100, 100}));
    EXPECT_EQ(Paths()[0].widths, (std::vector<int>{50, 50}));
    EXPECT_EQ(Paths()[0].spaces, (std::vector<int>{100, 100}));
}

TEST_F(CanvasMouse, onlyTheLeftButtonActs) {
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        mouse.Click({50, 50}, button);
        EXPECT_TRUE(Paths().empty());
    }
    mouse.Draw({{50, 50}, {150, 50}});
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        mouse.Click({250, 250}, button);
        EXPECT_EQ(Paths().size(), 1U);
        EXPECT_EQ(Paths()[0].points.size(), 2U);
    }
    mouse.Click({50, 200});
    mouse.DoubleClick({300, 200}, Qt::RightButton);
    EXPECT_EQ(Document().finishedCount(), 1);
    mouse.Press({300, 200}, Qt::RightButton);
    mouse.Move({310, 200});
    EXPECT_TRUE(State().rubberPoint.isNull());
}

TEST_F(CanvasMouse, firstPointIsAtThePressPosition) {
    mouse.Press({3, 297});
    EXPECT_EQ(At(0, 0), QPointF(3, 297));
}

TEST_F(CanvasMouse, laterPointsAreClampedToTheMargin) {
    mouse.Click({200, 150});
    mouse.Release({3, 297});
    EXPECT_EQ(At(0, 1), QPointF(10, 290));
    mouse.Release({500, -20});
    EXPECT_EQ(At(0, 2), QPointF(390, 10));
}

TEST_F(CanvasMouse, releaseDistanceIsMeasuredFromTheClampedPosition) {
    mouse.Press({10, 150});
    mouse.Release({2, 150});
    EXPECT_EQ(Paths().at(0).points.size(), 1U);
}

TEST_F(CanvasMouse, clampsLaterPointsToTenOnACanvasNarrowerThanTheMargins) {
    window.ShowImage({15, 15});
    mouse.Press({1, 1});
    mouse.Release({14, 14});
    ASSERT_EQ(Paths().at(0).points.size(), 2U);
    EXPECT_NEAR(At(0, 1).x(), 10.0, 1e-9);
    EXPECT_NEAR(At(0, 1).y(), 10.0, 1e-9);
}

TEST_F(CanvasMouse, pressWhileAPathIsOpenStartsNoOther) {
    mouse.Click({50, 50});
    mouse.Press({150, 50});
    EXPECT_EQ(Paths().size(), 1U);
}

TEST_F(CanvasMouse, doubleClickClosesThePath) {
    mouse.Draw({{50, 50}, {150, 50}});
    EXPECT_EQ(Document().finishedCount(), 1);
    ASSERT_EQ(Paths().size(), 1U);
    EXPECT_EQ(Paths()[0].points.size(), 2U);
    mouse.Move({250, 250});
    mouse.Press({250, 250});
    EXPECT_EQ(Paths().size(), 2U);
}

TEST_F(CanvasMouse, doubleClickWithoutAnOpenPathChangesNothing) {
    mouse.Draw({{50, 50}, {150, 50}});
    QTest::mouseDClick(window.canvas, Qt::LeftButton, {}, {150, 50});
    EXPECT_EQ(Document().finishedCount(), 1);
    EXPECT_EQ(Paths().size(), 1U);
}

TEST_F(CanvasMouse, releaseFarFromAClosedPathsLastPointExtendsIt) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Release({150, 150});
    EXPECT_EQ(Paths().at(0).points.size(), 3U);
    EXPECT_EQ(Document().finishedCount(), 1);
}

TEST_F(CanvasMouse, releaseWithoutPathsDoesNothing) {
    mouse.Release({150, 150});
    EXPECT_TRUE(Paths().empty());
}

TEST_F(CanvasMouse, holdingTheButtonStretchesTheRubberBand) {
    mouse.Press({50, 50});
    mouse.Move({150, 100});
    EXPECT_EQ(State().rubberPoint, QPointF(150.0 / 400, 100.0 / 300));
    mouse.Move({1000, 1000});
    EXPECT_EQ(State().rubberPoint, QPointF(390.0 / 400, 290.0 / 300));
    mouse.Release({150, 100});
    EXPECT_TRUE(State().rubberPoint.isNull());
}

TEST_F(CanvasMouse, armsAPointNearerThanFivePixels) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({154.99, 50});
    EXPECT_EQ(State().hoverPath, 0);
    EXPECT_EQ(State().hoverPoint, 1);
    EXPECT_EQ(State().dragPoint, Paths()[0].points[1]);
}

TEST_F(CanvasMouse, doesNotArmAPointExactlyFivePixelsAway) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({150, 50});
    mouse.Move({155, 50});
    EXPECT_TRUE(State().dragPoint.isNull());
    EXPECT_EQ(State().hoverPoint, 0);
}

TEST_F(CanvasMouse, clampsTheCursorBeforeTheSearch) {
    mouse.Press({3, 150}); // the first point may be in the margin
    mouse.Release({200, 150});
    mouse.Move({3, 150}); // the cursor counts as (10, 150)
    EXPECT_TRUE(State().dragPoint.isNull());
}

TEST_F(CanvasMouse, pressOnAnArmedPointAddsNothing) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({151, 51});
    mouse.Press({151, 51});
    EXPECT_EQ(Paths().size(), 1U);
    EXPECT_EQ(At(0, 1), QPointF(150, 50));
}

TEST_F(CanvasMouse, dragMovesThePointUnderTheCursor) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({151, 51});
    mouse.Press({151, 51});
    mouse.Move({200, 120});
    EXPECT_EQ(At(0, 1), QPointF(200, 120));
    EXPECT_EQ(State().dragPoint, Paths()[0].points[1]);
    EXPECT_EQ(At(0, 0), QPointF(50, 50));
    mouse.Release({210, 130});
    EXPECT_EQ(At(0, 1), QPointF(210, 130));
    EXPECT_EQ(State().dragPoint, Paths()[0].points[1]);
    EXPECT_EQ(Paths()[0].points.size(), 2U);
}

TEST_F(CanvasMouse, draggedPointStaysInsideTheMargin) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({150, 50});
    mouse.Press({150, 50});
    mouse.Move({-30, 299});
    EXPECT_EQ(At(0, 1), QPointF(10, 290));
    mouse.Release({900, 900});
    EXPECT_EQ(At(0, 1), QPointF(390, 290));
}

TEST_F(CanvasMouse, pointStaysArmedUntilTheNextMoveWithoutAButton) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({150, 50});
    mouse.Press({150, 50});
    mouse.Release({150, 50});
    EXPECT_FALSE(State().dragPoint.isNull());
    mouse.Move({250, 250});
    EXPECT_TRUE(State().dragPoint.isNull());
    EXPECT_EQ(State().hoverPoint, 0);
}

TEST_F(CanvasMouse, dragsTheEarlierPathsPointOfTwoAtOnePlace) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({250, 250});
    mouse.Draw({{50, 200}, {200, 200}});
    mouse.Move({200, 200});
    mouse.Press({200, 200});
    mouse.Release({150, 50});
    ASSERT_EQ(At(1, 1), QPointF(150, 50));
    mouse.Move({300, 250});
    mouse.Move({150, 50});
    mouse.Press({150, 50});
    mouse.Move({300, 100});
    EXPECT_EQ(At(0, 1), QPointF(300, 100));
    EXPECT_EQ(At(1, 1), QPointF(150, 50));
}

TEST_F(CanvasMouse, dragsAPointWhileAPathIsOpen) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({250, 250});
    mouse.Click({250, 250});
    mouse.Move({150, 50});
    mouse.Press({150, 50});
    mouse.Move({160, 60});
    mouse.Release({160, 60});
    EXPECT_EQ(At(0, 1), QPointF(160, 60));
    EXPECT_EQ(Document().finishedCount(), 1);
    EXPECT_EQ(Paths().size(), 2U);
    EXPECT_EQ(Paths()[1].points.size(), 1U);
}

TEST_F(CanvasMouse, resizingTheCanvasKeepsPoints) {
    mouse.Draw({{100, 75}, {200, 150}});
    window.Resize({800, 600});
    EXPECT_EQ(At(0, 1), QPointF(400, 300));
    mouse.Move({400, 300});
    EXPECT_EQ(State().hoverPoint, 1);
}

TEST_F(CanvasMouse, deleteLastOnTwoPointsRemovesThePathAndOnThreeLeavesTwo) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({250, 250});
    mouse.Draw({{50, 200}, {150, 200}, {250, 200}});
    window.canvas->deleteLast();
    EXPECT_EQ(Paths().at(1).points.size(), 2U);
    EXPECT_EQ(Paths()[1].spaces.size(), 2U);
    window.canvas->deleteLast();
    EXPECT_EQ(Paths().size(), 1U);
    EXPECT_EQ(Document().finishedCount(), 1);
}

TEST_F(CanvasMouse, clearAllResetsPathsAndState) {
    mouse.Draw({{50, 50}, {150, 50}});
    window.canvas->setCurrentPath(2);
    window.canvas->setCurrentSegment(3);
    window.canvas->clearAll();
    EXPECT_TRUE(Paths().empty());
    EXPECT_EQ(Document().finishedCount(), 0);
    EXPECT_EQ(window.canvas->currentPath(), 0);
    EXPECT_EQ(window.canvas->currentSegment(), 0);
}

TEST_F(CanvasMouse, addingAPointRefreshesAShownRuler) {
    window.shown = true;
    mouse.Press({50, 50});
    EXPECT_EQ(window.refreshes, 0);
    mouse.Release({150, 50});
    EXPECT_EQ(window.refreshes, 1);
    mouse.Release({150, 50});
    EXPECT_EQ(window.refreshes, 1);
    EXPECT_EQ(Paths().at(0).rulerMarks.size(), 1U);
}

TEST_F(CanvasMouse, dragMovesRefreshAShownRulerButTheReleaseDoesNot) {
    window.shown = true;
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({150, 50});
    mouse.Press({150, 50});
    window.refreshes = 0;
    mouse.Move({160, 60});
    mouse.Move({170, 60});
    EXPECT_EQ(window.refreshes, 2);
    mouse.Release({170, 60});
    EXPECT_EQ(window.refreshes, 2);
}

TEST_F(CanvasMouse, hiddenRulerIsNotRefreshed) {
    mouse.Draw({{50, 50}, {150, 50}});
    mouse.Move({150, 50});
    mouse.Press({150, 50});
    mouse.Move({160, 60});
    mouse.Release({160, 60});
    EXPECT_EQ(window.refreshes, 0);
    EXPECT_TRUE(Paths().at(0).rulerMarks.empty());
}

TEST_F(CanvasMouse, findsTheWindowAtConstruction) {
    QScrollArea area;
    area.setWidget(window.canvas);
    window.shown = true;
    mouse.Draw({{50, 50}, {150, 50}});
    EXPECT_GT(window.refreshes, 0);
    area.takeWidget()->setParent(window.central);
}

TEST(CanvasAlone, worksWithoutAWindow) {
    QMaskWidget canvas;
    QPixmap image(400, 300);
    image.fill(Qt::gray);
    canvas.setPixmap(image);
    canvas.resize(400, 300);
    Mouse mouse(&canvas);
    mouse.Draw({{50, 50}, {150, 50}});
    EXPECT_EQ(canvas.paths().size(), 1U);
    EXPECT_FALSE(canvas.grab().isNull());
}

} // namespace
