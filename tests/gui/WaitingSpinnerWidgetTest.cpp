#include "window/WaitingSpinnerWidget.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QImage>
#include <QMetaMethod>
#include <QTest>
#include <QTimer>

#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kBars = 20;
constexpr int kFadingSteps = 16; // the ceiling of 19 × 80 %
constexpr double kFloor = kPi / 100.0;

/// A ring to compare a picture with: each bar is computed here from its geometry alone.
struct Ring {
    int innerRadius;
    int lineLength;
    int leader;

    [[nodiscard]] int side() const { return 2 * (innerRadius + lineLength); }

    [[nodiscard]] double opacity(int bar) const {
        const int steps = (leader - bar + kBars) % kBars;
        if (steps > kFadingSteps)
            return kFloor;
        return 1.0 - steps * (1.0 - kFloor) / 17.0;
    }

    /// Whether a point is in the bar: corner radii of 100 % make the rectangle of lineLength × 2 an
    /// ellipse.
    [[nodiscard]] bool covers(int bar, double x, double y) const {
        const double angle = 2.0 * kPi * bar / kBars;
        const double centre = innerRadius + lineLength;
        const double along = (x - centre) * std::cos(angle) + (y - centre) * std::sin(angle) - innerRadius;
        const double across = -(x - centre) * std::sin(angle) + (y - centre) * std::cos(angle);
        const double half = lineLength / 2.0;
        return std::pow((along - half) / half, 2) + across * across <= 1.0;
    }

    /// The opacity of a pixel, from 16 × 16 points in it.
    [[nodiscard]] double pixel(int column, int row) const {
        double transparency = 1.0;
        for (int bar = 0; bar < kBars; ++bar) {
            int hits = 0;
            for (int down = 0; down < 16; ++down)
                for (int across = 0; across < 16; ++across)
                    hits += covers(bar, column + (across + 0.5) / 16, row + (down + 0.5) / 16) ? 1 : 0;
            transparency *= 1.0 - opacity(bar) * hits / 256.0;
        }
        return 1.0 - transparency;
    }
};

QImage Picture(WaitingSpinnerWidget& spinner) {
    return spinner.grab().toImage().convertToFormat(QImage::Format_ARGB32);
}

double Opacity(const QImage& picture, int column, int row) {
    return qAlpha(picture.pixel(column, row)) / 255.0;
}

/// The opacity of every bar: that of its sector of the picture, divided by that of the leader's.
std::vector<double> BarOpacities(const QImage& picture, const Ring& ring) {
    std::vector<double> sums(kBars);
    const double centre = ring.side() / 2.0;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            const double angle = std::atan2(row + 0.5 - centre, column + 0.5 - centre);
            const long sector = std::lround(angle / (2.0 * kPi) * kBars + kBars) % kBars;
            sums[static_cast<std::size_t>(sector)] += Opacity(picture, column, row);
        }
    }
    const double leaderSum = sums[static_cast<std::size_t>(ring.leader)];
    EXPECT_NEAR(leaderSum, kPi * ring.lineLength / 2.0, 0.08 * kPi * ring.lineLength / 2.0);
    for (double& sum : sums)
        sum /= leaderSum;
    return sums;
}

void ExpectPicture(const QImage& picture, const Ring& ring) {
    ASSERT_EQ(picture.size(), QSize(ring.side(), ring.side()));
    const std::vector<double> opacities = BarOpacities(picture, ring);
    for (int bar = 0; bar < kBars; ++bar)
        EXPECT_NEAR(opacities[static_cast<std::size_t>(bar)], ring.opacity(bar), 0.02) << "bar " << bar;
    for (int row = 0; row < picture.height(); ++row)
        for (int column = 0; column < picture.width(); ++column)
            ASSERT_NEAR(Opacity(picture, column, row), ring.pixel(column, row), 0.12)
                << "at column " << column << ", row " << row;
}

