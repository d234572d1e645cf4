#include "WindowTest.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>

#include <cmath>

#include <sys/resource.h>

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

constexpr rlim_t kSmallStack = rlim_t{1024} * 1024;

class SegmentControls : public WindowTest {
  protected:
    void SetUp() override { openWindow(); }

    void load(const independent::Track& track) {
        WriteFile(folder.Path("track.trk"), independent::BinaryFile(track));
        loadExternal(folder.Path("track.trk"));
        ASSERT_EQ(status(), "Load successfully.");
    }

    /// Two paths, of 4 and 3 points.
    void loadTwoPaths() {
        std::vector<independent::Segment> segments = PathAcross(0, 4, 0.3, 100);
        for (const independent::Segment& segment : PathAcross(1, 3, 0.7, 200))
            segments.push_back(segment);
        load(SmallTrack(segments));
    }

    void setSlider(int value) {
        auto& slider = find<QSlider>("horizontalSlider_resizeImage");
        QTest::keyClick(&slider, value > slider.value() ? Qt::Key_End : Qt::Key_Home);
        while (slider.value() != value)
            QTest::keyClick(&slider, value > slider.value() ? Qt::Key_Right : Qt::Key_Left);
    }

    std::vector<std::string> shownParameters() {
        return {text("lineEdit_lineLength"), text("lineEdit_lineWidth"), text("lineEdit_lineSpace")};
    }

    std::size_t ticks(int path, int segment) {
        return paths()
            .at(static_cast<std::size_t>(path))
            .rulerMarks.at(static_cast<std::size_t>(segment))
            .bands.size();
    }

    int number(const char* spinBox) { return find<QSpinBox>(spinBox).value(); }
};

TEST_F(SegmentControls, sliderShowsTheScaleInPercent) {
    setSlider(1);
    EXPECT_EQ(text("label_scale"), "Scale:5%");
    setSlider(80);
    EXPECT_EQ(text("label_scale"), "Scale:400%");
    setSlider(37);
    EXPECT_EQ(text("label_scale"), "Scale:185%");
}

TEST_F(SegmentControls, sliderStretchesTheCanvasAlongTheCoarserAxis) {
    independent::Track wide = SmallTrack(PathAcross(0, 2, 0.5, 100));
    load(wide); // 40 x 20 cells, twice the distance along X
    setSlider(20);
    EXPECT_EQ(canvas().size(), QSize(80, 20));
    setSlider(7); // 0.35: 28 wide, 7 high
    EXPECT_EQ(canvas().size(), QSize(28, 7));
    independent::Track tall = wide;
    tall.xResolution = 0.5;
    tall.yResolution = 0.75;
    load(tall);
    setSlider(20);
    EXPECT_EQ(canvas().size(), QSize(40, 30));
    setSlider(3); // 0.15: 6 wide; 20 x 0.15 x 1.5 = 4.5 high, upwards
    EXPECT_EQ(canvas().size(), QSize(6, 5));
}

TEST_F(SegmentControls, sliderIgnoresAnEmptyCanvas) {
    const QSize before = canvas().size();
    setSlider(60);
    EXPECT_EQ(canvas().size(), before);
}

TEST_F(SegmentControls, scalingKeepsThePaths) {
    loadTwoPaths();
    const std::vector<QPointF> before = paths()[0].points;
    setSlider(4);
    setSlider(70);
    EXPECT_EQ(paths()[0].points, before);
}

TEST_F(SegmentControls, deleteLastRemovesAPointAndRefreshesAShownRuler) {
    loadTwoPaths();
    click("pushButton_deleteLast");
    EXPECT_THAT(paths()[1].points, SizeIs(2));
    EXPECT_THAT(paths()[1].rulerMarks, SizeIs(1));
    click("pushButton_getRuler");
    click("pushButton_deleteLast");
    EXPECT_THAT(paths(), SizeIs(1));
    EXPECT_THAT(paths()[0].rulerMarks, IsEmpty());
}

