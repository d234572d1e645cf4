#include "TrackOperationsTest.h"

#include <QApplication>
#include <QScrollArea>
#include <QSlider>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace fs = std::filesystem;

/// The operation "Load".
class LoadTrack : public TrackOperationsTest {
  protected:
    /// A binary track whose map has this size.
    std::string trackOfSize(int width, int height, double xResolution = 1, double yResolution = 1) {
        independent::Track sized = track;
        sized.width = width;
        sized.height = height;
        sized.xResolution = xResolution;
        sized.yResolution = yResolution;
        sized.cells.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 1);
        sized.cells[0] = 0;
        return independent::BinaryFile(sized);
    }
};

TEST_F(LoadTrack, loadsAWorkspaceTrack) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    EXPECT_EQ(text("label_fileName"), "b.trk");
    EXPECT_EQ(text("lineEdit_heightMin"), "0");
    EXPECT_EQ(text("lineEdit_heightMax"), "43.75"); // 39 + 19 x 0.25
    EXPECT_EQ(canvas().pixmap(Qt::ReturnByValue).size(), QSize(40, 20));
    const QImage shown = canvas().pixmap(Qt::ReturnByValue).toImage();
    EXPECT_EQ(shown.pixelColor(0, 0), QColor(0, 0, 0));
    EXPECT_EQ(shown.pixelColor(39, 19), QColor(255, 255, 255));
    ASSERT_THAT(paths(), SizeIs(1));
    EXPECT_THAT(paths()[0].rulerMarks, SizeIs(2));
    EXPECT_EQ(text("lineEdit_lineLength"), "100");
    EXPECT_EQ(text("lineEdit_lineWidth"), "110");
    EXPECT_EQ(text("lineEdit_lineSpace"), "120");
    expectNormal();
    expectNoBox();
}

TEST_F(LoadTrack, loadsAnExternalTrackFromTheDialog) {
    loadOne();
    EXPECT_EQ(text("label_fileName"), "External - one.trk");
    EXPECT_EQ(status(), "Load successfully.");
    const std::vector<SeenFileDialog> dialogs = answers.takeFileDialogs();
    ASSERT_THAT(dialogs, SizeIs(1));
    EXPECT_EQ(dialogs[0].caption, QStringLiteral("Please select a track file"));
    EXPECT_EQ(dialogs[0].filters, QStringList(QStringLiteral("track (*.trk)")));
    EXPECT_EQ(dialogs[0].folder.toStdString(), fs::current_path().string());
    EXPECT_FALSE(dialogs[0].saves);
}

TEST_F(LoadTrack, changesNothingWhenCancelled) {
    loadOne();
    edit();
    operate("Refresh");
    loadExternal("");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_EQ(text("label_fileName"), "External - one.trk");
    EXPECT_EQ(paths()[0].lengths[0], 33);
    expectNormal();
    expectNoBox();
}

TEST_F(LoadTrack, heightsAreShownWithSixDigits) {
    independent::Track fine = track;
    fine.heights[5] = -12345678.0;
    fine.heights[6] = 1234.56789;
    loadContent("fine.trk",
                independent::TextMap(fine) + independent::TextAnchor(fine) + independent::TextPaths(fine));
    EXPECT_EQ(text("lineEdit_heightMin"), "-1.23457e+07");
    EXPECT_EQ(text("lineEdit_heightMax"), "1234.57");
}

TEST_F(LoadTrack, negativeHeightsAreShownFromLowestToHighest) {
    independent::Track low = track;
    for (auto& height : low.heights)
        *height -= 100.0;
    loadContent("low.trk", independent::TextFile(low));
    EXPECT_EQ(text("lineEdit_heightMin"), "-100");
    EXPECT_EQ(text("lineEdit_heightMax"), "-56.25"); // 39 + 19 x 0.25 - 100
}

TEST_F(LoadTrack, textTracksRangeStartsAtItsLimits) {
    for (const double shift : {40000.0, -40000.0}) {
        independent::Track far = track;
        for (auto& height : far.heights)
            *height = std::floor(*height) + shift; // text holds six digits
        loadContent("far.trk", independent::TextFile(far));
        EXPECT_EQ(status(), "Load successfully.");
        EXPECT_EQ(text("lineEdit_heightMin"), shift > 0 ? "32768" : "-40000");
        EXPECT_EQ(text("lineEdit_heightMax"), shift > 0 ? "40043" : "-32768");
    }
}

