#include "OrdinaryUser.h"
#include "WindowTest.h"
#include "log/Log.h"
#include "workflow/TrackFolder.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QScrollArea>
#include <QSlider>
#include <QStandardItemModel>
#include <QTextDocument>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace fs = std::filesystem;

const std::string kNoTrack = "Please load a track file firstly.";

/// What an independent reader finds in a track saved by the window, without the ruler.
std::vector<independent::Segment> SegmentsIn(const std::string& path) {
    return independent::ReadBinary(FileContent(path)).segments;
}

std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class TrackOperations : public WindowTest {
  protected:
    void SetUp() override { openWindow(); }

    /// A workspace with a binary track b.trk and a text track A.trk is open.
    void openWorkspace() {
        makeBackup(folder.Path("station.osbak"), {{"b.trk", independent::BinaryFile(track)},
                                                  {"A.trk", independent::TextFile(track)},
                                                  {"notes.txt", "no track"}});
        loadBackup(folder.Path("station.osbak"));
        ASSERT_EQ(status(), "Load backup file successfully.");
    }

    void loadFromWorkspace(const std::string& name) {
        choose("comboBox_file", name);
        operate("Load");
        ASSERT_EQ(status(), "Load successfully.");
    }

    /// Sets the first segment's length to something new.
    void edit() { type("lineEdit_lineLength", "33"); }

    void expectEdited(const std::string& path) {
        const std::vector<independent::Segment> segments = SegmentsIn(path);
        ASSERT_THAT(segments, SizeIs(track.segments.size()));
        EXPECT_EQ(segments[0].length, 33);
        EXPECT_EQ(segments[1].length, track.segments[1].length);
    }

    void expectNormal() {
        EXPECT_EQ(find<QComboBox>("comboBox_operation").currentText(), QStringLiteral("Normal"));
    }

    const independent::Track track = SmallTrack(PathAcross(0, 3, 0.5, 100));
};

TEST_F(TrackOperations, listHoldsOnlyExternalWithoutASource) {
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(TrackOperations, listsWorkspaceTracksByNameIgnoringCaseAndExternalLast) {
    makeBackup(folder.Path("x.osbak"), {{"b.trk", ""}, {"A.trk", ""}, {"C.trk", ""}, {"notes.txt", ""}});
    loadBackup(folder.Path("x.osbak"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "C.trk", "External"));
}

TEST_F(TrackOperations, missingFolderListsNothing) {
    EXPECT_TRUE(ListFiles(QStringLiteral("./nowhere"), QStringLiteral("*.trk")).isEmpty());
}

TEST_F(TrackOperations, unreadableFolderIsReportedAndTheListStays) {
    openWorkspace();
    ASSERT_EQ(::chmod(kTracks.c_str(), 0), 0);
    ASSERT_EQ(::chmod("TmpDirOsws", 0755), 0); // it is open to its owner alone
    {
        const OrdinaryUser user(".");
        ASSERT_TRUE(user.IsReady());
        operate("Refresh");
    }
    expectErrorBox("ERROR_FILE - Failed to list files in ./TmpDirOsws/vdk/ContourPath");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "External"));
    ASSERT_EQ(::chmod(kTracks.c_str(), 0755), 0);
    WriteFile(kTracks + "c.trk", "");
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "c.trk", "External"));
}

TEST_F(TrackOperations, listOmitsInvalidUtf8AndHiddenNames) {
    openWorkspace();
    WriteFile(kTracks + "\xff.trk", "");
    WriteFile(kTracks + ".c.trk", "");
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "External"));
}

TEST_F(TrackOperations, listHasOddNamesAndFilesWithoutPermissions) {
    openWorkspace();
    for (const std::string name : {"c\n.trk", "d [*]?\\.TRK", "e\u0301.trk"})
        WriteFile(kTracks + name, "");
    fs::permissions(kTracks + "b.trk", fs::perms::none);
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"),
                ElementsAre("A.trk", "b.trk", "c\n.trk", "d [*]?\\.TRK", "e\u0301.trk", "External"));
}

TEST_F(TrackOperations, listEqualsThatOfQt) {
    openWorkspace();
    for (const char* name :
         {"B2.trk", "_.trk", "a10.trk", "a9.trk", "\u00c4.trk", "\u00e4b.trk", "z.trk.old"})
        WriteFile(kTracks + name, "");
    fs::create_directory(kTracks + "folder.trk");
    fs::create_symlink("A.trk", kTracks + "link.trk");
    fs::create_symlink("folder.trk", kTracks + "link to folder.trk");
    fs::create_symlink("nowhere", kTracks + "broken link.trk");
    ASSERT_EQ(::mkfifo((kTracks + "pipe.trk").c_str(), 0600), 0);
    operate("Refresh");
    std::vector<std::string> expected;
    for (const QString& name : QDir(QString::fromStdString(kTracks)).entryList({QStringLiteral("*.trk")}))
        expected.push_back(name.toStdString());
    EXPECT_THAT(expected, SizeIs(11));
    EXPECT_THAT(expected, Not(Contains("pipe.trk")));
    expected.emplace_back("External");
    EXPECT_EQ(items("comboBox_file"), expected);
}

