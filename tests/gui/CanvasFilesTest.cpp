#include "CanvasFixture.h"
#include "LogCapture.h"
#include "SmallTrack.h"
#include "TemporaryFolder.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "document/formats/Converter.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace {

const std::string kTextTrack = "Info\n"
                               "XResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height\n"
                               "0.1,0.1,0.01,0,0,-5,3,2\n"
                               "YX,0.0,0.1,0.2\n"
                               "10.0,1.25,,1.30\n"
                               "10.1,1.27,1.29,1.31\n"
                               "End\n"
                               "Segment\n"
                               "Track,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n"
                               "0,0,0,0,0.125,0.25,1,11,12,13\n"
                               "0,1,0,0,0.5,0.75,2,21,22,23\n"
                               "1,0,0,0,0.25,0.5,1,31,32,33\n"
                               "End\n";

class CanvasFiles : public CanvasTest {
  protected:
    void Save(const std::string& original, const std::string& target) {
        window.canvas->SavePath(QString::fromStdString(original), QString::fromStdString(target), 0.1, 0.0,
                                0.0, 0.3, 0.2);
    }

    /// The message of the exception that saving throws; its other fields are checked here.
    std::string ErrorOf(const std::string& original, const std::string& target) {
        try {
            Save(original, target);
        } catch (const Ve::Exception& error) {
            EXPECT_EQ(error.Status(), -984);
            EXPECT_EQ(error.Function(), "QMaskWidget::SavePath");
            EXPECT_EQ(error.File(), "qmaskwidget");
            return error.what();
        }
        return "nothing thrown";
    }

    void LoadText() {
        WriteFile("text.trk", kTextTrack);
        ASSERT_EQ(window.canvas->loadPaths(QStringLiteral("text.trk")), 0);
    }

    TemporaryFolder folder;
};

void ExpectTextTracksPaths(const std::vector<TrackPath>& paths) {
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[0].points, (std::vector<QPointF>{{0.125, 0.25}, {0.5, 0.75}}));
    EXPECT_EQ(paths[0].methods, (std::vector<int>{1, 2}));
    EXPECT_EQ(paths[0].lengths, (std::vector<int>{11, 21}));
    EXPECT_EQ(paths[0].widths, (std::vector<int>{12, 22}));
    EXPECT_EQ(paths[0].spaces, (std::vector<int>{13, 23}));
    EXPECT_EQ(paths[1].points, (std::vector<QPointF>{{0.25, 0.5}}));
    EXPECT_EQ(paths[1].spaces, (std::vector<int>{33}));
}

TEST_F(CanvasFiles, loadsPathsWithoutMarks) {
    LoadText();
    ExpectTextTracksPaths(Paths());
    EXPECT_TRUE(Paths().at(0).rulerMarks.empty());
}

TEST_F(CanvasFiles, eachLoadedPathNeedsADoubleClickBeforeANewOneCanBeDrawn) {
    LoadText();
    EXPECT_EQ(Document().finishedCount(), 0);
    mouse.Press({30, 200});
    EXPECT_EQ(Paths().size(), 2U);
    mouse.Release({30, 200}); // until then a release far from the last path's end extends that path
    EXPECT_EQ(Paths().at(1).points.size(), 2U);
    mouse.DoubleClick({30, 200});
    EXPECT_EQ(Document().finishedCount(), 1);
    mouse.DoubleClick({30, 200});
    EXPECT_EQ(Document().finishedCount(), 2);
    mouse.Move({300, 50});
    mouse.Press({300, 50});
    EXPECT_EQ(Paths().size(), 3U);
}

TEST_F(CanvasFiles, loadingReplacesPaths) {
    mouse.Draw({{50, 50}, {150, 50}});
    window.canvas->resetPaths();
    LoadText();
    ExpectTextTracksPaths(Paths());
}

TEST_F(CanvasFiles, loadingFileWithoutPathsFailsAndClearsPaths) {
    WriteFile("bare.trk", kTextTrack.substr(0, kTextTrack.find("Segment")));
    EXPECT_EQ(window.canvas->loadPaths(QStringLiteral("bare.trk")), 1);
    EXPECT_TRUE(Paths().empty());
    EXPECT_EQ(window.canvas->loadPaths(QStringLiteral("missing.trk")), 1);
    EXPECT_TRUE(Paths().empty());
}