TEST_F(SegmentControls, deleteLastKeepsTheShownParameters) {
    loadTwoPaths();
    typeNumber("spinBox_pathId", "2");
    const std::vector<std::string> before = shownParameters();
    EXPECT_THAT(before, ElementsAre("200", "210", "220"));
    click("pushButton_deleteLast");
    click("pushButton_deleteLast");
    EXPECT_EQ(shownParameters(), before);
}

TEST_F(SegmentControls, deleteAllResetsTheControlsAndRemovesThePaths) {
    loadTwoPaths();
    typeNumber("spinBox_pathId", "2");
    typeNumber("spinBox_segmentId", "2");
    click("pushButton_deleteAll");
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_EQ(number("spinBox_pathId"), 1);
    EXPECT_EQ(number("spinBox_segmentId"), 1);
    EXPECT_THAT(shownParameters(), ElementsAre("100", "50", "100"));
    EXPECT_EQ(canvas().currentPath(), 0);
    EXPECT_EQ(canvas().currentSegment(), 0);
}

TEST_F(SegmentControls, deleteButtonsWithoutATrackChangeNothing) {
    type("lineEdit_lineLength", "77");
    type("lineEdit_lineWidth", "78");
    type("lineEdit_lineSpace", "79");
    click("pushButton_deleteAll");
    click("pushButton_deleteLast");
    EXPECT_THAT(shownParameters(), ElementsAre("77", "78", "79"));
}

TEST_F(SegmentControls, rulerButtonHidesAndRebuildsTheMarks) {
    loadTwoPaths();
    EXPECT_TRUE(window->rulerShown());
    EXPECT_THAT(paths()[0].rulerMarks, SizeIs(3));
    click("pushButton_getRuler");
    EXPECT_EQ(text("pushButton_getRuler"), "Show Ruler");
    EXPECT_FALSE(window->rulerShown());
    EXPECT_THAT(paths()[0].rulerMarks, IsEmpty());
    EXPECT_THAT(paths()[1].rulerMarks, IsEmpty());
    type("lineEdit_lineSpace", "3");
    EXPECT_THAT(paths()[0].rulerMarks, IsEmpty());
    click("pushButton_getRuler");
    EXPECT_EQ(text("pushButton_getRuler"), "Hide Ruler");
    EXPECT_TRUE(window->rulerShown());
    // 80 corrected pixels across, points at a distance of a fifth: 16 pixels, a tick at 0, 4, 8 and 12.
    EXPECT_EQ(ticks(0, 0), 4U);
}

TEST_F(SegmentControls, rulerButtonWorksWithoutATrack) {
    click("pushButton_getRuler");
    EXPECT_EQ(text("pushButton_getRuler"), "Show Ruler");
    click("pushButton_getRuler");
    EXPECT_EQ(text("pushButton_getRuler"), "Hide Ruler");
}

TEST_F(SegmentControls, rulerIsMeasuredInTheCorrectedImage) {
    // One segment down the middle half: 0.5 x the corrected height of 20 x 3 = 60 makes 30 pixels.
    independent::Track tall =
        SmallTrack({{0, 0, 0, 0, 0.5, 0.25, 1, 10, 10, 9}, {0, 1, 0, 0, 0.5, 0.75, 1, 10, 10, 9}});
    tall.xResolution = 0.25;
    tall.yResolution = 0.75;
    load(tall);
    EXPECT_EQ(ticks(0, 0), 3U);
}

TEST_F(SegmentControls, batchSettingDisablesSegmentSelection) {
    click("checkBox_batchSetting");
    for (const char* name : {"label_path", "spinBox_pathId", "label_segment", "spinBox_segmentId"})
        EXPECT_FALSE(find<QWidget>(name).isEnabled()) << name;
    click("checkBox_batchSetting");
    for (const char* name : {"label_path", "spinBox_pathId", "label_segment", "spinBox_segmentId"})
        EXPECT_TRUE(find<QWidget>(name).isEnabled()) << name;
}