TEST_F(TrackOperations, namesThatDifferOnlyInCaseHaveAFixedOrder) {
    openWorkspace();
    for (const char* name : {"c.trk", "C.trk", "B.trk"})
        WriteFile(kTracks + name, "");
    operate("Refresh");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "B.trk", "b.trk", "C.trk", "c.trk", "External"));
}

TEST_F(TrackOperations, externalCannotBeDeleted) {
    openWorkspace();
    const auto* model = qobject_cast<QStandardItemModel*>(find<QComboBox>("comboBox_operation").model());
    choose("comboBox_file", "External");
    EXPECT_EQ(model->item(4)->flags(), Qt::NoItemFlags);
    operate("Delete");
    EXPECT_EQ(status(), "Load backup file successfully.");
    expectNormal();
    choose("comboBox_file", "b.trk");
    EXPECT_EQ(model->item(4)->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

TEST_F(TrackOperations, loadsAWorkspaceTrack) {
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

TEST_F(TrackOperations, loadsAnExternalTrackFromTheDialog) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    EXPECT_EQ(text("label_fileName"), "External - one.trk");
    EXPECT_EQ(status(), "Load successfully.");
    const std::vector<SeenFileDialog> dialogs = answers.takeFileDialogs();
    ASSERT_THAT(dialogs, SizeIs(1));
    EXPECT_EQ(dialogs[0].caption, QStringLiteral("Please select a track file"));
    EXPECT_EQ(dialogs[0].filters, QStringList(QStringLiteral("track (*.trk)")));
    EXPECT_EQ(dialogs[0].folder.toStdString(), fs::current_path().string());
    EXPECT_FALSE(dialogs[0].saves);
}

TEST_F(TrackOperations, cancelledLoadChangesNothing) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    edit();
    operate("Refresh");
    loadExternal("");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_EQ(text("label_fileName"), "External - one.trk");
    EXPECT_EQ(paths()[0].lengths[0], 33);
    expectNormal();
    expectNoBox();
}

TEST_F(TrackOperations, heightsAreShownWithSixDigits) {
    independent::Track fine = track;
    fine.heights[5] = -12345678.0;
    fine.heights[6] = 1234.56789;
    WriteFile(folder.Path("fine.trk"),
              independent::TextMap(fine) + independent::TextAnchor(fine) + independent::TextPaths(fine));
    loadExternal(folder.Path("fine.trk"));
    EXPECT_EQ(text("lineEdit_heightMin"), "-1.23457e+07");
    EXPECT_EQ(text("lineEdit_heightMax"), "1234.57");
}

TEST_F(TrackOperations, negativeHeightsAreShownFromLowestToHighest) {
    independent::Track low = track;
    for (auto& height : low.heights)
        *height -= 100.0;
    WriteFile(folder.Path("low.trk"), independent::TextFile(low));
    loadExternal(folder.Path("low.trk"));
    EXPECT_EQ(text("lineEdit_heightMin"), "-100");
    EXPECT_EQ(text("lineEdit_heightMax"), "-56.25"); // 39 + 19 x 0.25 - 100
}

TEST_F(TrackOperations, textTracksRangeStartsAtItsLimits) {
    for (const double shift : {40000.0, -40000.0}) {
        independent::Track far = track;
        for (auto& height : far.heights)
            *height = std::floor(*height) + shift; // text holds six figures
        WriteFile(folder.Path("far.trk"), independent::TextFile(far));
        loadExternal(folder.Path("far.trk"));
        EXPECT_EQ(status(), "Load successfully.");
        EXPECT_EQ(text("lineEdit_heightMin"), shift > 0 ? "32768" : "-40000");
        EXPECT_EQ(text("lineEdit_heightMax"), shift > 0 ? "40043" : "-32768");
    }
}

TEST_F(TrackOperations, heightsAreShownEvenWhenTheMapFails) {
    independent::Track flat = track;
    flat.heights.assign(flat.heights.size(), 7.5);
    WriteFile(folder.Path("flat.trk"), independent::TextFile(flat));
    loadExternal(folder.Path("flat.trk"));
    expectErrorBox("ERROR_TRACK - Failed to read height map.");
    EXPECT_EQ(text("lineEdit_heightMin"), "7.5");
    EXPECT_EQ(text("lineEdit_heightMax"), "7.5");
}

TEST_F(TrackOperations, loadingFitsTheImageToTheView) {
    independent::Track large = track;
    large.width = 200;
    large.height = 100;
    large.cells.assign(std::size_t{200} * 100, 1);
    large.cells[0] = 0;
    const auto& view = find<QScrollArea>("scrollArea");
    const int expected =
        static_cast<int>(std::floor(std::min(view.width() / 200.0, view.height() / 100.0) * 20));
    ASSERT_GT(expected, 1);
    ASSERT_LT(expected, 80);
    // It is the image's own size that fits, before an axis is stretched.
    for (const QSize& stretch : {QSize(1, 1), QSize(3, 1), QSize(1, 3)}) {
        large.xResolution = stretch.width();
        large.yResolution = stretch.height();
        WriteFile(folder.Path("large.trk"), independent::BinaryFile(large));
        loadExternal(folder.Path("large.trk"));
        EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), expected);
        EXPECT_EQ(text("label_scale"), "Scale:" + std::to_string(expected * 5) + "%");
        EXPECT_EQ(canvas().size(), QSize(10 * expected * stretch.width(), 5 * expected * stretch.height()));
    }
}

