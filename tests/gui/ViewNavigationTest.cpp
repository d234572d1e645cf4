#include "OperatingTest.h"

#include <QLabel>

namespace {

constexpr int kNotch = 120;

/// A track that is larger than the view at every scale but the smallest.
class ViewNavigationTest : public OperatingTest {
  protected:
    ViewNavigationTest() : OperatingTest(SmallTrack(PathAcross(0, 3, 0.5, 100), 1000, 1500)) {
        showPercent(200);
        scrollTo(700, 900);
    }

    /// Checks that the point is shown at the place, to the pixel.
    void expectShownAt(const QPointF& expected, const QPoint& inView) {
        EXPECT_LE(std::abs(expected.x() * canvas().width() + canvas().x() - inView.x()), 0.5);
        EXPECT_LE(std::abs(expected.y() * canvas().height() + canvas().y() - inView.y()), 0.5);
    }
};

TEST_F(ViewNavigationTest, ctrlWheelZoomsByOneStepAtTheCursor) {
    const QPoint place(123, 77);
    const QPointF shown = shownAt(place);
    turnWheel(place, kNotch);
    EXPECT_EQ(slider().value(), 41);
    EXPECT_EQ(text("label_scale"), "Scale:205%");
    expectShownAt(shown, place);
    turnWheel(place, -3 * kNotch);
    EXPECT_EQ(slider().value(), 38);
    expectShownAt(shown, place);
}

TEST_F(ViewNavigationTest, highResolutionWheelIsSummedToFullSteps) {
    for (int part = 0; part < 7; ++part)
        turnWheel({100, 100}, kNotch / 4);
    EXPECT_EQ(slider().value(), 41);
    turnWheel({100, 100}, -kNotch / 2);
    EXPECT_EQ(slider().value(), 41) << "the opposite direction starts again";
    turnWheel({100, 100}, -kNotch / 2);
    EXPECT_EQ(slider().value(), 40);
}

TEST_F(ViewNavigationTest, wheelAloneScrolls) {
    QWidget* const view = area().viewport();
    QWheelEvent event(QPoint(100, 100), view->mapToGlobal(QPoint(100, 100)), QPoint(), QPoint(0, -kNotch),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view, &event);
    EXPECT_EQ(slider().value(), 40);
    EXPECT_GT(area().verticalScrollBar()->value(), 900);
}

TEST_F(ViewNavigationTest, zoomingInAndOutAHundredTimesReturns) {
    const QPoint place(211, 93);
    const QPoint before = canvas().pos();
    for (int time = 0; time < 100; ++time) {
        turnWheel(place, kNotch);
        turnWheel(place, -kNotch);
    }
    EXPECT_LE((canvas().pos() - before).manhattanLength(), 1);
    for (int time = 0; time < 38; ++time)
        turnWheel(place, kNotch);
    for (int time = 0; time < 60; ++time)
        turnWheel(place, -kNotch);
    for (int time = 0; time < 22; ++time)
        turnWheel(place, kNotch);
    ASSERT_EQ(slider().value(), 40);
    EXPECT_LE((canvas().pos() - before).manhattanLength(), 1);
}

TEST_F(ViewNavigationTest, keysZoomAtTheCursor) {
    const QPoint place(123, 77);
    mouse().Move(place - canvas().pos());
    const QPointF shown = shownAt(place);
    key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(slider().value(), 41);
    key(Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_EQ(slider().value(), 42);
    expectShownAt(shown, place);
    key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(slider().value(), 41);
    expectShownAt(shown, place);
    key(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(text("label_scale"), "Scale:100%");
    EXPECT_EQ(canvas().size(), QSize(2000, 1500));
    expectShownAt(shown, place);
}

TEST_F(ViewNavigationTest, keysZoomWhileAControlHasTheFocus) {
    auto& field = find<QLineEdit>("lineEdit_lineLength");
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(slider().value(), 41);
    EXPECT_EQ(text("lineEdit_lineLength"), "100");
}

TEST_F(ViewNavigationTest, ctrlZeroFitsLikeALoad) {
    const int fitting = [this] {
        const double across = double(area().width()) / 1000;
        const double down = double(area().height()) / 1500;
        return static_cast<int>(std::min(across, down) * 20);
    }();
    key(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(slider().value(), fitting);
    loadExternal(folder.Path("a.trk"));
    EXPECT_EQ(slider().value(), fitting);
}

TEST_F(ViewNavigationTest, sliderKeepsTheViewCentre) {
    const QPoint middle = area().viewport()->rect().center();
    const QPointF shown = shownAt(middle);
    slider().setValue(47);
    expectShownAt(shown, middle);
    slider().setFocus();
    QTest::keyClick(&slider(), Qt::Key_Left);
    QTest::keyClick(&slider(), Qt::Key_PageDown);
    EXPECT_EQ(slider().value(), 36);
    expectShownAt(shown, middle);
}

TEST_F(ViewNavigationTest, zoomAfterScrollingKeepsTheNewPlace) {
    const QPoint place(211, 93);
    turnWheel(place, kNotch);
    scrollTo(500, 700);
    const QPointF shown = shownAt(place);
    turnWheel(place, kNotch);
    expectShownAt(shown, place);
}

TEST_F(ViewNavigationTest, middleButtonPansTheView) {
    const QPoint before = canvas().pos();
    const QPoint start(900, 1100);
    mouse().Move(start);
    mouse().Press(start, Qt::MiddleButton);
    mouse().Move(start + QPoint(30, -20));
    EXPECT_EQ(canvas().pos(), before + QPoint(30, -20));
    // The canvas moved too: on it the cursor is at the start again, and moves from there.
    mouse().Move(start + QPoint(5, 6));
    EXPECT_EQ(canvas().pos(), before + QPoint(35, -14));
    mouse().Release(start, Qt::MiddleButton);
    mouse().Move(start + QPoint(50, 50));
    EXPECT_EQ(canvas().pos(), before + QPoint(35, -14));
    EXPECT_EQ(paths().size(), 1U);
}

TEST_F(ViewNavigationTest, spaceWithTheLeftButtonPansTheViewAndDrawsNothing) {
    const QPoint before = canvas().pos();
    const QPoint start(900, 1100);
    QTest::keyPress(&canvas(), Qt::Key_Space);
    EXPECT_EQ(canvas().cursor().shape(), Qt::OpenHandCursor);
    mouse().Press(start);
    EXPECT_EQ(canvas().cursor().shape(), Qt::ClosedHandCursor);
    mouse().Move(start + QPoint(-40, 10));
    QTest::keyRelease(&canvas(), Qt::Key_Space);
    mouse().Release(start + QPoint(0, 0));
    EXPECT_EQ(canvas().pos(), before + QPoint(-40, 10));
    EXPECT_EQ(paths().size(), 1U);
    EXPECT_EQ(canvas().cursor().shape(), Qt::ArrowCursor);
    mouse().Click(start);
    EXPECT_EQ(paths().size(), 2U) << "without Space the button draws again";
}

TEST_F(ViewNavigationTest, pansTheViewWhileAPathIsDrawn) {
    mouse().Click({900.0, 1100.0});
    mouse().Click({950.0, 1100.0});
    mouse().Press({900.0, 1000.0}, Qt::MiddleButton);
    mouse().Move({850.0, 1000.0});
    mouse().Release({900.0, 1000.0}, Qt::MiddleButton);
    EXPECT_EQ(paths().at(1).points.size(), 2U);
    EXPECT_EQ(document().finishedCount(), 1);
    mouse().Click({990.0, 1150.0});
    EXPECT_EQ(paths().at(1).points.size(), 3U);
}

TEST_F(ViewNavigationTest, buttonPressedDuringAPanDrawsNothing) {
    mouse().Press({900.0, 1000.0}, Qt::MiddleButton);
    mouse().Press({900.0, 1000.0}, Qt::LeftButton);
    mouse().Release({900.0, 1000.0}, Qt::MiddleButton);
    mouse().Release({960.0, 1000.0}, Qt::LeftButton);
    EXPECT_EQ(paths().size(), 1U);
    EXPECT_EQ(paths()[0].points.size(), 3U);
}

TEST_F(ViewNavigationTest, viewStaysWhileAPointIsDragged) {
    scrollTo(0, 0);
    mouse().Move(at(0, 0));
    mouse().Press(at(0, 0));
    const QPoint before = canvas().pos();
    mouse().Press(at(0, 0), Qt::MiddleButton);
    mouse().Move(at(0, 0) + QPoint(10, 10));
    mouse().Release(at(0, 0), Qt::MiddleButton);
    turnWheel({100, 100}, kNotch);
    key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(canvas().pos(), before);
    EXPECT_EQ(slider().value(), 40);
    mouse().Release(at(0, 0));
}

TEST_F(ViewNavigationTest, pressAfterZoomingDragsOnlyAPointUnderTheCursor) {
    scrollTo(0, 1100);
    const QPoint grip = at(0, 0);
    mouse().Move(grip);
    ASSERT_FALSE(canvas().editingState().dragPoint.isNull());
    key(Qt::Key_0, Qt::ControlModifier); // the view has changed, the cursor has not
    const QPointF before = point(0, 0);
    const QPoint cursor = canvas().cursorPlace().value_or(QPointF()).toPoint();
    mouse().Press(cursor);
    mouse().Release(cursor);
    EXPECT_EQ(point(0, 0), before);
}

TEST_F(ViewNavigationTest, zoomKeepsThePlaceInRightToLeftLayouts) {
    window->setLayoutDirection(Qt::RightToLeft);
    QApplication::processEvents();
    scrollTo(700, 900);
    const QPoint place(123, 77);
    const QPointF shown = shownAt(place);
    turnWheel(place, kNotch);
    expectShownAt(shown, place);
    const QPoint before = canvas().pos();
    mouse().Press({900.0, 1100.0}, Qt::MiddleButton);
    mouse().Move({930.0, 1080.0});
    mouse().Release({900.0, 1100.0}, Qt::MiddleButton);
    EXPECT_EQ(canvas().pos(), before + QPoint(30, -20));
}

} // namespace