TEST_F(SegmentControls, pathNumberBeyondTheLastBecomesTheLast) {
    loadTwoPaths();
    typeNumber("spinBox_pathId", "3");
    EXPECT_EQ(number("spinBox_pathId"), 2);
    EXPECT_EQ(canvas().currentPath(), 1);
    EXPECT_THAT(shownParameters(), ElementsAre("200", "210", "220"));
}

TEST_F(SegmentControls, segmentNumberBeyondTheLastBecomesTheLast) {
    loadTwoPaths();
    typeNumber("spinBox_segmentId", "4");
    EXPECT_EQ(number("spinBox_segmentId"), 3);
    EXPECT_EQ(canvas().currentSegment(), 2);
    EXPECT_THAT(shownParameters(), ElementsAre("102", "112", "122"));
}

TEST_F(SegmentControls, selectingAPathSelectsItsFirstSegment) {
    loadTwoPaths();
    typeNumber("spinBox_segmentId", "3");
    typeNumber("spinBox_pathId", "2");
    EXPECT_EQ(number("spinBox_segmentId"), 1);
    EXPECT_EQ(canvas().currentPath(), 1);
    EXPECT_EQ(canvas().currentSegment(), 0);
    EXPECT_THAT(shownParameters(), ElementsAre("200", "210", "220"));
    typeNumber("spinBox_segmentId", "2");
    EXPECT_EQ(canvas().currentSegment(), 1);
    EXPECT_THAT(shownParameters(), ElementsAre("201", "211", "221"));
}

TEST_F(SegmentControls, arrowKeysStopAtTheLast) {
    loadTwoPaths();
    auto& box = find<QSpinBox>("spinBox_pathId");
    box.setFocus();
    for (int press = 0; press < 5; ++press)
        QTest::keyClick(&box, Qt::Key_Up);
    EXPECT_EQ(box.value(), 2);
}

TEST_F(SegmentControls, withoutPathsBothBoxesFallBackToOne) {
    typeNumber("spinBox_pathId", "57");
    typeNumber("spinBox_segmentId", "86");
    EXPECT_EQ(number("spinBox_pathId"), 1);
    EXPECT_EQ(number("spinBox_segmentId"), 1);
}

TEST_F(SegmentControls, pathOfOnePointHasNoSegmentToSelect) {
    loadTwoPaths();
    typeNumber("spinBox_segmentId", "3");
    for (int closed = 0; closed < 2; ++closed) // loaded paths are closed one by one
        QTest::mouseDClick(&canvas(), Qt::LeftButton, Qt::NoModifier, {2, 2});
    click("pushButton_deleteAll");
    clickCanvas(0.5, 0.5);
    ASSERT_THAT(paths(), SizeIs(1));
    ASSERT_THAT(paths()[0].points, SizeIs(1));
    typeNumber("spinBox_segmentId", "2");
    EXPECT_EQ(number("spinBox_segmentId"), 1);
    EXPECT_EQ(canvas().currentSegment(), 0);
    EXPECT_FALSE(canvas().segmentExists(0, 0));
}

TEST_F(SegmentControls, acceptsThatTheSelectedPathWasRemoved) {
    loadTwoPaths();
    typeNumber("spinBox_pathId", "2");
    typeNumber("spinBox_segmentId", "2");
    click("pushButton_deleteLast");
    click("pushButton_deleteLast");
    ASSERT_THAT(paths(), SizeIs(1));
    ASSERT_EQ(canvas().currentPath(), 1);
    QTest::keyClick(&find<QSpinBox>("spinBox_segmentId"), Qt::Key_Up);
    EXPECT_EQ(number("spinBox_segmentId"), 1);
    type("lineEdit_lineLength", "999");
    EXPECT_THAT(paths()[0].lengths, ElementsAre(100, 101, 102, 103));
}