TEST_F(TrackOperations, fitUsesTheImagesSizeNotTheShownOne) {
    independent::Track stretched = track;
    stretched.width = 200;
    stretched.height = 50;
    stretched.xResolution = 2; // shown as 400 x 50
    stretched.yResolution = 1;
    stretched.cells.assign(std::size_t{200} * 50, 1);
    stretched.cells[0] = 0;
    WriteFile(folder.Path("stretched.trk"), independent::BinaryFile(stretched));
    loadExternal(folder.Path("stretched.trk"));
    const auto& view = find<QScrollArea>("scrollArea");
    const int expected = static_cast<int>(std::floor(view.width() / 200.0 * 20));
    ASSERT_LT(view.width() / 200.0, view.height() / 50.0);
    ASSERT_GT(expected, 1);
    ASSERT_LT(expected, 80);
    EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), expected);
    EXPECT_EQ(canvas().size(), QSize(qRound(400 * expected * 0.05), qRound(50 * expected * 0.05)));
}

TEST_F(TrackOperations, hugeImageGetsTheSlidersLowestScale) {
    independent::Track huge = track;
    huge.width = 20000;
    huge.height = 2;
    huge.xResolution = huge.yResolution = 1;
    huge.cells.assign(std::size_t{20000} * 2, 1);
    huge.cells[0] = 0;
    WriteFile(folder.Path("huge.trk"), independent::BinaryFile(huge));
    for (int twice = 0; twice < 2; ++twice) { // the slider may stand at its lowest value already
        loadExternal(folder.Path("huge.trk"));
        EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), 1);
        EXPECT_EQ(text("label_scale"), "Scale:5%");
        EXPECT_EQ(canvas().size(), QSize(1000, 1));
    }
}

TEST_F(TrackOperations, tinyImageIsFittedBeyondTheSlidersRange) {
    independent::Track tiny = track;
    tiny.width = 4;
    tiny.height = 4;
    tiny.xResolution = tiny.yResolution = 1;
    tiny.cells.assign(16, 1);
    tiny.cells[0] = 0;
    WriteFile(folder.Path("tiny.trk"), independent::BinaryFile(tiny));
    find<QSlider>("horizontalSlider_resizeImage").setValue(80);
    loadExternal(folder.Path("tiny.trk"));
    const auto& view = find<QScrollArea>("scrollArea");
    const int fit = static_cast<int>(std::floor(std::min(view.width(), view.height()) / 4.0 * 20));
    EXPECT_EQ(find<QSlider>("horizontalSlider_resizeImage").value(), 80);
    EXPECT_EQ(text("label_scale"), "Scale:" + std::to_string(fit * 5) + "%");
    EXPECT_EQ(canvas().width(), qRound(4 * fit * 0.05));
}

TEST_F(TrackOperations, loadingSelectsTheFirstPath) {
    std::vector<independent::Segment> segments = PathAcross(0, 3, 0.3, 100);
    for (const independent::Segment& segment : PathAcross(1, 3, 0.6, 200))
        segments.push_back(segment);
    WriteFile(folder.Path("two.trk"), independent::BinaryFile(SmallTrack(segments)));
    loadExternal(folder.Path("two.trk"));
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

TEST_F(TrackOperations, loadingResetsTheNumberOfClosedPaths) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    QTest::mouseDClick(&canvas(), Qt::LeftButton, Qt::NoModifier, {2, 2});
    ASSERT_EQ(canvas().document().finishedCount(), 1);
    loadExternal(folder.Path("one.trk"));
    EXPECT_EQ(canvas().document().finishedCount(), 0);
    find<QSlider>("horizontalSlider_resizeImage").setValue(80); // 320 x 80
    QTest::mousePress(&canvas(), Qt::LeftButton, Qt::NoModifier, {40, 70});
    EXPECT_THAT(paths(), SizeIs(1));
    QTest::mouseRelease(&canvas(), Qt::LeftButton, Qt::NoModifier, {40, 70});
    EXPECT_THAT(paths()[0].points, SizeIs(4)); // the last path goes on
}

TEST_F(TrackOperations, loadingWithTheRulerHiddenComputesNoMarks) {
    click("pushButton_getRuler");
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    EXPECT_THAT(paths()[0].rulerMarks, IsEmpty());
}

TEST_F(TrackOperations, showsTheWaitCursorOnlyWhileATrackIsRead) {
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
    WriteFile(folder.Path("broken.trk"), "nothing");
    loadExternal(folder.Path("broken.trk"));
    EXPECT_EQ(answers.takeBoxes().at(0).underneath, QStringLiteral("free"));
}