TEST_F(CanvasFiles, failedLoadKeepsListsAsLongAsThePoints) {
    for (std::size_t length = kTextTrack.find("0,0,0,0"); length < kTextTrack.size(); ++length) {
        WriteFile("cut.trk", kTextTrack.substr(0, length));
        window.canvas->loadPaths(QStringLiteral("cut.trk"));
        for (const TrackPath& path : Paths()) {
            ASSERT_EQ(path.methods.size(), path.points.size());
            ASSERT_EQ(path.lengths.size(), path.points.size());
            ASSERT_EQ(path.widths.size(), path.points.size());
            ASSERT_EQ(path.spaces.size(), path.points.size());
        }
    }
}

TEST_F(CanvasFiles, savesTextOriginalAsBinaryTrack) {
    LoadText();
    Save("text.trk", "saved.trk");
    EXPECT_EQ(FileContent("saved.trk").substr(0, 8), std::string("Track  \0", 8));
    EXPECT_EQ(FileContent("text.trk"), kTextTrack);
    TrackInfo info;
    ASSERT_EQ(CreateBinaryConverter()->ReadInfo("saved.trk", info), 0);
    EXPECT_EQ(info.width, 3);
    EXPECT_EQ(info.height, 2);
    EXPECT_EQ(info.zOffset, -5.0);
    window.canvas->resetPaths();
    ASSERT_EQ(window.canvas->loadPaths(QStringLiteral("saved.trk")), 0);
    ExpectTextTracksPaths(Paths());
}

TEST_F(CanvasFiles, copiesBinaryOriginalWithNewPaths) {
    LoadText();
    Save("text.trk", "binary.trk");
    window.canvas->resetPaths();
    ASSERT_EQ(window.canvas->loadPaths(QStringLiteral("binary.trk")), 0);
    window.canvas->setSegmentParameter(SegmentParameter::Length, 77);
    Save("binary.trk", "copy.trk");
    std::vector<TrackPath> read;
    ASSERT_EQ(CreateBinaryConverter()->ReadPath("copy.trk", read), 0);
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[0].lengths, (std::vector<int>{77, 21}));
    // Everything before the path sections comes from the original: header, 3 x 2 heights, anchor.
    EXPECT_EQ(FileContent("copy.trk").substr(0, 68 + 12 + 28),
              FileContent("binary.trk").substr(0, 68 + 12 + 28));
}

TEST_F(CanvasFiles, savedTrackHoldsTheOriginalAndPathsInWorldUnits) {
    independent::Track track = SmallTrack(PathAcross(0, 3, 0.5, 100));
    track.anchor = {1.5, -2.25, 30};
    WriteFile("text.trk", independent::TextFile(track));
    WriteFile("binary.trk", independent::BinaryFile(track));
    track.heights.clear(); // a binary track has neither these nor the positions
    track.columnPositions.clear();
    track.rowPositions.clear();
    for (const QString& original : {QStringLiteral("text.trk"), QStringLiteral("binary.trk")}) {
        ASSERT_EQ(window.canvas->loadPaths(original), 0);
        window.canvas->computeRulerMarks(80, 20);
        window.canvas->SavePath(original, QStringLiteral("saved.trk"), 0.25, 10, 20, 40 * 0.5, 20 * 0.25);
        independent::Track saved = independent::ReadBinary(FileContent("saved.trk"));
        ASSERT_FALSE(saved.rulers.empty());
        EXPECT_EQ(saved.rulers[0].width, 110 * 0.25);
        saved.rulers.clear();
        EXPECT_TRUE(saved == track) << original.toStdString();
    }
}

TEST_F(CanvasFiles, logNamesTheEncodingsReadAndWritten) {
    LoadText();
    LogCapture log;
    Save("text.trk", "saved.trk");
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre("INFO: Creating ConvertCSV.", "INFO: Creating ConvertBIN."));
    Save("saved.trk", "copy.trk");
    EXPECT_THAT(log.Lines(), testing::ElementsAre("INFO: Creating ConvertBIN."));
}

TEST_F(CanvasFiles, savesUnderNonAsciiNames) {
    LoadText();
    Save("text.trk", folder.Path("größe %s \"x\".trk"));
    EXPECT_FALSE(FileContent(folder.Path("größe %s \"x\".trk")).empty());
}