// The numbers are corrected in one step: a recursion for each number would overflow a stack of 1 MiB.
TEST_F(SegmentControls, tenThousandBecomesTheLastOnASmallStack) {
    load(SmallTrack(PathAcross(0, 2, 0.5, 100)));
    rlimit stack{};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &stack), 0);
    stack.rlim_cur = kSmallStack;
    ASSERT_EQ(setrlimit(RLIMIT_STACK, &stack), 0);
    for (const char* name : {"spinBox_pathId", "spinBox_segmentId"}) {
        auto& box = find<QSpinBox>(name);
        const QSignalSpy changes(&box, qOverload<int>(&QSpinBox::valueChanged));
        QApplication::clipboard()->setText(QStringLiteral("10000"));
        box.setFocus();
        box.selectAll();
        QTest::keyClick(&box, Qt::Key_V, Qt::ControlModifier); // all five digits in one change
        EXPECT_EQ(box.value(), 1) << name;
        EXPECT_LE(changes.size(), 4) << name;
    }
}

TEST_F(SegmentControls, typingSetsTheSelectedSegmentDigitByDigit) {
    loadTwoPaths();
    typeNumber("spinBox_segmentId", "2");
    type("lineEdit_lineLength", "75");
    type("lineEdit_lineWidth", "8");
    type("lineEdit_lineSpace", "9");
    EXPECT_THAT(paths()[0].lengths, ElementsAre(100, 75, 102, 103));
    EXPECT_THAT(paths()[0].widths, ElementsAre(110, 8, 112, 113));
    EXPECT_THAT(paths()[0].spaces, ElementsAre(120, 9, 122, 123));
    EXPECT_THAT(paths()[1].lengths, ElementsAre(200, 201, 202));
    QTest::keyClick(&find<QLineEdit>("lineEdit_lineLength"), Qt::Key_Backspace);
    EXPECT_EQ(paths()[0].lengths[1], 7);
}

TEST_F(SegmentControls, fieldTextThatIsNoNumberCountsAsZero) {
    loadTwoPaths();
    type("lineEdit_lineLength", "");
    EXPECT_EQ(paths()[0].lengths[0], 0);
    find<QLineEdit>("lineEdit_lineLength").setText(QStringLiteral("12a"));
    EXPECT_EQ(paths()[0].lengths[0], 0);
    find<QLineEdit>("lineEdit_lineLength").setText(QStringLiteral("12"));
    EXPECT_EQ(paths()[0].lengths[0], 12);
    find<QLineEdit>("lineEdit_lineLength").setText(QStringLiteral("010"));
    EXPECT_EQ(paths()[0].lengths[0], 10);
    click("checkBox_batchSetting");
    type("lineEdit_lineSpace", "");
    EXPECT_THAT(paths()[0].spaces, Each(0));
    EXPECT_THAT(paths()[1].spaces, Each(0));
}

TEST_F(SegmentControls, batchSettingReachesEveryPointOfEveryPath) {
    loadTwoPaths();
    click("checkBox_batchSetting");
    type("lineEdit_lineLength", "7");
    type("lineEdit_lineWidth", "6");
    type("lineEdit_lineSpace", "5");
    for (const TrackPath& path : paths()) {
        EXPECT_THAT(path.lengths, Each(7));
        EXPECT_THAT(path.widths, Each(6));
        EXPECT_THAT(path.spaces, Each(5));
    }
}

TEST_F(SegmentControls, batchSettingRebuildsAllMarksImmediately) {
    loadTwoPaths();
    canvas().clearRulerMarks();
    click("checkBox_batchSetting");
    type("lineEdit_lineLength", "7");
    ASSERT_THAT(paths()[0].rulerMarks, SizeIs(3));
    ASSERT_THAT(paths()[1].rulerMarks, SizeIs(2));
    // The first tick of a horizontal segment is vertical, 7 of 20 corrected pixels long.
    for (const TrackPath& path : paths()) {
        const RulerMarks& marks = path.rulerMarks[0];
        EXPECT_NEAR(std::abs(marks.tickStarts[0].y() - marks.tickEnds[0].y()), 7.0 / 20, 1e-9);
    }
}