TEST_F(TrackOperations, showsTheWaitCursorOnlyWhileATrackIsWritten) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    int waiting = 0;
    const auto noteCursor = [](void* count, const char*, std::size_t size) {
        const QCursor* cursor = QGuiApplication::overrideCursor();
        *static_cast<int*>(count) += cursor != nullptr && cursor->shape() == Qt::WaitCursor ? 1 : 0;
        return static_cast<ssize_t>(size);
    };
    std::FILE* const before = Output2FILE::Target(); // the work's own lines tell when it is done
    Output2FILE::Target() = fopencookie(&waiting, "w", {nullptr, noteCursor, nullptr, nullptr});
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    operate("Save As");
    std::fclose(std::exchange(Output2FILE::Target(), before));
    EXPECT_EQ(status(), "Save As successfully.");
    EXPECT_GT(waiting, 0);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(TrackOperations, failedLoadIsLoggedAndShownAndLeavesNoTrackToSave) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    (void)log.Lines();
    WriteFile(folder.Path("broken.trk"), "nothing");
    answers.note = [this] { return find<QComboBox>("comboBox_operation").currentText(); };
    loadExternal(folder.Path("broken.trk"));
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_THAT(boxes, SizeIs(1));
    EXPECT_EQ(boxes[0].text, QStringLiteral("ERROR_TRACK - Failed to read basic information."));
    EXPECT_EQ(boxes[0].underneath, QStringLiteral("Normal"));
    EXPECT_EQ(log.Lines().back(), "ERROR: (ERROR_TRACK) Failed to read basic information.");
    EXPECT_EQ(status(), "Load successfully."); // of the load before
    EXPECT_EQ(text("label_fileName"), "External - one.trk");
    operate("Save");
    expectErrorBox(kNoTrack);
}

TEST_F(TrackOperations, failedHeaderOrHeightMapKeepsThePictureAndThePaths) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    find<QSlider>("horizontalSlider_resizeImage").setValue(20);
    const QSize before = canvas().size();
    independent::Track flat = track;
    flat.heights.assign(flat.heights.size(), 7.0);
    flat.xResolution = 9;
    WriteFile(folder.Path("flat.trk"), independent::TextFile(flat));
    loadExternal(folder.Path("flat.trk"));
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

TEST_F(TrackOperations, trackWithoutPathsFailsToLoad) {
    WriteFile(folder.Path("bare.trk"), independent::TextMap(track));
    loadExternal(folder.Path("bare.trk"));
    expectErrorBox("ERROR_TRACK - Failed to read path information.");
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_EQ(canvas().pixmap(Qt::ReturnByValue).size(), QSize(40, 20));
}

TEST_F(TrackOperations, savingBeforeALoadAsksForALoad) {
    for (const char* operation : {"Save", "Save As"}) {
        answers.note = [this] { return find<QComboBox>("comboBox_operation").currentText(); };
        operate(operation);
        const std::vector<SeenBox> boxes = answers.takeBoxes();
        ASSERT_THAT(boxes, SizeIs(1)) << operation;
        EXPECT_EQ(boxes[0].title, QStringLiteral("Error"));
        EXPECT_EQ(boxes[0].text.toStdString(), kNoTrack);
        EXPECT_EQ(boxes[0].underneath, QStringLiteral("Normal"));
        expectNormal();
    }
    EXPECT_EQ(status(), "");
    EXPECT_THAT(answers.takeFileDialogs(), IsEmpty());
}

TEST_F(TrackOperations, savesABinaryWorkspaceTrackInPlace) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    edit();
    fs::permissions(kTracks + "b.trk",
                    fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(kTracks + "b.trk");
    const independent::Track saved = independent::ReadBinary(FileContent(kTracks + "b.trk"));
    EXPECT_EQ(saved.cells, track.cells);
    // X and Y are in world units: x times the image's width times the resolution, plus the offset.
    EXPECT_DOUBLE_EQ(saved.segments[0].x, track.segments[0].relativeX * 40 * 0.5 + 10);
    EXPECT_DOUBLE_EQ(saved.segments[0].y, track.segments[0].relativeY * 20 * 0.25 + 20);
    ASSERT_THAT(saved.rulers, Not(IsEmpty()));
    EXPECT_DOUBLE_EQ(saved.rulers[0].width, 110 * 0.25);
    EXPECT_FALSE(fs::exists("temp.trk"));
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "b.trk", "notes.txt"));
    EXPECT_EQ(fs::status(kTracks + "b.trk").permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(text("label_fileName"), "b.trk");
    expectNormal();
    expectNoBox();
}

TEST_F(TrackOperations, savesATextWorkspaceTrackAsBinary) {
    openWorkspace();
    loadFromWorkspace("A.trk");
    edit();
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(kTracks + "A.trk");
    EXPECT_FALSE(fs::exists("temp.trk"));
    operate("Save"); // now from a binary original
    expectEdited(kTracks + "A.trk");
}

TEST_F(TrackOperations, widthsAreScaledByTheSmallerResolution) {
    independent::Track narrow = track;
    narrow.xResolution = 0.125;
    WriteFile(folder.Path("narrow.trk"), independent::BinaryFile(narrow));
    loadExternal(folder.Path("narrow.trk"));
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    operate("Save As");
    const independent::Track saved = independent::ReadBinary(FileContent(folder.Path("copy.trk")));
    ASSERT_THAT(saved.rulers, Not(IsEmpty()));
    EXPECT_DOUBLE_EQ(saved.rulers[0].width, 110 * 0.125);
}

TEST_F(TrackOperations, savingComputesTheRulerEvenWhenItIsHidden) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    click("pushButton_getRuler");
    operate("Save");
    EXPECT_THAT(independent::ReadBinary(FileContent(kTracks + "b.trk")).rulers, Not(IsEmpty()));
}