TEST_F(LoadTrack, heightsAreShownEvenWhenTheMapFails) {
    independent::Track flat = track;
    flat.heights.assign(flat.heights.size(), 7.5);
    loadContent("flat.trk", independent::TextFile(flat));
    expectErrorBox("ERROR_TRACK - Failed to read height map.");
    EXPECT_EQ(text("lineEdit_heightMin"), "7.5");
    EXPECT_EQ(text("lineEdit_heightMax"), "7.5");
}

TEST_F(LoadTrack, fitsTheImageToTheView) {
    const auto& view = find<QScrollArea>("scrollArea");
    const int expected =
        static_cast<int>(std::floor(std::min(view.width() / 200.0, view.height() / 100.0) * 20));
    ASSERT_GT(expected, 1);
    ASSERT_LT(expected, 80);
    // It is the image's own size that fits, before an axis is stretched.
    for (const QSize& stretch : {QSize(1, 1), QSize(3, 1), QSize(1, 3)}) {
        loadContent("large.trk", trackOfSize(200, 100, stretch.width(), stretch.height()));
        EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), expected);
        EXPECT_EQ(text("label_scale"), "Scale:" + std::to_string(expected * 5) + "%");
        EXPECT_EQ(canvas().size(), QSize(10 * expected * stretch.width(), 5 * expected * stretch.height()));
    }
}

TEST_F(LoadTrack, fitUsesTheImagesSizeNotTheShownOne) {
    loadContent("stretched.trk", trackOfSize(200, 50, 2, 1)); // shown as 400 x 50
    const auto& view = find<QScrollArea>("scrollArea");
    const int expected = static_cast<int>(std::floor(view.width() / 200.0 * 20));
    ASSERT_LT(view.width() / 200.0, view.height() / 50.0);
    ASSERT_GT(expected, 1);
    ASSERT_LT(expected, 80);
    EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), expected);
    EXPECT_EQ(canvas().size(), QSize(qRound(400 * expected * 0.05), qRound(50 * expected * 0.05)));
}

TEST_F(LoadTrack, hugeImageGetsTheSlidersLowestScale) {
    WriteFile(folder.Path("huge.trk"), trackOfSize(20000, 2));
    for (int twice = 0; twice < 2; ++twice) { // the second time the slider is already at its lowest value
        loadExternal(folder.Path("huge.trk"));
        EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), 1);
        EXPECT_EQ(text("label_scale"), "Scale:5%");
        EXPECT_EQ(canvas().size(), QSize(1000, 1));
    }
}

TEST_F(LoadTrack, tinyImageIsFittedBeyondTheSlidersRange) {
    find<QSlider>("horizontalSlider_resizeImage").setValue(80);
    loadContent("tiny.trk", trackOfSize(4, 4));
    const auto& view = find<QScrollArea>("scrollArea");
    const int fit = static_cast<int>(std::floor(std::min(view.width(), view.height()) / 4.0 * 20));
    EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), 80);
    EXPECT_EQ(text("label_scale"), "Scale:" + std::to_string(fit * 5) + "%");
    EXPECT_EQ(canvas().width(), qRound(4 * fit * 0.05));
}

TEST_F(LoadTrack, selectsTheFirstPath) {
    std::vector<independent::Segment> segments = PathAcross(0, 3, 0.3, 100);
    for (const independent::Segment& segment : PathAcross(1, 3, 0.6, 200))
        segments.push_back(segment);
    loadContent("two.trk", independent::BinaryFile(SmallTrack(segments)));
    typeNumber("spinBox_pathId", "2");
    typeNumber("spinBox_segmentId", "2");
    loadExternal(folder.Path("two.trk"));
    EXPECT_EQ(find<QSpinBox>("spinBox_pathId").value(), 1);
    EXPECT_EQ(find<QSpinBox>("spinBox_segmentId").value(), 1);
    EXPECT_EQ(canvas().currentPath(), 0);
    EXPECT_EQ(canvas().currentSegment(), 0);
    EXPECT_EQ(text("lineEdit_lineLength"), "100");
    EXPECT_THAT(paths()[1].lengths, ElementsAre(200, 201, 202));
}