TEST_F(SegmentControls, typingWithoutASegmentSetsNothing) {
    load(SmallTrack({{0, 0, 0, 0, 0.5, 0.5, 1, 11, 12, 13}}));
    type("lineEdit_lineLength", "500");
    EXPECT_THAT(paths()[0].lengths, ElementsAre(11));
}

TEST_F(SegmentControls, typingRefreshesAShownRulerAndAMethodDoesNot) {
    loadTwoPaths();
    auto& methods = find<QComboBox>("comboBox_lineType");
    methods.addItem(QStringLiteral("another"));
    canvas().clearRulerMarks();
    methods.setCurrentIndex(1);
    EXPECT_THAT(paths()[0].methods, ElementsAre(2, 1, 1, 1));
    EXPECT_THAT(paths()[0].rulerMarks, IsEmpty());
    for (const char* field : {"lineEdit_lineLength", "lineEdit_lineWidth", "lineEdit_lineSpace"}) {
        canvas().clearRulerMarks();
        type(field, "44");
        EXPECT_THAT(paths()[0].rulerMarks, Not(IsEmpty())) << field;
    }
    click("checkBox_batchSetting");
    methods.setCurrentIndex(0);
    methods.setCurrentIndex(1);
    EXPECT_THAT(paths()[0].methods, Each(2));
    EXPECT_THAT(paths()[1].methods, Each(2));
}

TEST_F(SegmentControls, showingASegmentInBatchModeChangesNothing) {
    click("checkBox_batchSetting");
    loadTwoPaths();
    EXPECT_THAT(shownParameters(), ElementsAre("100", "110", "120"));
    EXPECT_THAT(paths()[0].lengths, ElementsAre(100, 101, 102, 103));
    EXPECT_THAT(paths()[1].widths, ElementsAre(210, 211, 212));
}

TEST_F(SegmentControls, showsTheMethodOfTheSelectedSegment) {
    std::vector<independent::Segment> segments = PathAcross(0, 3, 0.5, 100);
    segments[0].method = 2;
    auto& methods = find<QComboBox>("comboBox_lineType");
    methods.addItem(QStringLiteral("another"));
    load(SmallTrack(segments));
    EXPECT_EQ(methods.currentIndex(), 1);
    typeNumber("spinBox_segmentId", "2");
    EXPECT_EQ(methods.currentIndex(), 0);
    typeNumber("spinBox_segmentId", "1");
    EXPECT_EQ(methods.currentIndex(), 1);
    click("pushButton_deleteAll");
    EXPECT_EQ(methods.currentIndex(), 0);
}

TEST_F(SegmentControls, keepsAMethodThatIsNotListed) {
    load(SmallTrack({{0, 0, 0, 0, 0.2, 0.5, 5, 10, 10, 10}, {0, 1, 0, 0, 0.8, 0.5, 5, 10, 10, 10}}));
    EXPECT_THAT(paths()[0].methods, Each(5));
    typeNumber("spinBox_segmentId", "1");
    EXPECT_THAT(paths()[0].methods, Each(5));
}

TEST_F(SegmentControls, addingAndDraggingAPointRefreshAShownRuler) {
    load(SmallTrack(PathAcross(0, 3, 0.5, 100)));
    setSlider(80);
    QTest::mouseDClick(&canvas(), Qt::LeftButton, Qt::NoModifier, canvas().rect().center()); // closes it
    drawPath({{0.3, 0.3}, {0.6, 0.3}, {0.6, 0.6}});
    ASSERT_THAT(paths(), SizeIs(2));
    EXPECT_THAT(paths()[1].rulerMarks, SizeIs(2));
}

} // namespace