TEST_F(TrackOperations, savesDespiteAnOldTemporaryTrack) {
    openWorkspace();
    WriteFile("temp.trk", "left by somebody");
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_FALSE(fs::exists("temp.trk"));
}

TEST_F(TrackOperations, doesNotFollowATemporaryTrackThatIsALink) {
    openWorkspace();
    WriteFile(folder.Path("precious"), "kept");
    fs::create_symlink(folder.Path("precious"), "temp.trk");
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_EQ(FileContent(folder.Path("precious")), "kept");
    EXPECT_FALSE(fs::is_symlink("temp.trk"));
    EXPECT_FALSE(fs::is_symlink(kTracks + "b.trk"));
}

TEST_F(TrackOperations, readOnlyTrackStaysUnchanged) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    const std::string before = FileContent(kTracks + "b.trk");
    fs::permissions(kTracks + "b.trk",
                    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    edit();
    ASSERT_EQ(::chmod("TmpDirOsws", 0755), 0);                  // it is open to its owner alone
    for (const std::string& own : {kTracks, kTracks + "b.trk"}) // all is the user's, who protected the file
        ASSERT_TRUE(OrdinaryUser(own.c_str()).IsReady());
    ASSERT_EQ(::chown((kTracks + "b.trk").c_str(), static_cast<uid_t>(-1), getegid()), 0);
    {
        const OrdinaryUser user(".");
        ASSERT_TRUE(user.IsReady());
        operate("Save");
    }
    expectErrorBox("ERROR_TRACK - Failed to read the target file.");
    EXPECT_EQ(status(), "Load successfully.");
    EXPECT_EQ(FileContent(kTracks + "b.trk"), before);
    EXPECT_FALSE(fs::exists("temp.trk"));
    EXPECT_EQ(paths()[0].lengths[0], 33); // nothing of the work is lost
    fs::permissions(kTracks + "b.trk", fs::perms::owner_write, fs::perm_options::add);
    operate("Save");
    expectEdited(kTracks + "b.trk");
}

TEST_F(TrackOperations, failedSaveKeepsTheOldFileAndRemovesTheTemporaryTrack) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    const std::string before = FileContent(kTracks + "b.trk");
    fs::create_directories("temp.trk/in the way");
    edit();
    operate("Save");
    expectErrorBox("ERROR_TRACK - Failed to read the target file.");
    EXPECT_EQ(FileContent(kTracks + "b.trk"), before);
    fs::remove_all("temp.trk");
    operate("Save");
    expectEdited(kTracks + "b.trk");
}

TEST_F(TrackOperations, savingARemovedTrackFailsAndCreatesNothing) {
    openWorkspace();
    for (const char* name : {"A.trk", "b.trk"}) {
        loadFromWorkspace(name);
        fs::remove(kTracks + name);
        operate("Save");
        expectErrorBox("ERROR_TRACK - Failed to read the original file.");
        EXPECT_FALSE(fs::exists(kTracks + name)) << name;
        EXPECT_FALSE(fs::exists("temp.trk")) << name;
        expectNormal();
    }
}

TEST_F(TrackOperations, savingADamagedTrackDoesNotReplaceItByAnEmptyOne) {
    openWorkspace();
    for (const char* name : {"A.trk", "b.trk"}) {
        loadFromWorkspace(name);
        WriteFile(kTracks + name, "spoilt");
        operate("Save");
        expectErrorBox("ERROR_TRACK - Failed to read the original file.");
        EXPECT_EQ(FileContent(kTracks + name), "spoilt") << name;
        EXPECT_FALSE(fs::exists("temp.trk")) << name;
    }
}

TEST_F(TrackOperations, savingATruncatedTrackDoesNotReplaceIt) {
    openWorkspace();
    for (const char* name : {"A.trk", "b.trk"}) {
        loadFromWorkspace(name);
        const std::string cut = FileContent(kTracks + name).substr(0, 900); // within the height map
        WriteFile(kTracks + name, cut);
        operate("Save");
        expectErrorBox("ERROR_TRACK - Failed to read the original file.");
        EXPECT_EQ(FileContent(kTracks + name), cut) << name;
    }
}

TEST_F(TrackOperations, savingATextTrackThatLostItsAnchorAndPathsDoesNotReplaceIt) {
    openWorkspace();
    loadFromWorkspace("A.trk");
    const std::string whole = FileContent(kTracks + "A.trk");
    const std::size_t mapEnd = whole.find("End", whole.find("YX"));
    ASSERT_NE(mapEnd, std::string::npos);
    WriteFile(kTracks + "A.trk", whole.substr(0, mapEnd));
    operate("Save");
    expectErrorBox("ERROR_TRACK - Failed to read the original file.");
    EXPECT_EQ(FileContent(kTracks + "A.trk"), whole.substr(0, mapEnd));
}