class WaitingSpinnerWidgetTest : public ::testing::Test {
  protected:
    WaitingSpinnerWidgetTest() {
        parent.setGeometry(100, 60, 301, 200);
        parent.show();
    }

    std::unique_ptr<WaitingSpinnerWidget> make(bool centreOnParent = true, bool disableParent = true) {
        return std::make_unique<WaitingSpinnerWidget>(Qt::WindowModal, &parent, centreOnParent,
                                                      disableParent);
    }

    static QTimer* timer(const WaitingSpinnerWidget& spinner) { return spinner.findChild<QTimer*>(); }

    /// Stops the clock, so that only the test turns the ring.
    static void turn(WaitingSpinnerWidget& spinner, int steps) {
        QObject::disconnect(timer(spinner), nullptr, &spinner, nullptr);
        for (int step = 0; step < steps; ++step)
            spinner.rotate();
    }

    QWidget parent;
};

TEST_F(WaitingSpinnerWidgetTest, slotsAreInOrder) {
    const QMetaObject& meta = WaitingSpinnerWidget::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 3);
    const char* const names[] = {"start()", "stop()", "rotate()"};
    for (int index = 0; index < 3; ++index) {
        const QMetaMethod method = meta.method(meta.methodOffset() + index);
        EXPECT_EQ(method.methodSignature().toStdString(), names[index]);
        EXPECT_EQ(method.methodType(), QMetaMethod::Slot);
    }
}