TEST_F(CanvasFiles, unreadableOriginalFailsAndKeepsTarget) {
    WriteFile("target.trk", "precious");
    EXPECT_EQ(ErrorOf("missing.trk", "target.trk"), "Failed to read the original file.");
    WriteFile("empty.trk", "");
    EXPECT_EQ(ErrorOf("empty.trk", "target.trk"), "Failed to read the original file.");
    WriteFile("binary.trk", std::string("Track  \0", 8));
    EXPECT_EQ(ErrorOf("binary.trk", "target.trk"), "Failed to read the original file.");
    EXPECT_EQ(FileContent("target.trk"), "precious");
}

TEST_F(CanvasFiles, openTextTrackTruncatedBeforeItsPathsFailsAndKeepsTarget) {
    LoadText();
    WriteFile("target.trk", "precious");
    const std::size_t paths = kTextTrack.find("Segment\n") + std::string("Segment").size();
    for (std::size_t kept = 0; kept < paths; ++kept) {
        WriteFile("text.trk", kTextTrack.substr(0, kept));
        EXPECT_EQ(ErrorOf("text.trk", "target.trk"), "Failed to read the original file.") << kept;
    }
    EXPECT_EQ(FileContent("target.trk"), "precious");
}

/// A file that was not opened here may never have had paths.
TEST_F(CanvasFiles, savesOtherTextTrackWithoutPathsWithTheCanvasPaths) {
    LoadText();
    Save("text.trk", "complete.trk");
    WriteFile("map.trk", kTextTrack.substr(0, kTextTrack.find("Segment\n")));
    Save("map.trk", "saved.trk");
    EXPECT_EQ(FileContent("saved.trk"), FileContent("complete.trk"));
    EXPECT_NE(window.canvas->loadPaths(QStringLiteral("map.trk")), 0);
    Save("map.trk", "no paths.trk");
    EXPECT_NE(FileContent("no paths.trk"), "");
}

/// The paths come from the canvas, so those of the file are not needed.
TEST_F(CanvasFiles, savesTextOriginalTruncatedWithinItsPathsCompletely) {
    LoadText();
    Save("text.trk", "complete.trk");
    for (std::size_t kept = kTextTrack.find("Segment\n") + 7; kept < kTextTrack.size(); ++kept) {
        WriteFile("cut.trk", kTextTrack.substr(0, kept));
        Save("cut.trk", "saved.trk");
        EXPECT_EQ(FileContent("saved.trk"), FileContent("complete.trk")) << kept;
    }
}

/// Every track that can be opened can be saved, even with a map without an "End" line.
TEST_F(CanvasFiles, savesTextOriginalThatEndsWithItsMapCompletely) {
    LoadText();
    Save("text.trk", "complete.trk");
    const std::size_t map = kTextTrack.find("YX");
    const std::size_t mapEnd = kTextTrack.find("End", map);
    const std::string info = kTextTrack.substr(0, map);
    const std::string rest = kTextTrack.substr(mapEnd + std::string("End\n").size());
    WriteFile("open.trk", info + rest + kTextTrack.substr(map, mapEnd - map));
    Save("open.trk", "saved.trk");
    EXPECT_EQ(FileContent("saved.trk"), FileContent("complete.trk"));
}

TEST_F(CanvasFiles, textOriginalWithTooFewRowsFailsAndKeepsTarget) {
    LoadText();
    WriteFile("target.trk", "precious");
    std::string lacking = kTextTrack;
    lacking.erase(lacking.find("10.1"), std::string("10.1,1.27,1.29,1.31\n").size());
    WriteFile("lacking.trk", lacking);
    EXPECT_EQ(ErrorOf("lacking.trk", "target.trk"), "Failed to read the original file.");
    EXPECT_EQ(FileContent("target.trk"), "precious");
}

TEST_F(CanvasFiles, unwritableTargetFails) {
    LoadText();
    EXPECT_EQ(ErrorOf("text.trk", "no folder/saved.trk"), "Failed to read the target file.");
    Save("text.trk", "binary.trk");
    EXPECT_EQ(ErrorOf("binary.trk", "no folder/saved.trk"), "Failed to read the target file.");
    std::filesystem::create_directory("folder.trk");
    EXPECT_EQ(ErrorOf("binary.trk", "folder.trk"), "Failed to read the target file.");
}

TEST_F(CanvasFiles, savingLeavesPathsUnchanged) {
    LoadText();
    Save("text.trk", "saved.trk");
    ExpectTextTracksPaths(Paths());
}

} // namespace