TEST_F(TrackOperations, savesInPlaceAcrossFileSystems) {
    const fs::path shared = "/dev/shm";
    std::error_code failure;
    struct stat here {};
    struct stat there {};
    if (stat(".", &here) != 0 || stat(shared.c_str(), &there) != 0 || here.st_dev == there.st_dev)
        GTEST_SKIP() << "no second file system";
    openWorkspace();
    std::string other = (shared / "corvane-XXXXXX").string();
    ASSERT_NE(mkdtemp(other.data()), nullptr);
    fs::copy(kTracks, other, fs::copy_options::recursive);
    fs::remove_all("TmpDirOsws/vdk/ContourPath");
    fs::create_directory_symlink(other, "TmpDirOsws/vdk/ContourPath");
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(other + "/b.trk");
    EXPECT_FALSE(fs::exists("temp.trk"));
    EXPECT_THAT(NamesIn(other), ElementsAre("A.trk", "b.trk", "notes.txt"));
    fs::remove_all(other, failure);
}

TEST_F(TrackOperations, savingAnExternalTrackOfANewNameAddsItToTheWorkspace) {
    openWorkspace();
    WriteFile(folder.Path("new.trk"), independent::TextFile(track));
    loadExternal(folder.Path("new.trk"));
    const std::string before = FileContent(folder.Path("new.trk"));
    edit();
    operate("Save");
    EXPECT_EQ(status(), "Save successfully.");
    expectEdited(kTracks + "new.trk");
    EXPECT_EQ(FileContent(folder.Path("new.trk")), before);
    EXPECT_EQ(text("label_fileName"), "new.trk");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "new.trk", "External"));
    type("lineEdit_lineLength", "44"); // it is a track of the workspace now
    operate("Save");
    EXPECT_EQ(SegmentsIn(kTracks + "new.trk")[0].length, 44);
    EXPECT_EQ(FileContent(folder.Path("new.trk")), before);
}

TEST_F(TrackOperations, savesAWorkspaceTrackLoadedAfterAnExternalOneInPlace) {
    openWorkspace();
    WriteFile(folder.Path("new.trk"), independent::TextFile(track));
    loadExternal(folder.Path("new.trk"));
    loadFromWorkspace("b.trk");
    edit();
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "b.trk", "notes.txt"));
}

TEST_F(TrackOperations, savingAnExternalTrackOfAListedNameChoosesANewName) {
    openWorkspace();
    WriteFile(folder.Path("A.trk"), independent::TextFile(track));
    const std::string listed = FileContent(kTracks + "A.trk");
    loadExternal(folder.Path("A.trk"));
    edit();
    operate("Save");
    expectEdited(kTracks + "A-New.trk");
    EXPECT_EQ(FileContent(kTracks + "A.trk"), listed);
    EXPECT_EQ(text("label_fileName"), "A-New.trk");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A-New.trk", "A.trk", "b.trk", "External"));
}

TEST_F(TrackOperations, savingAnExternalTrackWhoseNameDiffersOnlyInCaseKeepsItsName) {
    openWorkspace();
    WriteFile(folder.Path("a.trk"), independent::TextFile(track));
    const std::string listed = FileContent(kTracks + "A.trk");
    loadExternal(folder.Path("a.trk"));
    edit();
    operate("Save");
    expectEdited(kTracks + "a.trk");
    EXPECT_EQ(FileContent(kTracks + "A.trk"), listed);
    EXPECT_EQ(text("label_fileName"), "a.trk");
}

TEST_F(TrackOperations, newNamesReplaceWhatFollowsTheLastDot) {
    EXPECT_EQ(NewTrackName(QStringLiteral("A.trk")), QStringLiteral("A-New.trk"));
    EXPECT_EQ(NewTrackName(QStringLiteral("a.b.trk")), QStringLiteral("a.b-New.trk"));
    EXPECT_EQ(NewTrackName(QStringLiteral("plain")), QStringLiteral("plain-New.trk"));
}

TEST_F(TrackOperations, savingAnExternalTrackNeedsAWorkspace) {
    WriteFile(folder.Path("new.trk"), independent::TextFile(track));
    loadExternal(folder.Path("new.trk"));
    operate("Save");
    expectErrorBox("ERROR_TRACK - Failed to read the target file.");
    EXPECT_EQ(text("label_fileName"), "External - new.trk");
}

TEST_F(TrackOperations, saveAsWritesTheCopyAndKeepsEditingTheOriginal) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    const std::string before = FileContent(kTracks + "b.trk");
    edit();
    (void)answers.takeFileDialogs();
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    operate("Save As");
    EXPECT_EQ(status(), "Save As successfully.");
    expectEdited(folder.Path("copy.trk"));
    EXPECT_EQ(FileContent(kTracks + "b.trk"), before);
    EXPECT_EQ(text("label_fileName"), "b.trk");
    const std::vector<SeenFileDialog> dialogs = answers.takeFileDialogs();
    ASSERT_THAT(dialogs, SizeIs(1));
    EXPECT_EQ(dialogs[0].caption, QStringLiteral("Please input a name for track file"));
    EXPECT_EQ(dialogs[0].filters, QStringList(QStringLiteral("track (*.trk)")));
    EXPECT_EQ(dialogs[0].folder.toStdString(), fs::current_path().string());
    EXPECT_TRUE(dialogs[0].saves);
    fs::remove(folder.Path("copy.trk"));
    operate("Save");
    expectEdited(kTracks + "b.trk");
    EXPECT_FALSE(fs::exists(folder.Path("copy.trk")));
}

TEST_F(TrackOperations, saveAsComputesTheRulerEvenWhenItIsHidden) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    click("pushButton_getRuler");
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    operate("Save As");
    EXPECT_THAT(independent::ReadBinary(FileContent(folder.Path("copy.trk"))).rulers, Not(IsEmpty()));
}

