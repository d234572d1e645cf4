#include "FolderTree.h"
#include "HostileArchive.h"
#include "HostileTrack.h"
#include "IndependentRamp.h"
#include "TarBlocks.h"
#include "WindowTest.h"

#include <QStatusBar>

#include <algorithm>
#include <filesystem>

namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

const std::string kBackupFolder = "./TmpDirBackup";
const std::string kWorkspaceFolder = "./TmpDirOsws";

/// The hostile tables through the real window and its operations: the message to the operator, and that
/// the next operation works.
class HostileWindow : public WindowTest {
  protected:
    /// The working folder is inside others, so that paths out of it lead to a place that the test checks.
    void SetUp() override {
        fs::create_directories("stage/desk");
        fs::current_path("stage/desk");
        openWindow();
        find<QComboBox>("comboBox_operation").setEnabled(true);
    }

    /// The texts of the boxes that were shown since the last call.
    std::vector<std::string> boxes() {
        std::vector<std::string> texts;
        for (const SeenBox& box : answers.takeBoxes()) {
            EXPECT_EQ(box.title, QStringLiteral("Error"));
            EXPECT_EQ(box.icon, QMessageBox::Critical);
            texts.push_back(box.shownText.toStdString());
        }
        return texts;
    }

    /// Checks that one box showed this message after the name of a status.
    void expectFailure(const std::string& message) {
        const std::vector<std::string> texts = boxes();
        ASSERT_EQ(texts.size(), 1U);
        const std::size_t end = texts[0].find(" - ");
        ASSERT_NE(end, std::string::npos) << texts[0];
        EXPECT_THAT(texts[0].substr(0, end),
                    AnyOf("ERROR_FILE", "ERROR_FORMAT", "ERROR_TOO_LONG", "ERROR_NOT_FOUND"));
        EXPECT_EQ(texts[0].substr(end + 3), message);
    }

    void clearStatus() { find<QStatusBar>("statusBar").clearMessage(); }

    void loadContent(const std::string& content) {
        WriteFile("hostile.trk", content);
        clearStatus();
        loadExternal(fs::absolute("hostile.trk"));
    }

    void expectTrackShown(const independent::Track& track) {
        const auto [low, high] = std::minmax_element(track.heights.begin(), track.heights.end());
        const QImage shown = canvas().pixmap(Qt::ReturnByValue).toImage();
        ASSERT_EQ(shown.size(), QSize(track.width, track.height));
        std::size_t cell = 0;
        for (int row = 0; row < track.height; ++row)
            for (int column = 0; column < track.width; ++column, ++cell) {
                const auto [red, green, blue] =
                    independent::RampColour(*track.heights.at(cell), **low, **high);
                ASSERT_EQ(shown.pixelColor(column, row), QColor(red, green, blue)) << column << ", " << row;
            }
        std::vector<independent::Segment> points;
        for (std::size_t path = 0; path < paths().size(); ++path)
            for (std::size_t point = 0; point < paths()[path].points.size(); ++point)
                points.push_back(pointOf(path, point));
        independent::Track found = SmallTrack(points, track.width, track.height);
        EXPECT_TRUE(found.segments == track.segments) << points.size() << " points";
    }

    independent::Segment pointOf(std::size_t path, std::size_t point) {
        const TrackPath& found = paths()[path];
        const QPointF place = found.points.at(point);
        return {static_cast<int>(path),
                static_cast<int>(point),
                0,
                0,
                place.x(),
                place.y(),
                found.methods.at(point),
                found.lengths.at(point),
                found.widths.at(point),
                found.spaces.at(point)};
    }

    /// A hostile track has no later effect on the window: the next valid one is shown as if it were the
    /// first.
    void expectNextTrackLoads() {
        fine = !fine;
        const independent::Track track =
            fine ? SmallTrack(PathAcross(0, 3, 0.5, 100)) : SmallTrack(PathAcross(0, 2, 0.25, 7), 24, 30);
        loadContent(fine ? independent::TextFile(track) : independent::BinaryFile(track));
        EXPECT_THAT(boxes(), IsEmpty());
        EXPECT_EQ(status(), "Load successfully.");
        expectTrackShown(track);
    }