TEST_F(WaitingSpinnerWidgetTest, isBuiltHiddenFramelessAndTranslucent) {
    const auto spinner = make();
    EXPECT_TRUE(spinner->isHidden());
    EXPECT_FALSE(spinner->isSpinning());
    EXPECT_EQ(spinner->windowFlags() & Qt::WindowType_Mask, Qt::Dialog & Qt::WindowType_Mask);
    EXPECT_TRUE(spinner->windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(spinner->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_EQ(spinner->windowModality(), Qt::WindowModal);
    EXPECT_EQ(spinner->parentWidget(), &parent);
    EXPECT_TRUE(parent.isEnabled());
}

TEST_F(WaitingSpinnerWidgetTest, hasTheGivenModality) {
    const WaitingSpinnerWidget modal(Qt::ApplicationModal, nullptr, false, false);
    const WaitingSpinnerWidget free(Qt::NonModal, nullptr, false, false);
    EXPECT_EQ(modal.windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(free.windowModality(), Qt::NonModal);
}

TEST_F(WaitingSpinnerWidgetTest, sizeIsTwiceRadiusAndLengthAndFixed) {
    const auto spinner = make();
    EXPECT_EQ(spinner->minimumSize(), QSize(40, 40));
    EXPECT_EQ(spinner->maximumSize(), QSize(40, 40));
    spinner->setInnerRadius(20);
    EXPECT_EQ(spinner->size(), QSize(60, 60));
    spinner->setLineLength(20);
    EXPECT_EQ(spinner->minimumSize(), QSize(80, 80));
    EXPECT_EQ(spinner->maximumSize(), QSize(80, 80));
}

TEST_F(WaitingSpinnerWidgetTest, stepTakes31MillisecondsAtEverySize) {
    const auto spinner = make();
    ASSERT_NE(timer(*spinner), nullptr);
    EXPECT_EQ(timer(*spinner)->interval(), 31);
    EXPECT_FALSE(timer(*spinner)->isActive());
    spinner->setInnerRadius(20);
    spinner->setLineLength(20);
    EXPECT_EQ(timer(*spinner)->interval(), 31);
}

TEST_F(WaitingSpinnerWidgetTest, startShowsTurnsAndDisablesTheParent) {
    const auto spinner = make();
    spinner->start();
    EXPECT_TRUE(spinner->isVisible());
    EXPECT_TRUE(spinner->isSpinning());
    EXPECT_TRUE(timer(*spinner)->isActive());
    EXPECT_FALSE(parent.isEnabled());
}

TEST_F(WaitingSpinnerWidgetTest, stopHidesHaltsAndEnablesTheParent) {
    const auto spinner = make();
    spinner->start();
    spinner->stop();
    EXPECT_TRUE(spinner->isHidden());
    EXPECT_FALSE(spinner->isSpinning());
    EXPECT_FALSE(timer(*spinner)->isActive());
    EXPECT_TRUE(parent.isEnabled());
}

TEST_F(WaitingSpinnerWidgetTest, parentStaysEnabledWhenNotToBeDisabled) {
    const auto spinner = make(true, false);
    spinner->start();
    EXPECT_TRUE(parent.isEnabled());
    parent.setEnabled(false);
    spinner->stop();
    EXPECT_FALSE(parent.isEnabled());
}

TEST_F(WaitingSpinnerWidgetTest, worksWithoutAParent) {
    WaitingSpinnerWidget spinner(Qt::NonModal, nullptr, true, true);
    spinner.move(11, 13);
    spinner.start();
    EXPECT_TRUE(spinner.isVisible());
    EXPECT_EQ(spinner.pos(), QPoint(11, 13));
    spinner.stop();
    EXPECT_TRUE(spinner.isHidden());
}

TEST_F(WaitingSpinnerWidgetTest, closeEventIsIgnored) {
    const auto spinner = make();
    spinner->start();
    EXPECT_FALSE(spinner->close());
    EXPECT_TRUE(spinner->isVisible());
    EXPECT_TRUE(spinner->isSpinning());
    EXPECT_FALSE(parent.isEnabled());
}

TEST_F(WaitingSpinnerWidgetTest, stopWhileStoppedEnablesTheParent) {
    const auto spinner = make();
    parent.setEnabled(false);
    spinner->stop();
    EXPECT_TRUE(spinner->isHidden());
    EXPECT_TRUE(parent.isEnabled());
}

TEST_F(WaitingSpinnerWidgetTest, stopWhileStoppedKeepsTheLeadingBar) {
    const auto spinner = make();
    turn(*spinner, 3);
    spinner->stop();
    ExpectPicture(Picture(*spinner), {10, 10, 3});
}

TEST_F(WaitingSpinnerWidgetTest, startWhileSpinningContinuesFromTheSameBar) {
    const auto spinner = make();
    spinner->start();
    turn(*spinner, 5);
    spinner->start();
    ExpectPicture(Picture(*spinner), {10, 10, 5});
}

TEST_F(WaitingSpinnerWidgetTest, startAfterStopBeginsAtTheFirstBar) {
    const auto spinner = make();
    spinner->start();
    turn(*spinner, 5);
    spinner->stop();
    ExpectPicture(Picture(*spinner), {10, 10, 0});
    turn(*spinner, 2);
    spinner->start();
    ExpectPicture(Picture(*spinner), {10, 10, 0});
}

TEST_F(WaitingSpinnerWidgetTest, clockTurnsTheRing) {
    const auto spinner = make();
    const QImage before = Picture(*spinner);
    spinner->start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return Picture(*spinner) != before; }));
}

TEST_F(WaitingSpinnerWidgetTest, everyStepIsPainted) {
    struct PaintCount : QObject {
        bool eventFilter(QObject*, QEvent* event) override {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int paints = 0;
    } count;
    const auto spinner = make();
    spinner->start();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(spinner.get()));
    turn(*spinner, 0);
    QCoreApplication::processEvents();
    spinner->installEventFilter(&count);
    for (int step = 1; step <= 3; ++step) {
        spinner->rotate();
        QCoreApplication::processEvents();
        EXPECT_EQ(count.paints, step);
    }
}