TEST_F(TrackOperations, saveAsKeepsAnExternalTrackExternal) {
    openWorkspace();
    WriteFile(folder.Path("new.trk"), independent::TextFile(track));
    loadExternal(folder.Path("new.trk"));
    answers.typeFileName(QString::fromStdString(folder.Path("copy.trk")));
    operate("Save As");
    EXPECT_EQ(text("label_fileName"), "External - new.trk");
    operate("Save");
    EXPECT_TRUE(fs::exists(kTracks + "new.trk"));
}

TEST_F(TrackOperations, cancelledSaveAsStillReportsSuccess) {
    WriteFile(folder.Path("one.trk"), independent::TextFile(track));
    loadExternal(folder.Path("one.trk"));
    const std::vector<std::string> before = NamesIn(".");
    operate("Save As");
    EXPECT_EQ(status(), "Save As successfully.");
    EXPECT_EQ(NamesIn("."), before);
    expectNormal();
    expectNoBox();
}

TEST_F(TrackOperations, saveAsReplacesTheOpenFileByAnySpellingOfItsPath) {
    for (const bool textual : {true, false}) {
        const std::string file = folder.Path("one.trk");
        fs::create_directories(folder.Path("sub"));
        fs::remove(folder.Path("link.trk"));
        fs::create_symlink(file, folder.Path("link.trk"));
        for (const std::string& spelling :
             {file, folder.Path("./one.trk"), folder.Path("sub/../one.trk"), folder.Path("link.trk")}) {
            WriteFile(file, textual ? independent::TextFile(track) : independent::BinaryFile(track));
            loadExternal(file);
            edit();
            answers.typeFileName(QString::fromStdString(spelling));
            operate("Save As");
            EXPECT_EQ(status(), "Save As successfully.") << spelling;
            expectEdited(file);
            EXPECT_TRUE(fs::is_symlink(folder.Path("link.trk"))) << spelling;
            EXPECT_FALSE(fs::exists("temp.trk"));
            expectNoBox();
        }
    }
}

TEST_F(TrackOperations, savesATrackNamedLikeTheTemporaryOne) {
    const std::string file = folder.Path("temp.trk");
    WriteFile(file, independent::BinaryFile(track));
    loadExternal(file);
    edit();
    answers.typeFileName(QString::fromStdString(file));
    operate("Save As");
    EXPECT_EQ(status(), "Save As successfully.");
    expectEdited(file);
}

TEST_F(TrackOperations, saveAsReportsAnUnwritableTarget) {
    for (const bool textual : {true, false}) {
        WriteFile(folder.Path("one.trk"),
                  textual ? independent::TextFile(track) : independent::BinaryFile(track));
        loadExternal(folder.Path("one.trk"));
        answers.typeFileName(QStringLiteral("/proc/version"));
        operate("Save As");
        expectErrorBox("ERROR_TRACK - Failed to read the target file.");
        EXPECT_EQ(status(), "Load successfully.");
        expectNormal();
        operate("Save As"); // the track is still open; cancelled
        EXPECT_EQ(status(), "Save As successfully.");
    }
}

TEST_F(TrackOperations, deleteRemovesTheFileAndItsEntryAndKeepsTheOpenTrack) {
    openWorkspace();
    loadFromWorkspace("b.trk");
    operate("Delete");
    EXPECT_EQ(status(), "Delete successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "External"));
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "notes.txt"));
    EXPECT_EQ(text("label_fileName"), "b.trk");
    EXPECT_THAT(paths(), SizeIs(1));
    choose("comboBox_file", "A.trk");
    operate("Delete"); // the entries still stand for their files
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("notes.txt"));
    expectNormal();
}

TEST_F(TrackOperations, deletingTheLastTrackLeavesExternalWhichCannotBeDeleted) {
    openWorkspace();
    const auto* model = qobject_cast<QStandardItemModel*>(find<QComboBox>("comboBox_operation").model());
    choose("comboBox_file", "A.trk");
    operate("Delete");
    EXPECT_EQ(find<QComboBox>("comboBox_file").currentText(), QStringLiteral("b.trk"));
    EXPECT_EQ(model->item(4)->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    operate("Delete");
    EXPECT_EQ(find<QComboBox>("comboBox_file").currentText(), QStringLiteral("External"));
    EXPECT_EQ(model->item(4)->flags(), Qt::NoItemFlags);
}

TEST_F(TrackOperations, deletingAMissingFileIsReported) {
    openWorkspace();
    choose("comboBox_file", "b.trk");
    fs::remove(kTracks + "b.trk");
    (void)log.Lines();
    operate("Delete");
    expectErrorBox("ERROR_NOT_FOUND - Failed to delete ./TmpDirOsws/vdk/ContourPath/b.trk");
    EXPECT_THAT(log.Lines(),
                Contains("ERROR: (ERROR_NOT_FOUND) Failed to delete ./TmpDirOsws/vdk/ContourPath/b.trk"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "External"));
    EXPECT_EQ(status(), "Load backup file successfully.");
    expectNormal();
}

TEST_F(TrackOperations, deletingWithoutASelectedTrackIsReported) {
    openWorkspace();
    choose("comboBox_file", "External");
    find<QComboBox>("comboBox_operation").setCurrentIndex(4); // no hand can do this
    expectErrorBox("ERROR_NOT_FOUND - Failed to delete ./TmpDirOsws/vdk/ContourPath/");
    EXPECT_THAT(NamesIn(kTracks), ElementsAre("A.trk", "b.trk", "notes.txt"));
}

TEST_F(TrackOperations, refreshListsTheFolderAgain) {
    openWorkspace();
    WriteFile(kTracks + "late.trk", "");
    fs::remove(kTracks + "A.trk");
    operate("Refresh");
    EXPECT_EQ(status(), "Refresh successfully.");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("b.trk", "late.trk", "External"));
    fs::remove_all("TmpDirOsws/vdk");
    operate("Refresh");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
    expectNormal();
}