    void walk(const std::vector<HostileTrack>& tracks) {
        for (const HostileTrack& track : tracks) {
            SCOPED_TRACE(track.name);
            loadContent(track.content);
            if (track.Box().empty()) {
                EXPECT_THAT(boxes(), IsEmpty());
                EXPECT_EQ(status(), "Load successfully.");
                EXPECT_FALSE(canvas().pixmap(Qt::ReturnByValue).isNull());
            } else {
                EXPECT_THAT(boxes(), ElementsAre(track.Box()));
                EXPECT_EQ(status(), "");
                operate("Save");
                EXPECT_THAT(boxes(), ElementsAre("Please load a track file firstly."));
            }
            expectNextTrackLoads();
        }
    }

    /// Everything but the window's working folders.
    std::map<std::string, std::string> outside() {
        std::map<std::string, std::string> tree = FolderTree(folder.Path("."));
        std::erase_if(tree, [](const auto& entry) {
            const std::string& name = entry.first;
            return name.rfind("stage/desk/TmpDir", 0) == 0 || name == "stage/desk/hostile.osbak";
        });
        return tree;
    }

    void loadArchive(const std::string& backup) {
        WriteFile("hostile.osbak", backup);
        clearStatus();
        loadBackup(fs::absolute("hostile.osbak"));
    }

    /// A backup that was not unpacked completely cannot be saved anywhere.
    void expectNotOpen() {
        EXPECT_EQ(status(), "");
        click("toolButton_upload");
        EXPECT_THAT(boxes(), ElementsAre("ERROR_FILE - Please open a backup file firstly."));
    }

    void expectNextBackupLoads() {
        loadArchive(good);
        EXPECT_THAT(boxes(), IsEmpty());
        EXPECT_EQ(status(), "Load backup file successfully.");
        EXPECT_THAT(items("comboBox_file"), ElementsAre("good.trk", "External"));
    }

    /// A complete backup with this workspace in it.
    static std::string BackupOf(const std::string& workspace) {
        return TarFile("info.json", "{}") + TarFolder("workspaces") +
               TarFile("workspaces/Workspace.osws", workspace) + TarEnd();
    }

    const std::string good =
        BackupOf(TarFolder("vdk") + TarFolder("vdk/ContourPath") +
                 TarFile("vdk/ContourPath/good.trk", independent::TextFile(SmallTrack())) + TarEnd());

  private:
    bool fine = false;
};

/// The message of an archive's failure, with the folder's path for "@".
std::string MessageOf(const HostileArchive& archive, const std::string& target) {
    const std::size_t at = archive.message.find("@/");
    return at == std::string::npos ? archive.message : std::string(archive.message).replace(at, 1, target);
}

TEST_F(HostileWindow, reportsADamagedTextTrackAndLoadsTheNext) {
    walk(HostileTextTracks());
}

TEST_F(HostileWindow, reportsADamagedBinaryTrackAndLoadsTheNext) {
    walk(HostileBinaryTracks());
}

TEST_F(HostileWindow, unpacksAHostileBackupUpToItsDefect) {
    const auto before = outside();
    for (const HostileArchive& archive : HostileArchives()) {
        SCOPED_TRACE(archive.name);
        loadArchive(archive.content);
        if (archive.message.empty()) // but none of them has a workspace
            expectFailure("./TmpDirBackup/workspaces/Workspace.osws doesn't exist.");
        else
            expectFailure(MessageOf(archive, kBackupFolder));
        EXPECT_EQ(FolderTree(kBackupFolder), archive.leaves);
        expectNotOpen();
        expectNextBackupLoads();
        EXPECT_EQ(outside(), before);
    }
}

TEST_F(HostileWindow, unpacksAHostileWorkspaceUpToItsDefect) {
    const auto before = outside();
    for (const HostileArchive& archive : HostileArchives()) {
        SCOPED_TRACE(archive.name);
        loadArchive(BackupOf(archive.content));
        EXPECT_EQ(FolderTree(kWorkspaceFolder), archive.leaves);
        if (archive.message.empty()) {
            EXPECT_THAT(boxes(), IsEmpty());
            EXPECT_EQ(status(), "Load backup file successfully.");
            EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
        } else {
            expectFailure(MessageOf(archive, kWorkspaceFolder));
            expectNotOpen();
        }
        expectNextBackupLoads();
        EXPECT_EQ(outside(), before);
    }
}

} // namespace
