#include "CanvasFixture.h"
#include "RandomOperator.h"
#include "document/RulerMarksBuilder.h"

#include <array>
#include <bit>
#include <cstdint>

namespace {

using CanvasRuler = CanvasTest;

bool SameBits(const QPointF& one, const QPointF& other) {
    using Bits = std::array<std::uint64_t, 2>;
    return std::bit_cast<Bits>(one) == std::bit_cast<Bits>(other);
}

void ExpectSameMarks(const RulerMarks& one, const RulerMarks& other) {
    ASSERT_EQ(one.tickStarts.size(), other.tickStarts.size());
    ASSERT_EQ(one.tickEnds.size(), other.tickEnds.size());
    ASSERT_EQ(one.bands.size(), other.bands.size());
    for (std::size_t i = 0; i < one.bands.size(); ++i) {
        ASSERT_TRUE(SameBits(one.tickStarts[i], other.tickStarts[i]));
        ASSERT_TRUE(SameBits(one.tickEnds[i], other.tickEnds[i]));
        for (std::size_t corner = 0; corner < 4; ++corner)
            ASSERT_TRUE(SameBits(one.bands[i][corner], other.bands[i][corner]));
    }
}

/// The marks equal a complete computation.
void ExpectMarksUpToDate(const std::vector<TrackPath>& paths, const QSize& image) {
    for (const TrackPath& path : paths) {
        const auto expected = RulerMarksBuilder(image).MarksOfPath(path);
        ASSERT_EQ(path.rulerMarks.size(), expected.size());
        for (std::size_t j = 0; j < expected.size(); ++j)
            ASSERT_NO_FATAL_FAILURE(ExpectSameMarks(path.rulerMarks[j], expected[j])) << j;
    }
}

TEST_F(CanvasRuler, computesTheMarksOfEveryPath) {
    mouse.Draw({{50, 50}, {150, 50}, {150, 150}});
    mouse.Move({250, 250});
    mouse.Draw({{50, 200}, {350, 200}});
    window.canvas->computeRulerMarks(400, 300);
    ASSERT_EQ(Paths().at(0).rulerMarks.size(), 2U);
    ASSERT_EQ(Paths().at(1).rulerMarks.size(), 1U);
    EXPECT_EQ(Paths()[1].rulerMarks[0].bands.size(), 3U);
    ExpectMarksUpToDate(Paths(), {400, 300});
}

TEST_F(CanvasRuler, clearingRemovesAllMarksAndComputingRestoresThem) {
    mouse.Draw({{50, 50}, {150, 50}});
    window.canvas->computeRulerMarks(400, 300);
    window.canvas->clearRulerMarks();
    EXPECT_TRUE(Paths().at(0).rulerMarks.empty());
    window.canvas->computeRulerMarks(400, 300);
    ExpectMarksUpToDate(Paths(), {400, 300});
}

TEST_F(CanvasRuler, newImageSizeChangesEveryMark) {
    mouse.Draw({{50, 50}, {150, 50}, {150, 150}});
    window.canvas->computeRulerMarks(400, 300);
    window.canvas->computeRulerMarks(800, 900);
    ExpectMarksUpToDate(Paths(), {800, 900});
}

TEST_F(CanvasRuler, parameterChangesTheMarksOnTheNextRefresh) {
    mouse.Draw({{50, 50}, {350, 50}, {350, 250}});
    window.canvas->computeRulerMarks(400, 300);
    window.canvas->setSegmentParameter(SegmentParameter::Space, 20);
    window.canvas->computeRulerMarks(400, 300);
    EXPECT_EQ(Paths().at(0).rulerMarks.at(0).bands.size(), 15U); // 300 / 21, rounded up
    ExpectMarksUpToDate(Paths(), {400, 300});
    window.canvas->setParameterEverywhere(SegmentParameter::Length, 7);
    window.canvas->computeRulerMarks(400, 300);
    ExpectMarksUpToDate(Paths(), {400, 300});
}

TEST_F(CanvasRuler, deleteLastKeepsTheMarksUntilTheNextRefresh) {
    mouse.Draw({{50, 50}, {150, 50}, {150, 150}});
    window.canvas->computeRulerMarks(400, 300);
    window.canvas->deleteLast();
    EXPECT_EQ(Paths().at(0).rulerMarks.size(), 2U);
    window.canvas->computeRulerMarks(400, 300);
    ExpectMarksUpToDate(Paths(), {400, 300});
}

TEST_F(CanvasRuler, doesNothingWithoutPathsOrAnImageSize) {
    window.canvas->computeRulerMarks(400, 300);
    mouse.Draw({{50, 50}, {150, 50}});
    window.canvas->computeRulerMarks(0, 0);
    for (const RulerMarks& marks : Paths().at(0).rulerMarks)
        EXPECT_TRUE(marks.bands.empty());
}

TEST_F(CanvasRuler, marksAfterRandomEditsEqualAFullComputation) {
    RandomOperator robot(window, 3);
    for (int step = 0; step < 2000; ++step) {
        robot.Act();
        window.refreshRuler();
        ASSERT_NO_FATAL_FAILURE(ExpectMarksUpToDate(Paths(), window.imageSize)) << step;
        for (const TrackPath& path : Paths()) {
            ASSERT_EQ(path.methods.size(), path.points.size());
            ASSERT_EQ(path.lengths.size(), path.points.size());
            ASSERT_EQ(path.widths.size(), path.points.size());
            ASSERT_EQ(path.spaces.size(), path.points.size());
        }
        if (Paths().size() > 12)
            window.canvas->clearAll();
    }
}

} // namespace