TEST_F(LoadTrack, resetsTheNumberOfClosedPaths) {
    loadOne();
    QTest::mouseDClick(&canvas(), Qt::LeftButton, Qt::NoModifier, {2, 2});
    ASSERT_EQ(canvas().document().finishedCount(), 1);
    loadExternal(folder.Path("one.trk"));
    EXPECT_EQ(canvas().document().finishedCount(), 0);
    find<QSlider>("horizontalSlider_resizeImage").setValue(80); // 320 x 80
    QTest::mousePress(&canvas(), Qt::LeftButton, Qt::NoModifier, {40, 70});
    EXPECT_THAT(paths(), SizeIs(1));
    QTest::mouseRelease(&canvas(), Qt::LeftButton, Qt::NoModifier, {40, 70});
    EXPECT_THAT(paths()[0].points, SizeIs(4)); // the last path is continued
}

TEST_F(LoadTrack, computesNoMarksForAHiddenRuler) {
    click("pushButton_getRuler");
    loadOne();
    EXPECT_THAT(paths()[0].rulerMarks, IsEmpty());
}

TEST_F(LoadTrack, showsTheWaitCursorOnlyWhileItReads) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    int waiting = 0;
    QObject::connect(&find<QLineEdit>("lineEdit_heightMax"), &QLineEdit::textChanged, window.get(),
                     [&waiting] {
                         const QCursor* cursor = QGuiApplication::overrideCursor();
                         waiting += cursor != nullptr && cursor->shape() == Qt::WaitCursor ? 1 : 0;
                     });
    loadExternal(folder.Path("one.trk"));
    EXPECT_EQ(waiting, 1);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    answers.note = [] {
        return QGuiApplication::overrideCursor() == nullptr ? QStringLiteral("free")
                                                            : QStringLiteral("waiting");
    };
    loadContent("broken.trk", "nothing");
    EXPECT_EQ(answers.takeBoxes().at(0).underneath, QStringLiteral("free"));
}

TEST_F(LoadTrack, failureIsLoggedAndShownAndLeavesNoTrackToSave) {
    loadOne();
    (void)log.Lines();
    WriteFile(folder.Path("broken.trk"), "nothing");
    answers.note = [this] { return find<QComboBox>("comboBox_operation").currentText(); };
    loadExternal(folder.Path("broken.trk"));
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_THAT(boxes, SizeIs(1));
    EXPECT_EQ(boxes[0].text, QStringLiteral("ERROR_TRACK - Failed to read basic information."));
    EXPECT_EQ(boxes[0].underneath, QStringLiteral("Normal"));
    EXPECT_EQ(log.Lines().back(), "ERROR: (ERROR_TRACK) Failed to read basic information.");
    EXPECT_EQ(status(), "Load successfully."); // of the previous load
    EXPECT_EQ(text("label_fileName"), "External - one.trk");
    operate("Save");
    expectErrorBox(kNoTrack);
}

TEST_F(LoadTrack, failedHeaderOrHeightMapKeepsThePictureAndThePaths) {
    loadOne();
    find<QSlider>("horizontalSlider_resizeImage").setValue(20);
    const QSize before = canvas().size();
    independent::Track flat = track;
    flat.heights.assign(flat.heights.size(), 7.0);
    flat.xResolution = 9;
    loadContent("flat.trk", independent::TextFile(flat));
    expectErrorBox("ERROR_TRACK - Failed to read height map.");
    operate("Save");
    expectErrorBox(kNoTrack);
    find<QSlider>("horizontalSlider_resizeImage").setValue(19);
    find<QSlider>("horizontalSlider_resizeImage").setValue(20);
    EXPECT_EQ(canvas().size(), before);
    EXPECT_THAT(paths(), SizeIs(1));
    edit();
    EXPECT_EQ(paths()[0].lengths[0], 33);
}

TEST_F(LoadTrack, failsWithoutPaths) {
    loadContent("bare.trk", independent::TextMap(track));
    expectErrorBox("ERROR_TRACK - Failed to read path information.");
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_EQ(canvas().pixmap(Qt::ReturnByValue).size(), QSize(40, 20));
}

} // namespace