TEST_F(TrackOperations, slotRunsTheGivenOperation) {
    openWorkspace();
    const auto tell = [this](const char* operation) {
        ASSERT_TRUE(QMetaObject::invokeMethod(window.get(), "on_comboBox_operation_currentIndexChanged",
                                              Q_ARG(QString, QString::fromLatin1(operation))));
    };
    choose("comboBox_file", "b.trk");
    tell("Normal");
    EXPECT_EQ(text("label_fileName"), "");
    tell("Load");
    EXPECT_EQ(text("label_fileName"), "b.trk");
    WriteFile(kTracks + "late.trk", "");
    tell("Refresh");
    EXPECT_THAT(items("comboBox_file"), ElementsAre("A.trk", "b.trk", "late.trk", "External"));
    // The list of operations shows "Normal" all the while: there is none to report.
    EXPECT_EQ(status(), "Load backup file successfully.");
    expectNormal();
    expectNoBox();
}

TEST_F(TrackOperations, statusStaysUntilReplaced) {
    operate("Refresh");
    QTest::qWait(50);
    EXPECT_EQ(status(), "Refresh successfully.");
}

TEST_F(TrackOperations, oddNamesAreShownUnchanged) {
    const std::string odd = "a %s %n 'b' \"c\" <b>ß<i> 日本 [*].trk";
    makeBackup(folder.Path("x.osbak"), {{odd, independent::TextFile(track)}});
    loadBackup(folder.Path("x.osbak"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre(odd, "External"));
    loadFromWorkspace(odd);
    EXPECT_EQ(text("label_fileName"), odd);
    EXPECT_EQ(find<QLabel>("label_fileName").textFormat(), Qt::PlainText);
    edit();
    operate("Save");
    expectEdited(kTracks + odd);
    fs::remove(kTracks + odd);
    (void)log.Lines();
    operate("Delete");
    expectErrorBox("ERROR_NOT_FOUND - Failed to delete " + kTracks + odd);
    EXPECT_THAT(log.Lines(), Contains("ERROR: (ERROR_NOT_FOUND) Failed to delete " + kTracks + odd));
    const std::string external =
        "a %s %n 'b' <b>ß<i> 日本 [*].trk"; // the file dialog takes quotes for its own
    WriteFile(folder.Path(external), independent::TextFile(track));
    loadExternal(folder.Path(external));
    EXPECT_EQ(text("label_fileName"), "External - " + external);
    WriteFile(folder.Path(external), "");
    (void)log.Lines();
    loadExternal(folder.Path(external));
    expectErrorBox("ERROR_TRACK - Failed to read basic information.");
}

TEST_F(TrackOperations, longNamesKeepTheCanvasSizeAndCanBeDistinguished) {
    const std::string start = std::string(40, 'l') + " <b>&amp; station ";
    makeBackup(folder.Path("x.osbak"), {{start + "1.trk", independent::TextFile(track)},
                                        {start + "2.trk", independent::TextFile(track)}});
    const QSize windowSize = window->size();
    const int room = find<QScrollArea>("scrollArea").width();
    loadBackup(folder.Path("x.osbak"));
    loadFromWorkspace(start + "2.trk");
    QTest::qWait(50); // a window that must grow does so by itself
    EXPECT_EQ(window->size(), windowSize);
    EXPECT_EQ(find<QScrollArea>("scrollArea").width(), room);
    EXPECT_EQ(text("label_fileName"), start + "2.trk");
    const auto& list = find<QComboBox>("comboBox_file");
    const QString longest = QString::fromStdString(start + "2.trk");
    const int wanted = list.view()->fontMetrics().horizontalAdvance(longest);
    ASSERT_GT(wanted, list.width());
    EXPECT_GE(list.view()->minimumWidth(), wanted);
    QTextDocument tip; // as the tool tip takes it
    for (const char* widget : {"label_fileName", "comboBox_file"}) {
        tip.setHtml(find<QWidget>(widget).toolTip());
        EXPECT_EQ(tip.toPlainText(), longest) << widget;
    }
    WriteFile(kTracks + std::string(250, 'w') + ".trk", "");
    operate("Refresh");
    EXPECT_EQ(list.view()->minimumWidth(), 600); // no wider than a small screen
    EXPECT_EQ(list.view()->textElideMode(), Qt::ElideMiddle);
    click("toolButton_reset");
    EXPECT_EQ(find<QLabel>("label_fileName").toolTip(), QString());
}

} // namespace