TEST_F(WaitingSpinnerWidgetTest, pictureShowsTheTrailOfEveryLeader) {
    const auto spinner = make();
    for (int leader = 0; leader < kBars; ++leader) {
        SCOPED_TRACE(leader);
        ExpectPicture(Picture(*spinner), {10, 10, leader});
        turn(*spinner, 1);
    }
    ExpectPicture(Picture(*spinner), {10, 10, 0});
}

TEST_F(WaitingSpinnerWidgetTest, pictureHasTheWindowsOwnSize) {
    const auto spinner = make();
    spinner->setInnerRadius(20);
    spinner->setLineLength(20);
    for (const int leader : {0, 7, 16}) {
        SCOPED_TRACE(leader);
        spinner->start();
        turn(*spinner, leader);
        ExpectPicture(Picture(*spinner), {20, 20, leader});
        spinner->stop();
    }
}

TEST_F(WaitingSpinnerWidgetTest, leaderIsOpaqueAndFarBarsHaveTheMinimumOpacity) {
    const auto spinner = make();
    spinner->setInnerRadius(20);
    spinner->setLineLength(20);
    turn(*spinner, 17); // bar 0 is 17 steps behind, bar 1 16 steps, bar 17 leads
    const QImage picture = Picture(*spinner);
    const auto opacityOfBar = [&](int bar) {
        const double angle = 2.0 * kPi * bar / kBars;
        return qAlpha(picture.pixel(static_cast<int>(std::floor(40 + 30 * std::cos(angle))),
                                    static_cast<int>(std::floor(40 + 30 * std::sin(angle)))));
    };
    EXPECT_EQ(opacityOfBar(0), 8);         // 0.0314 × 255
    EXPECT_NEAR(opacityOfBar(15), 226, 5); // two steps: (1 − 2 × 0.96858 / 17) × 255 = 225.9
    const QImage upright = [&] {
        turn(*spinner, 8); // bar 5, which is vertical, leads
        return Picture(*spinner);
    }();
    EXPECT_NEAR(qAlpha(upright.pixel(39, 70)), 255, 5);
    EXPECT_EQ(upright.pixel(40, 70) & 0xffffffU, 0U);
}

TEST_F(WaitingSpinnerWidgetTest, middleAndCornersAreTransparent) {
    const auto spinner = make();
    const QImage picture = Picture(*spinner);
    for (const QPoint& place : {QPoint(20, 20), QPoint(0, 0), QPoint(39, 0), QPoint(0, 39), QPoint(39, 39)})
        EXPECT_EQ(qAlpha(picture.pixel(place)), 0);
}

TEST_F(WaitingSpinnerWidgetTest, isCentredOverItsParent) {
    const auto spinner = make();
    spinner->start();
    // 100 + 301 / 2 − 20 = 230.5, cut to 230; 60 + 100 − 20 = 140
    EXPECT_EQ(spinner->pos(), QPoint(parent.x() + 130, parent.y() + 80));
}

TEST_F(WaitingSpinnerWidgetTest, truncatesItsPositionTowardZero) {
    const auto spinner = make();
    parent.resize(101, 61);
    parent.move(-200, -150);
    spinner->start();
    // -200 + 50.5 - 20 = -169.5 becomes -169; -150 + 30.5 - 20 = -139.5 becomes -139
    EXPECT_EQ(spinner->pos(), QPoint(-169, -139));
}

TEST_F(WaitingSpinnerWidgetTest, followsItsParentWhenPainted) {
    const auto spinner = make();
    spinner->start();
    parent.setGeometry(300, 200, 200, 100);
    Picture(*spinner);
    EXPECT_EQ(spinner->pos(), QPoint(parent.x() + 80, parent.y() + 30));
}

TEST_F(WaitingSpinnerWidgetTest, staysWhereItIsWhenNotToBeCentred) {
    const auto spinner = make(false, true);
    spinner->move(7, 9);
    spinner->start();
    Picture(*spinner);
    EXPECT_EQ(spinner->pos(), QPoint(7, 9));
}

} // namespace
